#pragma once

#include "core/globals.h"
#include "quillon/mail/mailmessage.h"
#include "quillon/sequence/task.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// Adds the files and folders to the message, in their order; a folder is packed into an archive in the temporary
/// folder, which is emptied first, while the event loop runs. What is neither a file nor a folder is passed over. Gives
/// the paths that were taken, joined by "; ", each followed by what of the folder is not in its archive, and why. The
/// references outlive the task.
quillon::Task<QString> ResolveAttachments(const ApplicationGlobals &globals, QStringList paths,
                                          quillon::MailMessage &message);

} // namespace corvane
