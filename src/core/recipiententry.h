#pragma once

#include "quillon/mail/mailmessage.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// True for one recipient: a display name, a blank and the address in angle brackets, or a bare address. The "<" must
/// stand at position 3 or further; otherwise the whole entry is tested as an address.
[[nodiscard]] bool IsRecipientEntry(const QString &entry);

/// The name and the address of an entry: when "<" stands at position 3 or further, the name is what ends two
/// characters before it and the address is what follows it, without its last character; otherwise the whole entry is
/// the address.
[[nodiscard]] quillon::MailAddress toMailAddress(const QString &entry);

/// A name and an address as an entry: the name, " <", the address, ">", or the bare address when the name is empty.
[[nodiscard]] QString toRecipientEntry(const QString &name, const QString &address);

/// A piece of a recipient field as one entry: trimmed, and a line end within it, which parts nothing, is a blank.
[[nodiscard]] QString trimmedEntry(const QString &piece);

/// The text of a recipient field cut into its entries: trimmed, one trailing comma cut, split at commas, each as in
/// trimmedEntry(). Empty entries in between are kept; an empty field has none.
[[nodiscard]] QStringList splitRecipients(const QString &text);

} // namespace corvane
