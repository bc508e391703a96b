#pragma once

#include "core/globals.h"
#include "message/message.h"
#include "quillon/mail/mailmessage.h"
#include "quillon/sequence/task.h"
#include "sending/connection.h"
#include "sending/progressview.h"
#include "sending/runstate.h"
#include "sending/sendchecks.h"
#include "sending/sendinglog.h"

namespace corvane {

/// What the loop works with.
struct OneByOneContext {
    const ApplicationGlobals &globals;
    const Message &source; ///< subject and content are read from it in each pass
    ProgressView &progress;
    const RunValues &values;
    const SendingLog &log;
    RunState &state;
    Connection &connection;
};

/// Gives every recipient of @p message, in To, CC and BCC, a mail of their own, each over a connection of its own, with
/// the set interval in front of it. Cancel is seen between two mails and leaves without a summary; otherwise the
/// outcome is logged by name and reported. Both arguments outlive the task.
quillon::Task<> sendOneByOne(quillon::MailMessage &message, const OneByOneContext &context);

} // namespace corvane
