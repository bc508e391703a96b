#pragma once

#include "core/globals.h"
#include "quillon/mail/mailmessage.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace corvane {

/// Adds the files and folders to the message, in their order; a folder is packed into an archive in the temporary
/// folder, which is emptied first. What is neither a file nor a folder is passed over. Gives the paths that were taken,
/// joined by "; ". Where @p goOn comes to say false, because the program ends, packing stops.
[[nodiscard]] QString ResolveAttachments(const ApplicationGlobals &globals, const QStringList &paths,
                                         quillon::MailMessage &message, const std::function<bool()> &goOn = {});

} // namespace corvane
