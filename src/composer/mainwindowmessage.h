#pragma once

#include "composer/maincontrols.h"
#include "message/message.h"

namespace corvane {

class AccountFields;
class AttachmentList;
class ContentViews;

/// The message, as the controls of the main window hold it.
class MainWindowMessage : public Message {
public:
    /// What belongs to a field beyond its control.
    struct Rules {
        AccountFields &account;
        ContentViews &views;
        AttachmentList &attachments;
    };

    MainWindowMessage(const MainControls &controls, const Rules &rules);

    [[nodiscard]] QString text(Field field) const override;
    void setText(Field field, const QString &text) override;
    [[nodiscard]] bool isActual(Choice choice) const override;
    void setActual(Choice choice, bool actual) override;
    [[nodiscard]] QDate customDate() const override;
    [[nodiscard]] QTime customTime() const override;
    void setCustomDateTime(const QDate &date, const QTime &time) override;
    [[nodiscard]] Format format() const override;
    void setFormat(Format format) override;
    [[nodiscard]] Priority priority() const override;
    void setPriority(Priority priority) override;
    [[nodiscard]] bool oneByOne() const override;
    void setOneByOne(bool on) override;
    [[nodiscard]] bool receipt() const override;
    void setReceipt(bool on) override;
    [[nodiscard]] QStringList attachmentPaths() const override;
    /// A row holds the full path in Qt::UserRole; its text is the name, for a file or folder with its size in KB.
    void setAttachmentPaths(const QStringList &paths) override;
    [[nodiscard]] int encodingCount() const override;
    void selectEncoding(int index) override;
    [[nodiscard]] QString selectedEncoding() const override;

private:
    MainControls m_controls;
    Rules m_rules;
};

} // namespace corvane
