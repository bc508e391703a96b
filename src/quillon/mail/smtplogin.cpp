#include "quillon/mail/smtplogin.h"

#include "quillon/mail/mailtexts.h"

#include <algorithm>
#include <utility>

namespace quillon {

namespace {
constexpr qsizetype maxCommand = 510; // RFC 5321, 4.5.3.1.4, without CR LF
}

SmtpLogin::SmtpLogin(const SmtpExtensions &extensions, bool encrypted, const QString &user, const QString &password,
                     const QString &host)
{
    keepSecret(password.toUtf8());
    const QByteArray latin = password.toLatin1();
    if (QString::fromLatin1(latin) == password) {
        keepSecret(latin); // how an old server may repeat it
    }
    if (extensions.Auth.isEmpty()) {
        m_fault = say(mailtexts::noAuth);
        return;
    }
    m_mechanism = SaslClient::choose(extensions.Auth, encrypted, user);
    if (!m_mechanism.isEmpty()) {
        m_client = SaslClient::start(m_mechanism, user, password, host);
    }
    if (!m_client) {
        m_fault = say(mailtexts::noKnownMechanism, printableText(extensions.Auth.join(' '), 120));
    }
}

QByteArray SmtpLogin::command()
{
    if (!m_client) {
        return {};
    }
    const QByteArray line = "AUTH " + m_mechanism;
    if (!m_client->speaksFirst()) {
        return line;
    }
    const std::optional<QByteArray> first = m_client->step({});
    if (!first) {
        m_fault = say(mailtexts::loginNotPrepared, QString::fromLatin1(m_mechanism));
        return {};
    }
    const QByteArray word = encoded(*first); // no mechanism's first word is empty
    if (line.size() + 1 + word.size() <= maxCommand) {
        return line + ' ' + word;
    }
    // Too long for a command line: it waits for the server's empty challenge.
    m_held = word;
    return line;
}

std::optional<QByteArray> SmtpLogin::answer(const SmtpReply &reply)
{
    if (!m_held.isEmpty()) {
        return std::exchange(m_held, QByteArray());
    }
    const QByteArray::FromBase64Result challenge =
        QByteArray::fromBase64Encoding(reply.Lines.last().trimmed(), QByteArray::AbortOnBase64DecodingErrors);
    if (!challenge) {
        // LOGIN's prompts are only prompts, and servers have been seen to send them as plain text.
        if (m_mechanism != "LOGIN") {
            m_fault = say(mailtexts::challengeNotBase64);
            return std::nullopt;
        }
    }
    const std::optional<QByteArray> word = m_client->step(challenge ? challenge.decoded : QByteArray());
    if (!word) {
        m_fault = say(mailtexts::exchangeWithoutSense, QString::fromLatin1(m_mechanism));
        return std::nullopt;
    }
    return encoded(*word);
}

QByteArray SmtpLogin::encoded(const QByteArray &octets)
{
    const QByteArray word = octets.toBase64();
    keepSecret(word);
    return word;
}

void SmtpLogin::keepSecret(const QByteArray &octets)
{
    if (!octets.isEmpty() && !m_secrets.contains(octets)) {
        const auto at = std::find_if(m_secrets.cbegin(), m_secrets.cend(),
                                     [&octets](const QByteArray &other) { return other.size() < octets.size(); });
        m_secrets.insert(at, octets);
    }
}

QByteArray SmtpLogin::hidden(QByteArray octets) const
{
    for (const QByteArray &secret : m_secrets) {
        octets.replace(secret, "***");
    }
    return octets;
}

void SmtpLogin::hideSecrets(SmtpReply &reply) const
{
    for (QByteArray &line : reply.Lines) {
        line = hidden(line);
    }
}

QString SmtpLogin::withoutSecrets(const QString &text) const
{
    return QString::fromUtf8(hidden(text.toUtf8()));
}

} // namespace quillon
