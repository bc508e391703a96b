#include "quillon/mail/smtpsession.h"

#include "quillon/files/descriptors.h"
#include "quillon/mail/mailtexts.h"

#include <QPointer>

namespace quillon {

namespace {
// A socket, and what a thread takes that looks a name up.
constexpr int descriptorsOfAConnection = 8;
} // namespace

SmtpSession::SmtpSession(const SmtpTarget &target, const SmtpTimeouts &timeouts)
    : m_target(target), m_timeouts(timeouts)
{
    m_grace.setSingleShot(true);
    connect(&m_grace, &QTimer::timeout, this, &SmtpSession::onGraceOver);
    connect(&m_wire, &SmtpWire::connected, this, &SmtpSession::onConnected);
    connect(&m_wire, &SmtpWire::encrypted, this, &SmtpSession::onEncrypted);
    connect(&m_wire, &SmtpWire::heard, this, &SmtpSession::onHeard);
    connect(&m_wire, &SmtpWire::failed, this, [this](const QString &reason) { fail(reason); });
    connect(&m_wire, &SmtpWire::roomLeft, this, [this] {
        if (m_stage == Stage::Sending && m_transaction->state() == SmtpTransaction::State::Body) {
            m_transaction->pump();
            followTransaction();
        }
    });
}

SmtpSession::~SmtpSession()
{
    close();
}

void SmtpSession::open()
{
    enter(Stage::Connecting);
    m_wire.allowSilence(std::chrono::milliseconds(0));
    m_wire.allowReply(std::chrono::milliseconds(0));
    begin(Call::Open);
    // A server that is slow to let the sessions before go would take this one for too many.
    SmtpStanding::whenRoom({m_target.Host.toLower(), m_target.Port}, this, [this] {
        if (m_stage != Stage::Connecting) {
            return;
        }
        if (!descriptorsLeft(descriptorsOfAConnection)) {
            fail(say(mailtexts::tooManyFilesOpen));
        } else {
            m_wire.allowSilence(m_timeouts.Connect);
            m_wire.open(m_target.Host, m_target.Port, m_target.Proxy);
        }
    });
}

void SmtpSession::settle()
{
    if (stands() && m_stage != Stage::Ready) {
        // The time that the program itself has let pass since is not the server's.
        m_wire.allowReply(m_timeouts.Reply);
        m_wire.allowMoreSilence(m_timeouts.Silence);
    }
    begin(Call::Settle);
}

void SmtpSession::send(const SmtpMail &mail)
{
    m_mail = mail;
    settle();
    m_call = Call::Send;
    if (m_stage == Stage::Ready) {
        beginTransaction();
    }
}

void SmtpSession::close()
{
    // QUIT has a meaning only where the server listens to commands.
    const bool politely = m_stage == Stage::Ready || m_stage == Stage::Reset;
    m_stage = Stage::Closed;
    m_call = Call::None;
    m_failure.reset();
    m_grace.stop();
    m_wire.close(politely);
}

void SmtpSession::begin(Call call)
{
    m_call = call;
    wake();
}

bool SmtpSession::isAtEnd() const
{
    const bool settled = m_stage == Stage::Ready || m_stage == Stage::Closed || m_stage == Stage::Idle;
    switch (m_call) {
    case Call::Open:
        return settled || m_graceOver;
    case Call::Settle:
        return settled;
    case Call::Send:
        return m_transaction ? m_stage == Stage::Closed || m_transaction->isOver() : settled;
    default:
        return false;
    }
}

// Something has come about that may end the call; it does so from the event loop, behind whatever is being done.
void SmtpSession::wake()
{
    if (!m_answerQueued && isAtEnd()) {
        m_answerQueued = true;
        QMetaObject::invokeMethod(this, &SmtpSession::answer, Qt::QueuedConnection);
    }
}

void SmtpSession::answer()
{
    m_answerQueued = false;
    if (m_call == Call::Send && !m_transaction && m_stage == Stage::Ready) {
        beginTransaction();
        return;
    }
    if (!isAtEnd()) {
        return;
    }
    const QPointer<SmtpSession> self(this);
    deliverProgress();
    if (!self || m_call == Call::None) {
        return;
    }
    const bool sent = m_transaction && m_transaction->state() == SmtpTransaction::State::Sent;
    const bool success = m_call == Call::Send ? sent : m_stage == Stage::Ready;
    m_call = Call::None;
    m_transaction.reset();
    m_mail.reset();
    Q_EMIT answered(success);
}

void SmtpSession::beginTransaction()
{
    m_transaction = std::make_unique<SmtpTransaction>(m_wire, *m_mail, m_extensions);
    m_mail.reset();
    enter(Stage::Sending);
    m_transaction->begin();
    followTransaction();
    wake();
}

void SmtpSession::enter(Stage stage)
{
    m_stage = stage;
    if (stage == Stage::Ready) {
        m_wasReady = true;
        m_wire.allowSilence(std::chrono::milliseconds(0));
        wake();
    } else {
        m_wire.allowReply(m_timeouts.Reply);
        m_wire.allowSilence(m_timeouts.Silence);
    }
    tell(stageName());
}

void SmtpSession::tell(const QString &text)
{
    if (text.isEmpty() || text == m_toldLast) {
        return;
    }
    m_toldLast = text;
    m_told += {static_cast<int>(m_stage), text};
    if (m_told.size() == 1) {
        QMetaObject::invokeMethod(this, &SmtpSession::deliverProgress, Qt::QueuedConnection);
    }
}

void SmtpSession::deliverProgress()
{
    const QPointer<SmtpSession> self(this);
    if (m_call == Call::None) {
        // What happens between two calls is nobody's progress.
        m_told.clear();
    }
    while (self && !m_told.isEmpty()) {
        const auto [stage, text] = m_told.takeFirst();
        Q_EMIT progressed(stage, text);
    }
}

// Ends the session with the sentence "stage failed: reason; last reply".
void SmtpSession::fail(const QString &reason, int code, bool politely)
{
    const QString stage = m_stage == Stage::Sending ? m_transaction->stageName() : stageName();
    const QString text = m_lastReply.isEmpty() ? say(mailtexts::failed, stage, reason)
                                               : say(mailtexts::failedAfter, stage, reason, m_lastReply);
    failWith({code, text}, politely);
}

void SmtpSession::failWith(const SmtpFailure &failure, bool politely)
{
    if (m_stage == Stage::Closed) {
        return;
    }
    m_stage = Stage::Closed;
    if (!m_failure) {
        m_failure = failure;
    }
    m_grace.stop();
    m_wire.close(politely);
    wake();
}

// The server says no to the step that the session is at.
void SmtpSession::refuse(const SmtpReply &reply)
{
    failWith({reply.Code, say(mailtexts::failedByAnswer, stageName(), reply.text())}, reply.isRefusal());
}

void SmtpSession::onConnected()
{
    m_grace.start(m_timeouts.Grace);
    if (m_target.ImplicitTls) {
        enter(Stage::ImplicitTls);
        m_wire.startTls();
    } else {
        enter(Stage::Greeting);
    }
}

void SmtpSession::onEncrypted()
{
    if (m_stage == Stage::ImplicitTls) {
        enter(Stage::Greeting);
    } else if (m_stage == Stage::TlsHandshake) {
        greet();
    }
}

void SmtpSession::onGraceOver()
{
    const bool saidNothing = m_stage == Stage::ImplicitTls || (m_stage == Stage::Greeting && !m_wire.hasHeard());
    if (saidNothing) {
        m_graceOver = true;
        wake();
    }
}

QString SmtpSession::stageName() const
{
    switch (m_stage) {
    case Stage::Connecting:
        return connectingTo();
    case Stage::ImplicitTls:
    case Stage::TlsHandshake:
        return say(mailtexts::securing, m_target.Host);
    case Stage::Greeting:
        return say(mailtexts::awaitingGreeting, m_target.Host);
    case Stage::Ehlo:
        return say(mailtexts::greetingEhlo, m_target.Host);
    case Stage::Helo:
        return say(mailtexts::greetingHelo, m_target.Host);
    case Stage::StartTls:
        return say(mailtexts::askingForTls, m_target.Host);
    case Stage::Auth:
        return m_login && !m_login->mechanism().isEmpty()
                   ? say(mailtexts::loggingInBy, m_target.Host, QString::fromLatin1(m_login->mechanism()))
                   : say(mailtexts::loggingIn, m_target.Host);
    case Stage::Ready:
        return say(mailtexts::connected, m_target.Host);
    case Stage::Sending:
        return say(mailtexts::sendingAddresses);
    case Stage::Reset:
        return say(mailtexts::takingBack);
    default:
        return {};
    }
}

QString SmtpSession::connectingTo() const
{
    const QString port = QString::number(m_target.Port);
    if (m_target.Proxy.type() == QNetworkProxy::NoProxy) {
        return say(mailtexts::connecting, m_target.Host, port);
    }
    return say(mailtexts::connectingByProxy, m_target.Host, port, m_target.Proxy.hostName(),
               QString::number(m_target.Proxy.port()));
}

} // namespace quillon
