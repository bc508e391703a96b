#pragma once

#include <QString>

namespace corvane {

/// A webmail service for which an account can be begun: how its server is reached, and the domain of its addresses.
struct AccountPreset {
    const char16_t *server;
    const char16_t *port;     ///< from 1 to 65535
    const char16_t *security; ///< as AccountSecurity is stored: "S" SSL, "T" STARTTLS
    const char16_t *domain;
};

/// The services behind the menu items of the same names.
inline constexpr AccountPreset menagPreset{u"smtp.gmail.com", u"465", u"S", u"gmail.com"};
inline constexpr AccountPreset menahPreset{u"smtp.mail.yahoo.com", u"25", u"T", u"yahoo.com"};

/// An account's line with the values of a preset. Its addresses hold a blank, as no address may, so it cannot be saved
/// before the user has put the own name in.
[[nodiscard]] QString presetLine(const AccountPreset &preset);

} // namespace corvane
