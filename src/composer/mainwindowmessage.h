#pragma once

#include "composer/maincontrols.h"
#include "core/messagewindow.h"

class QWidget;

namespace corvane {

class AccountFields;
class AttachmentList;
class ContentLayout;
class ContentViews;

/// The message, as the controls of the main window hold it.
class MainWindowMessage : public MessageWindow {
public:
    /// What belongs to a field beyond its control.
    struct Rules {
        AccountFields &account;
        ContentViews &views;
        ContentLayout &layout;
        AttachmentList &attachments;
    };

    MainWindowMessage(const MainControls &controls, const Rules &rules);

    [[nodiscard]] QString text(Field field) const override;
    void setText(Field field, const QString &text) override;
    /// A field that the expanded content covers is brought back first, so that the user sees where the focus went.
    void setFocus(Field field) override;
    [[nodiscard]] QStringList list(Field field) const override;
    void setList(Field field, const QStringList &entries) override;
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
    [[nodiscard]] QString title() const override;
    void setTitle(const QString &title) override;
    [[nodiscard]] QString statusText() const override;
    void setStatusText(const QString &text) override;

private:
    [[nodiscard]] QWidget *control(Field field) const;

    MainControls m_controls;
    Rules m_rules;
};

} // namespace corvane
