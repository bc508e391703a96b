#pragma once

#include "core/globals.h"
#include "message/message.h"
#include "message/window.h"
#include "quillon/sequence/task.h"

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
    Message::Format format = Message::Format::Plain;
    QString encoding; ///< display name
    Message::Priority priority = Message::Priority::Normal;
    bool receipt = false;
    bool oneByOne = false;
    QStringList attachments;
    QString subject;
    QString content;
};

/// Takes the fields and checks them in their order. The first fault is shown, puts the focus on its field or opens
/// the options on its tab, and gives nothing. The references outlive the task.
quillon::Task<std::optional<RunValues>> checkMessage(const ApplicationGlobals &globals, const Message &message,
                                                     Window &window);

} // namespace corvane
