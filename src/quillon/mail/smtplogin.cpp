#include "quillon/mail/smtplogin.h"

#include "quillon/mail/mailtexts.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {
constexpr qsizetype maxCommand = 510; // RFC 5321, 4.5.3.1.4, without CR LF
}

SmtpLogin::SmtpLogin(const SmtpExtensions &extensions, bool encrypted, const QString &user, const QString &password,
                     const QString &host)
    : m_password(password)
{
    if (extensions.Auth.isEmpty()) {
        m_fault = say(mailtexts::noAuth);
        return;
    }
    m_mechanism = SaslClient::choose(extensions.Auth, encrypted);
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
    const QByteArray word = first->isEmpty() ? QByteArray("=") : encoded(*first);
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
    if (!word.isEmpty()) {
        m_sent += word;
    }
    return word;
}

QString SmtpLogin::withoutSecrets(QString text) const
{
    for (const QByteArray &word : m_sent) {
        text.replace(QString::fromLatin1(word), u"***"_s);
    }
    if (!m_password.isEmpty()) {
        text.replace(m_password, u"***"_s);
    }
    return text;
}

} // namespace quillon
