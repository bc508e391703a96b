#pragma once

#include "core/globals.h"

#include <QString>

namespace corvane {

/// The first line of smtp.dll in whose lower-cased text the lower-cased address stands with a tab on each side; empty
/// if there is none, and for an address of blanks, which would fit whatever account has an empty field.
[[nodiscard]] QString FindSmtpRecord(const ApplicationGlobals &globals, const QString &address);

/// Whether the stored default account can be used: server and port there, a user where one is needed, a valid sender
/// address, and a receipt receiver that is valid or not there.
[[nodiscard]] bool DefaultSmtpUsable(const ApplicationGlobals &globals);

/// The sender that an account shows: its display name and address as an entry, the bare address when the name is blank.
[[nodiscard]] QString accountSender(const QString &record);

} // namespace corvane
