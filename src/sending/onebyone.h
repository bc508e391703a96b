#pragma once

#include "core/globals.h"
#include "core/messagewindow.h"
#include "quillon/mail/mailmessage.h"
#include "sending/progressview.h"
#include "sending/sendchecks.h"
#include "sending/sendinglog.h"

#include <functional>

namespace corvane {

/// What the loop does with its run's connection.
struct ConnectionSteps {
    std::function<void()> quit;
    std::function<void()> connectAnew; ///< a failure shows in the sending that follows
    std::function<bool(const quillon::MailMessage &message)> send;
    std::function<bool()> abandoned; ///< the program ends: say and write nothing more
};

/// What the loop works with.
struct OneByOneContext {
    const ApplicationGlobals &globals;
    MessageWindow &window;
    ProgressView &progress;
    const RunValues &values;
    const SendingLog &log;
};

/// Gives every recipient of @p message, in To, CC and BCC, a mail of their own, each over a connection of its own, with
/// the set interval in front of it. Cancel is seen between two mails and leaves without a summary; otherwise the
/// outcome is logged by name and reported.
void sendOneByOne(quillon::MailMessage &message, const OneByOneContext &context, const ConnectionSteps &connection);

} // namespace corvane
