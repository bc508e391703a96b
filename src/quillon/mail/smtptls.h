#pragma once

#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QString>

namespace quillon {

/// What all TLS connections of this process share: whom they trust, and the session tickets by which the next
/// connection to the same server saves a round trip and the certificates' check.
class SmtpTls {
public:
    /// The configuration for a connection to @p host (as it is verified), @p port, with its ticket if there is one.
    [[nodiscard]] static QSslConfiguration configurationFor(const QString &host, quint16 port);

    /// Keeps the ticket of a connection whose server has been verified.
    static void keepTicket(const QString &host, quint16 port, const QByteArray &ticket);
    static void forgetTicket(const QString &host, quint16 port);

    /// Trusts @p authorities in place of the system's; an empty list goes back to the system's. For a site with an
    /// authority of its own, and for tests. Drops all tickets, as they were got under the trust that was.
    static void setAuthorities(const QList<QSslCertificate> &authorities);
};

} // namespace quillon
