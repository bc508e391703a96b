#pragma once

#include "message/message.h"

#include <QMap>

namespace corvane {

/// A message over plain values. Each field is as it was set: rules that let one field follow another belong to a
/// window. Setting a field to another value marks the message as changed.
class PlainMessage : public Message {
public:
    [[nodiscard]] QString text(Field field) const override;
    void setText(Field field, const QString &text) override;
    [[nodiscard]] bool isActual(Choice choice) const override; ///< a choice that was never made is the actual one
    void setActual(Choice choice, bool actual) override;
    [[nodiscard]] QDate customDate() const override { return m_date; }
    [[nodiscard]] QTime customTime() const override { return m_time; }
    void setCustomDateTime(const QDate &date, const QTime &time) override;
    [[nodiscard]] Format format() const override { return m_format; }
    void setFormat(Format format) override { m_format = format; }
    [[nodiscard]] Priority priority() const override { return m_priority; }
    void setPriority(Priority priority) override { m_priority = priority; }
    [[nodiscard]] bool oneByOne() const override { return m_oneByOne; }
    void setOneByOne(bool on) override { m_oneByOne = on; }
    [[nodiscard]] bool receipt() const override { return m_receipt; }
    void setReceipt(bool on) override { m_receipt = on; }
    [[nodiscard]] QStringList attachmentPaths() const override { return m_attachments; }
    void setAttachmentPaths(const QStringList &paths) override { m_attachments = paths; }
    [[nodiscard]] int encodingCount() const override { return static_cast<int>(encodings.size()); }
    void selectEncoding(int index) override { encodingIndex = index; }
    [[nodiscard]] QString selectedEncoding() const override { return encodings.value(encodingIndex); }

    QStringList encodings; ///< the entries that selectEncoding() chooses from
    int encodingIndex = 0; ///< of the selected one

private:
    QMap<Field, QString> m_texts;
    QMap<Choice, bool> m_actual;
    QDate m_date;
    QTime m_time;
    Format m_format = Format::Plain;
    Priority m_priority = Priority::Normal;
    bool m_oneByOne = false;
    bool m_receipt = false;
    QStringList m_attachments;
};

} // namespace corvane
