#pragma once

#include "core/globals.h"
#include "core/messagewindow.h"
#include "quillon/mail/mailmessage.h"
#include "sending/sendchecks.h"
#include "sending/sendinglog.h"

#include <functional>

namespace corvane {

/// What a filling of the message works with.
struct FillContext {
    const ApplicationGlobals &globals;
    MessageWindow &window; ///< for the encoding list, whose selection follows
    const RunValues &values;
    const QString &accountRecord;
    const SendingLog &log;
    std::function<void()> rememberRecipients; ///< done between the BCC recipients and their log line
    std::function<bool()> goOn;               ///< false when the program ends: the filling stops where it is
};

/// Fills a message field by field, and writes each field's line to the log.
void fillMessage(quillon::MailMessage &message, const FillContext &context);

} // namespace corvane
