#pragma once

#include "core/globals.h"
#include "quillon/mail/mailmessage.h"

#include <QStringList>

namespace corvane {

/// Turns the placeholders in the message's subject and content into text, for its first recipient (of To, else CC,
/// else BCC), in the order of macros.dll, which is read afresh. HTML content loses its CR LF pairs.
void ExpandMacros(const ApplicationGlobals &globals, quillon::MailMessage &message);

/// The same with @p lines in place of those of macros.dll.
void expandMacroLines(const QStringList &lines, quillon::MailMessage &message);

} // namespace corvane
