#pragma once

#include "quillon/mail/sasl.h"
#include "quillon/mail/smtpextensions.h"

namespace quillon {

/// The AUTH exchange (RFC 4954) with one mechanism, the best that is offered. A refusal is final: trying the password
/// with one mechanism after the other would lock accounts and show it in weaker and weaker forms.
class SmtpLogin {
public:
    SmtpLogin(const SmtpExtensions &extensions, bool encrypted, const QString &user, const QString &password,
              const QString &host);

    /// The AUTH command; empty when fault() says why there is none.
    QByteArray command();

    /// The answer to a 334 reply; nothing when fault() says why there is none. The caller then ends the connection.
    std::optional<QByteArray> answer(const SmtpReply &reply);

    /// Whether a 235 reply may be believed: the exchange has come to its end.
    [[nodiscard]] bool mayEnd() const { return m_client && m_client->isComplete(); }

    [[nodiscard]] QByteArray mechanism() const { return m_mechanism; }
    [[nodiscard]] QString fault() const { return m_fault; }

    /// Takes the password, and what has been sent in this exchange, out of a reply that is to be shown: a server may
    /// repeat them, also long after the login.
    void hideSecrets(SmtpReply &reply) const;
    /// The same for a text that quotes the server.
    [[nodiscard]] QString withoutSecrets(const QString &text) const;

private:
    QByteArray encoded(const QByteArray &octets);
    void keepSecret(const QByteArray &octets);
    [[nodiscard]] QByteArray hidden(QByteArray octets) const;

    QByteArray m_mechanism;
    std::unique_ptr<SaslClient> m_client;
    QList<QByteArray> m_secrets; // longest first, as one may be the beginning of another
    QByteArray m_held;           // the first word, when it is too long to go along with the command
    QString m_fault;
};

} // namespace quillon
