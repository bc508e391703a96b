#include "quillon/mail/mailtransport.h"

#include "quillon/fault.h"
#include "quillon/mail/encodedmail.h"
#include "quillon/mail/mailtexts.h"
#include "quillon/mail/smtpsession.h"

#include <QDateTime>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace quillon {

namespace {

constexpr long maxPort = 65535;
constexpr qsizetype maxProxyWord = 255; // RFC 1929

SmtpTimeouts timeouts{30s, 60s, 3s, 5min};

bool isPort(long port)
{
    return port > 0 && port <= maxPort;
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

bool MailTransport::isBusy(const QString &name) const
{
    if (m_operation == Operation::None) {
        return false;
    }
    reportFault(u"MailTransport: %1 within another call"_s.arg(name));
    return true;
}

void MailTransport::begin(Operation operation, std::function<void(bool success)> settle)
{
    m_operation = operation;
    m_settle = std::move(settle);
    ++m_call;
}

Pending<> MailTransport::Connect(const QString &server, long port, long, long)
{
    if (isBusy(u"Connect"_s)) {
        return Pending<>::settled();
    }
    Quit();
    refreshTexts();
    m_failureKnown = true;
    Pending<> pending;
    begin(Operation::Connect, [settler = pending.settler()](bool) { settler.settle(); });
    const QString fault = faultOfSettings(server, port);
    if (!fault.isEmpty()) {
        failLater(SmtpFailure{0, fault});
        return pending;
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
        target.Proxy = QNetworkProxy(QNetworkProxy::Socks5Proxy, asciiHost(ProxyServer),
                                     static_cast<quint16>(ProxyPort), ProxyUser, ProxyPassword);
    }
    m_session = std::make_unique<SmtpSession>(target, timeouts);
    connect(m_session.get(), &SmtpSession::progressed, this, &MailTransport::Progress);
    connect(m_session.get(), &SmtpSession::answered, this, &MailTransport::onAnswered);
    m_session->open();
    return pending;
}

Pending<bool> MailTransport::Send(const MailMessage &message)
{
    // What cannot be sent need not be encoded.
    if (m_operation != Operation::None || !m_session || (State() != Connected && m_failureKnown)) {
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

Pending<bool> MailTransport::SendEncoded(const EncodedMail &mail, const QString &from, const QStringList &recipients)
{
    if (isBusy(u"Send"_s)) {
        return Pending<bool>::settled(false);
    }
    Pending<bool> pending;
    begin(Operation::Send, [settler = pending.settler()](bool success) { settler.settle(success); });
    if (!m_session || State() == Closed) {
        std::optional<SmtpFailure> failure = m_session ? m_session->takeFailure() : std::nullopt;
        if (!failure && !m_failureKnown) {
            failure = SmtpFailure{0, say(mailtexts::notConnected)};
        }
        failLater(failure);
    } else {
        m_session->send({mail, from, recipients});
    }
    return pending;
}

bool MailTransport::wasAccepted() const
{
    return m_session && m_session->wasReady();
}

Pending<bool> MailTransport::Accepted()
{
    if (isBusy(u"Accepted"_s) || !m_session) {
        return Pending<bool>::settled(false);
    }
    Pending<bool> pending;
    begin(Operation::Accepted, [settler = pending.settler()](bool success) { settler.settle(success); });
    m_session->settle();
    return pending;
}

void MailTransport::Quit()
{
    m_failureKnown = false;
    if (m_session) {
        m_session->close();
        m_session.reset();
    }
    if (m_operation != Operation::None) {
        end(false, std::nullopt);
    }
}

void MailTransport::failLater(const std::optional<SmtpFailure> &failure)
{
    QMetaObject::invokeMethod(
        this,
        [this, failure, call = m_call] {
            if (call == m_call && m_operation != Operation::None) {
                end(false, failure);
            }
        },
        Qt::QueuedConnection);
}

void MailTransport::onAnswered(bool success)
{
    std::optional<SmtpFailure> failure;
    // What may have gone wrong after a success is for the next call to tell.
    if (m_operation == Operation::Connect || !success) {
        failure = m_session->takeFailure();
    }
    if (m_operation == Operation::Connect) {
        m_failureKnown = failure.has_value();
    } else if (m_operation == Operation::Accepted && failure) {
        m_failureKnown = true;
    }
    end(success, failure);
}

// Whoever hears of the failure may do what he likes with this object, which is not touched any more after that.
void MailTransport::end(bool success, const std::optional<SmtpFailure> &failure)
{
    m_operation = Operation::None;
    const std::function<void(bool)> settle = std::exchange(m_settle, nullptr);
    if (failure) {
        Q_EMIT Error(failure->Code, failure->Text);
    }
    settle(success);
}

void MailTransport::setTimeouts(int connectMs, int silenceMs, int graceMs, int replyMs)
{
    timeouts = {std::chrono::milliseconds(connectMs), std::chrono::milliseconds(silenceMs),
                std::chrono::milliseconds(graceMs), std::chrono::milliseconds(replyMs)};
}

QString MailTransport::faultOfSettings(const QString &server, long port) const
{
    if (server.trimmed().isEmpty()) {
        return say(mailtexts::noServer);
    }
    if (asciiHost(server).isEmpty()) {
        return say(mailtexts::serverInvalid, printableText(server, 120));
    }
    if (!isPort(port)) {
        return say(mailtexts::portInvalid, QString::number(port));
    }
    if (ProxyServer.trimmed().isEmpty()) {
        return {};
    }
    if (asciiHost(ProxyServer).isEmpty()) {
        return say(mailtexts::proxyInvalid, printableText(ProxyServer, 120));
    }
    if (!isPort(ProxyPort)) {
        return say(mailtexts::proxyPortInvalid, QString::number(ProxyPort));
    }
    if (ProxyUser.toUtf8().size() > maxProxyWord || ProxyPassword.toUtf8().size() > maxProxyWord) {
        return say(mailtexts::proxyLoginTooLong);
    }
    return {};
}

} // namespace quillon
