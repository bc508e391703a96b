#pragma once

#include "core/messagewindow.h"
#include "sending/progressview.h"

#include <QList>
#include <QMap>

#include <functional>
#include <optional>

/// The main window's message over plain values. As in the window, setting a field to another value marks the message
/// as changed, a text comes back with CR LF as its line ends, and a list keeps its box's text.
class FakeWindow : public corvane::MessageWindow {
public:
    [[nodiscard]] QString text(Field field) const override;
    void setText(Field field, const QString &text) override;
    void setFocus(Field field) override { focused.append(field); }

    [[nodiscard]] QStringList list(Field field) const override { return lists.value(field); }
    void setList(Field field, const QStringList &entries) override { lists.insert(field, entries); }

    [[nodiscard]] bool isActual(Choice choice) const override { return actual.value(choice, true); }
    void setActual(Choice choice, bool value) override;
    [[nodiscard]] QDate customDate() const override { return date; }
    [[nodiscard]] QTime customTime() const override { return time; }
    void setCustomDateTime(const QDate &newDate, const QTime &newTime) override;

    [[nodiscard]] Format format() const override { return messageFormat; }
    void setFormat(Format value) override { change(messageFormat, value); }
    [[nodiscard]] Priority priority() const override { return messagePriority; }
    void setPriority(Priority value) override { change(messagePriority, value); }
    [[nodiscard]] bool oneByOne() const override { return oneByOneOn; }
    void setOneByOne(bool on) override { change(oneByOneOn, on); }
    [[nodiscard]] bool receipt() const override { return receiptOn; }
    void setReceipt(bool on) override { change(receiptOn, on); }

    [[nodiscard]] QStringList attachmentPaths() const override { return attachments; }
    void setAttachmentPaths(const QStringList &paths) override { change(attachments, paths); }

    [[nodiscard]] int encodingCount() const override { return static_cast<int>(encodings.size()); }
    void selectEncoding(int index) override { encodingIndex = index; }
    [[nodiscard]] QString selectedEncoding() const override { return encodings.value(encodingIndex); }

    [[nodiscard]] QString title() const override { return windowTitle; }
    void setTitle(const QString &title) override { windowTitle = title; }
    [[nodiscard]] QString statusText() const override { return statusTexts.isEmpty() ? QString() : statusTexts.last(); }
    void setStatusText(const QString &text) override { statusTexts.append(text); }

    QMap<Field, QString> texts;
    QMap<Field, QStringList> lists;
    QMap<Choice, bool> actual; ///< a choice that was never made is the actual one
    QDate date;
    QTime time;
    Format messageFormat = Format::Plain;
    Priority messagePriority = Priority::Normal;
    bool oneByOneOn = false;
    bool receiptOn = false;
    QStringList attachments;
    QStringList encodings = {QStringLiteral("utf-8 | Unicode (UTF-8)")};
    int encodingIndex = 0;
    QString windowTitle;

    QList<Field> focused;    ///< every field that was given the focus, in order
    QStringList statusTexts; ///< every text that the status panel showed, in order

    /// Runs before a field is read, so that a test can edit the message between two readings.
    std::function<void(Field)> beforeRead;

private:
    template <typename Value> void change(Value &slot, const Value &value)
    {
        if (slot != value) {
            slot = value;
            pblnChanged = true;
        }
    }
};

/// The progress dialog over plain values, with a record of what it showed.
class FakeProgress : public corvane::ProgressView {
public:
    [[nodiscard]] bool isVisible() const override { return visible; }
    void makeVisible() override { visible = true; }
    void hide() override { visible = false; }
    [[nodiscard]] QString activity() const override { return activities.isEmpty() ? QString() : activities.last(); }
    void setActivity(const QString &text) override { activities.append(text); }
    [[nodiscard]] QString counter() const override;
    void setCounter(const QString &text) override;
    void setProgress(int i, int total) override { steps.append({i, total}); }

    bool visible = false;
    QStringList activities;
    QStringList counters;
    QList<std::pair<int, int>> steps;
    /// Runs after the counter line has changed, as a user who acts on what it shows.
    std::function<void(const QString &)> afterCounter;
};
