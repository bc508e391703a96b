#pragma once

#include <QList>
#include <QSslCertificate>
#include <QString>

#include <utility>

using SSL = struct ssl_st;

namespace quillon {

/// What all TLS connections of this process share: one context with those whom they trust, and the sessions by which
/// the next connection to the same server saves a round trip or the certificates' check.
class SmtpTls {
public:
    /// Where a connection keeps the TlsClient that it is for (its application data).
    static constexpr int clientIndex = 0;

    /// Trusts @p authorities in place of the system's; an empty list goes back to the system's. For a site with an
    /// authority of its own, and for tests. Drops all sessions, as they were got under the trust that was.
    static void setAuthorities(const QList<QSslCertificate> &authorities);

    /// A connection of the shared context that fails unless its peer is verified; nullptr when TLS is not to be had.
    /// The caller owns it, and sets its TlsClient under clientIndex.
    [[nodiscard]] static SSL *newConnection();

    /// Offers the session that is kept for @p peer, a host name in lower case and a port, if there is one.
    static void resumeSession(SSL *connection, const std::pair<QString, quint16> &peer);
    static void forgetSession(const std::pair<QString, quint16> &peer);
};

} // namespace quillon
