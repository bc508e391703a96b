#pragma once

#include <QByteArray>
#include <QString>

namespace quillon {

/// A domain or host name in ASCII, as it goes over the wire: what is ASCII stays as it is, anything else gets its IDNA
/// form (RFC 5890). Empty where there is none. Whether the name may stand where it is wanted is for the caller to see.
[[nodiscard]] QByteArray asciiDomain(const QString &domain);

} // namespace quillon
