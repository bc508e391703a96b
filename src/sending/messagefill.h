#pragma once

#include "core/globals.h"
#include "message/message.h"
#include "quillon/mail/mailmessage.h"
#include "quillon/sequence/task.h"
#include "sending/runstate.h"
#include "sending/sendchecks.h"
#include "sending/sendinglog.h"

#include <functional>

namespace corvane {

/// What a filling of the message works with.
struct FillContext {
    const ApplicationGlobals &globals;
    Message &source; ///< for the encoding list, whose selection follows
    const RunValues &values;
    const QString &accountRecord;
    const SendingLog &log;
    RunMode mode;
    std::function<void()> rememberRecipients; ///< done between the BCC recipients and their log line
};

/// Fills a message field by field, and writes each field's line to the log. Both arguments outlive the task.
quillon::Task<> fillMessage(quillon::MailMessage &message, const FillContext &context);

} // namespace corvane
