#pragma once

#include "quillon/mail/mailtransport.h"

#include <QString>

namespace corvane {

/// The security that an account's field asks for: "N" 0, "S" or "Y" 1, "T" 2; another value leaves @p standard.
[[nodiscard]] int securityOf(const QString &field, int standard = quillon::MailTransport::NoSecurity);

/// A number as a field tells it, blanks at its ends aside; an empty field is 0, and so is, with a fault, what is no
/// number.
[[nodiscard]] long numberOf(const QString &field);

/// Sets the security that an account's line asks for and, where its authentication is "Y", user and password. Server
/// and port are for the caller to connect to.
void useAccount(const QString &record, quillon::MailTransport &transport);

/// Sets the server and the port of a proxy's line and, where its authentication is "Y", user and password.
void useProxy(const QString &record, quillon::MailTransport &transport);

} // namespace corvane
