#pragma once

#include "core/globals.h"
#include "core/messagewindow.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

#include <optional>

namespace corvane {

/// The fields of the message as the checks saw them. A run works on these, so that what the user does in the window
/// while a mail is under way cannot make a mail that no check has seen.
struct RunValues {
    QString account;
    QString sender;
    QString replyReceiver;
    QString to;
    QString cc;
    QString bcc;
    bool actualDate = true;
    QDate date;
    QTime time;
    MessageWindow::Format format = MessageWindow::Format::Plain;
    QString encoding; ///< display name
    MessageWindow::Priority priority = MessageWindow::Priority::Normal;
    bool receipt = false;
    bool oneByOne = false;
    QStringList attachments;
    QString subject;
    QString content;
};

/// The text that the message's body has now in that format.
[[nodiscard]] QString contentOf(const MessageWindow &window, MessageWindow::Format format);

/// Takes the fields and checks them in their order. The first fault is shown, puts the focus on its field or opens
/// the options on its tab, and gives nothing.
[[nodiscard]] std::optional<RunValues> checkMessage(const ApplicationGlobals &globals, MessageWindow &window);

} // namespace corvane
