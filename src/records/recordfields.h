#pragma once

#include "core/recordline.h"

namespace corvane {

/// Fields of an SMTP account's line, from 0; a usable line has exactly accountFieldCount of them.
enum AccountField {
    AccountServer,
    AccountPort,
    AccountSecurity,       ///< "N" none, "S" or "Y" SSL, "T" STARTTLS
    AccountAuthentication, ///< "Y" or "N"
    AccountUser,
    AccountPassword,
    AccountSenderName,
    AccountSenderAddress,
    AccountReceiptName,
    AccountReceiptAddress,
    AccountEndMark,
};
inline constexpr int accountFieldCount = 11;

/// Fields of a proxy server's line, from 0; a usable line has exactly proxyFieldCount of them.
enum ProxyField {
    ProxyProtocol,
    ProxyAddress,
    ProxyPort,
    ProxyAuthentication, ///< "Y" or "N"
    ProxyUser,
    ProxyPassword,
    ProxyEndMark,
};
inline constexpr int proxyFieldCount = 7;

/// Fields of a custom sender's line, from 0.
enum SenderField { SenderName, SenderAddress, SenderRemark };

/// Fields of a signature's line, from 0. The path is empty for a signature whose text the program keeps.
enum SignatureField { SignatureName, SignaturePath };

} // namespace corvane
