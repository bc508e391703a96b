#pragma once

#include "core/globals.h"
#include "quillon/mail/mailmessage.h"

namespace corvane {

/// Turns the placeholders in the message's subject and content into text, for its first recipient (of To, else CC,
/// else BCC), in the order of macros.dll, which is read afresh. HTML content loses its CR LF pairs.
void ExpandMacros(const ApplicationGlobals &globals, quillon::MailMessage &message);

} // namespace corvane
