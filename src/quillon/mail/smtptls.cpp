#include "quillon/mail/smtptls.h"

#include <QHash>
#include <QSslSocket>

namespace quillon {

namespace {

constexpr qsizetype maxTickets = 64;

struct Shared {
    QList<QSslCertificate> Authorities;
    QHash<std::pair<QString, quint16>, QByteArray> Tickets;
    QSslConfiguration Configuration;
};

QSslConfiguration makeConfiguration(const QList<QSslCertificate> &authorities)
{
    // With Debian's hashed folder of authorities the default configuration looks up just the one that is asked for;
    // elsewhere Qt loads them all, once per process. Both beat a list of 145 given to each connection anew.
    QSslConfiguration made = QSslConfiguration::defaultConfiguration();
    if (!authorities.isEmpty()) {
        made.setCaCertificates(authorities);
    }
    made.setPeerVerifyMode(QSslSocket::VerifyPeer);
    made.setProtocol(QSsl::SecureProtocols);
    made.setSslOption(QSsl::SslOptionDisableSessionSharing, false);
    made.setSslOption(QSsl::SslOptionDisableSessionTickets, false);
    made.setSslOption(QSsl::SslOptionDisableSessionPersistence, false);
    return made;
}

Shared &shared()
{
    static Shared instance{{}, {}, makeConfiguration({})};
    return instance;
}

} // namespace

QSslConfiguration SmtpTls::configurationFor(const QString &host, quint16 port)
{
    QSslConfiguration configuration = shared().Configuration;
    const QByteArray ticket = shared().Tickets.value({host.toLower(), port});
    if (!ticket.isEmpty()) {
        configuration.setSessionTicket(ticket);
    }
    return configuration;
}

void SmtpTls::keepTicket(const QString &host, quint16 port, const QByteArray &ticket)
{
    if (ticket.isEmpty()) {
        return;
    }
    if (shared().Tickets.size() >= maxTickets) {
        shared().Tickets.clear();
    }
    shared().Tickets.insert({host.toLower(), port}, ticket);
}

void SmtpTls::forgetTicket(const QString &host, quint16 port)
{
    shared().Tickets.remove({host.toLower(), port});
}

void SmtpTls::setAuthorities(const QList<QSslCertificate> &authorities)
{
    shared() = Shared{authorities, {}, makeConfiguration(authorities)};
}

} // namespace quillon
