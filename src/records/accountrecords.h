#pragma once

#include "core/globals.h"

#include <QString>
#include <QStringList>

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
inline constexpr int senderFieldCount = 3;

/// Fields of a signature's line, from 0. The path is empty for a signature whose text the program keeps.
enum SignatureField { SignatureName, SignaturePath };

/// What a text box's text is as a field: tabs, line ends and other control characters become blanks, the ends are
/// trimmed.
[[nodiscard]] QString fieldText(const QString &text);

/// The line of a record: its fields as fieldText() gives them, a tab between each two.
[[nodiscard]] QString recordLine(const QStringList &fields);

/// One field of a record's line; empty when the line is too short.
[[nodiscard]] QString recordField(const QString &record, int field);

/// The first line of smtp.dll in whose lower-cased text the lower-cased address stands with a tab on each side; empty
/// if there is none.
[[nodiscard]] QString FindSmtpRecord(const ApplicationGlobals &globals, const QString &address);

/// Whether the stored default account can be used: server and port there, a user where one is needed, a valid sender
/// address, and a receipt receiver that is valid or not there.
[[nodiscard]] bool DefaultSmtpUsable(const ApplicationGlobals &globals);

/// The sender that an account shows: its display name and address as an entry, the bare address when the name is blank.
[[nodiscard]] QString accountSender(const QString &record);

} // namespace corvane
