#include "quillon/mail/mailtransport.h"

#include "quillon/fault.h"
#include "quillon/mail/encodedmail.h"
#include "quillon/mail/smtpsession.h"

#include <QDateTime>
#include <QPointer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace quillon {

namespace {

constexpr long maxPort = 65535;
constexpr qsizetype maxProxyWord = 255; // RFC 1929

SmtpTimeouts timeouts{30s, 60s, 3s};

bool isPort(long port)
{
    return port > 0 && port <= maxPort;
}

// RFC 1929 names no charset; the socket library writes Latin-1, so UTF-8 octets are handed over one by one.
QString asOctets(const QString &text)
{
    return QString::fromLatin1(text.toUtf8());
}

} // namespace

MailTransport::MailTransport(QObject *parent) : QObject(parent) {}

MailTransport::~MailTransport()
{
    Quit();
}

long MailTransport::State() const
{
    if (!m_session) {
        return Closed;
    }
    if (m_session->stands()) {
        return Connected;
    }
    return m_session->stage() == SmtpSession::Stage::Connecting ? Connecting : Closed;
}

void MailTransport::Connect(const QString &server, long port, long, long)
{
    if (m_busy) {
        reportFault(u"MailTransport: Connect within another call"_s);
        return;
    }
    Quit();
    m_failureKnown = true;
    const QString fault = faultOfSettings(server, port);
    if (!fault.isEmpty()) {
        report({0, fault});
        return;
    }
    SmtpTarget target;
    target.Host = asciiHost(server);
    target.Port = static_cast<quint16>(port);
    target.ImplicitTls = Security == Ssl;
    target.StartTls = Security == StartTls;
    target.User = User;
    target.Password = Password;
    target.Proxy = QNetworkProxy(QNetworkProxy::NoProxy);
    if (!ProxyServer.trimmed().isEmpty()) {
        // This kind of proxy is given the server's name, not its address.
        target.Proxy = QNetworkProxy(QNetworkProxy::Socks5Proxy, asciiHost(ProxyServer),
                                     static_cast<quint16>(ProxyPort), asOctets(ProxyUser), asOctets(ProxyPassword));
    }
    m_session = std::make_shared<SmtpSession>(target, timeouts);
    connect(m_session.get(), &SmtpSession::progressed, this, &MailTransport::Progress);

    const QPointer<MailTransport> self(this);
    const std::shared_ptr<SmtpSession> session = m_session;
    m_busy = true;
    session->open();
    if (!self) {
        return;
    }
    m_busy = false;
    m_failureKnown = false;
    if (const std::optional<SmtpFailure> failure = session->takeFailure()) {
        m_failureKnown = true;
        report(*failure);
    }
}

bool MailTransport::Send(const MailMessage &message)
{
    // What cannot be sent need not be encoded.
    if (m_busy || !m_session || (State() != Connected && m_failureKnown)) {
        return SendEncoded(EncodedMail(), QString(), QStringList());
    }
    QStringList recipients;
    for (const MailAddressList *list : {&message.To, &message.CC, &message.BCC}) {
        for (const MailAddress &recipient : *list) {
            recipients += recipient.Address;
        }
    }
    // Each mail of a run has a transport of its own; what is known of the run's files outlives it here.
    static MailEncoder encoder;
    return SendEncoded(encoder.encode(message, QDateTime::currentDateTime()), message.From.Address, recipients);
}

bool MailTransport::SendEncoded(const EncodedMail &mail, const QString &from, const QStringList &recipients)
{
    if (m_busy) {
        reportFault(u"MailTransport: Send within another call"_s);
        return false;
    }
    if (!m_session || State() == Closed) {
        const std::optional<SmtpFailure> failure = m_session ? m_session->takeFailure() : std::nullopt;
        if (!m_failureKnown || failure) {
            report(failure.value_or(
                SmtpFailure{0, u"The message was not sent: there is no connection to a mail server."_s}));
        }
        return false;
    }
    const QPointer<MailTransport> self(this);
    const std::shared_ptr<SmtpSession> session = m_session;
    m_busy = true;
    const bool sent = session->send({mail, from, recipients});
    if (!self) {
        return false;
    }
    m_busy = false;
    if (sent) {
        return true; // what may have gone wrong after that is for the next call to tell
    }
    if (const std::optional<SmtpFailure> failure = session->takeFailure()) {
        report(*failure);
    }
    return false;
}

bool MailTransport::Accepted()
{
    if (m_busy) {
        reportFault(u"MailTransport: Accepted within another call"_s);
        return false;
    }
    if (!m_session) {
        return false;
    }
    const QPointer<MailTransport> self(this);
    const std::shared_ptr<SmtpSession> session = m_session;
    m_busy = true;
    const bool accepted = session->settle();
    if (!self) {
        return false;
    }
    m_busy = false;
    if (const std::optional<SmtpFailure> failure = accepted ? std::nullopt : session->takeFailure()) {
        m_failureKnown = true;
        report(*failure);
    }
    return accepted;
}

void MailTransport::Quit()
{
    m_failureKnown = false;
    if (m_session) {
        m_session->close();
        m_session.reset();
    }
}

void MailTransport::setTimeouts(int connectMs, int silenceMs, int graceMs)
{
    timeouts = {std::chrono::milliseconds(connectMs), std::chrono::milliseconds(silenceMs),
                std::chrono::milliseconds(graceMs)};
}

// The last thing that a call does: whoever hears of it may do what he likes with this object.
void MailTransport::report(const SmtpFailure &failure)
{
    Q_EMIT Error(failure.Code, failure.Text);
}

QString MailTransport::faultOfSettings(const QString &server, long port) const
{
    const QString failed = u"Connecting failed: "_s;
    if (server.trimmed().isEmpty()) {
        return failed + u"no mail server is given."_s;
    }
    if (asciiHost(server).isEmpty()) {
        return failed + u"“%1” is not the name of a mail server."_s.arg(printableText(server, 120));
    }
    if (!isPort(port)) {
        return failed + u"%1 is not a port; ports go from 1 to 65535."_s.arg(port);
    }
    if (ProxyServer.trimmed().isEmpty()) {
        return {};
    }
    if (asciiHost(ProxyServer).isEmpty()) {
        return failed + u"“%1” is not the name of a proxy server."_s.arg(printableText(ProxyServer, 120));
    }
    if (!isPort(ProxyPort)) {
        return failed + u"%1 is not a port of the proxy; ports go from 1 to 65535."_s.arg(ProxyPort);
    }
    if (ProxyUser.toUtf8().size() > maxProxyWord || ProxyPassword.toUtf8().size() > maxProxyWord) {
        return failed + u"the user name or the password for the proxy is longer than 255 octets."_s;
    }
    return {};
}

} // namespace quillon
