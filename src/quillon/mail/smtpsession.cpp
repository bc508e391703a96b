#include "quillon/mail/smtpsession.h"

#include <QHostInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int serviceReady = 220;
constexpr int authContinues = 334;
constexpr int badSequence = 500; // 500 to 599: the server does not know EHLO, RFC 5321, 3.2

// A server may well look through the whole mail before it answers the final dot: RFC 5321, 4.5.3.2.6 gives it ten
// minutes where other answers are given less.
constexpr int endOfDataPatience = 10;

// The name this end gives itself: the host's if it is a full one, else the address (RFC 5321, 4.1.4).
QByteArray ownName(const SmtpWire &wire)
{
    static const QByteArray hostName = [] {
        const QByteArray name = QHostInfo::localHostName().toUtf8();
        const auto fits = [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.';
        };
        const bool full = name.contains('.') && !name.startsWith('.') && !name.endsWith('.') && !name.contains("..") &&
                          std::all_of(name.cbegin(), name.cend(), fits);
        return full && !name.toLower().startsWith("localhost") ? name : QByteArray();
    }();
    return hostName.isEmpty() ? wire.addressLiteral() : hostName;
}

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
    m_wire.allowSilence(m_timeouts.Connect);
    m_wire.open(m_target.Host, m_target.Port, m_target.Proxy);
    waitFor([this] { return m_stage == Stage::Ready || m_stage == Stage::Closed || m_graceOver; });
}

bool SmtpSession::settle()
{
    const bool settled = m_stage == Stage::Ready || m_stage == Stage::Closed || m_stage == Stage::Idle;
    if (!settled) {
        // The time that the program itself has let pass since is not the server's.
        m_wire.allowSilence(m_timeouts.Silence);
        waitFor([this] { return m_stage == Stage::Ready || m_stage == Stage::Closed; });
    }
    return m_stage == Stage::Ready;
}

bool SmtpSession::send(const SmtpMail &mail)
{
    if (!settle()) {
        return false;
    }
    m_transaction = std::make_unique<SmtpTransaction>(m_wire, mail, m_extensions);
    enter(Stage::Sending);
    m_transaction->begin();
    followTransaction();
    waitFor([this] { return m_stage == Stage::Closed || m_transaction->isOver(); });
    const bool sent = m_transaction->state() == SmtpTransaction::State::Sent;
    m_transaction.reset();
    return sent;
}

void SmtpSession::close()
{
    // QUIT has a meaning only where the server listens to commands.
    const bool politely = m_stage == Stage::Ready || m_stage == Stage::Reset;
    m_stage = Stage::Closed;
    m_failure.reset();
    m_grace.stop();
    m_wire.close(politely);
    wake();
}

// Runs the event loop until the condition is met. A loop that ends without wake() was ended by the program's exit.
template <typename Condition> void SmtpSession::waitFor(Condition isMet)
{
    ++m_calls;
    while (!isMet()) {
        QEventLoop loop;
        m_loop = &loop;
        m_woken = false;
        loop.exec();
        m_loop = nullptr;
        if (!m_woken) {
            close();
            break;
        }
    }
    deliverProgress();
    --m_calls;
}

void SmtpSession::wake()
{
    m_woken = true;
    if (m_loop != nullptr) {
        m_loop->quit();
    }
}

void SmtpSession::enter(Stage stage)
{
    m_stage = stage;
    if (stage == Stage::Ready) {
        m_wire.allowSilence(std::chrono::milliseconds(0));
        wake();
    } else {
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
    if (m_calls == 0) {
        // What happens between two calls is nobody's progress.
        m_told.clear();
    }
    while (!m_told.isEmpty()) {
        const auto [stage, text] = m_told.takeFirst();
        Q_EMIT progressed(stage, text);
    }
}

// Ends the session with the sentence "stage failed: reason; last reply".
void SmtpSession::fail(const QString &reason, int code, bool politely)
{
    const QString stage = m_stage == Stage::Sending ? m_transaction->stageName() : stageName();
    const QString said = m_lastReply.isEmpty() ? QString() : u" (its last answer was “%1”)"_s.arg(m_lastReply);
    const QString text = u"%1 failed: %2%3."_s.arg(stage, reason, said);
    failWith({code, m_login ? m_login->withoutSecrets(text) : text}, politely);
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
    QString text = reply.text();
    if (m_login) {
        text = m_login->withoutSecrets(text);
    }
    failWith({reply.Code, u"%1 failed: the server answered “%2”."_s.arg(stageName(), text)}, reply.isRefusal());
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

void SmtpSession::onHeard()
{
    while (m_stage != Stage::Closed) {
        const std::optional<SmtpReply> reply = m_wire.nextReply();
        if (!reply) {
            break;
        }
        m_lastReply = reply->Code == authContinues ? QString() : SmtpReply{reply->Code, reply->Lines.mid(0, 1)}.text();
        handle(*reply);
    }
    if (m_stage != Stage::Closed && !m_wire.parserFault().isEmpty()) {
        m_lastReply.clear();
        fail(m_wire.parserFault());
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

void SmtpSession::handle(const SmtpReply &reply)
{
    switch (m_stage) {
    case Stage::Greeting:
        reply.Code == serviceReady ? greet() : refuse(reply);
        break;
    case Stage::Ehlo:
    case Stage::Helo:
        handleEhlo(reply);
        break;
    case Stage::StartTls:
        handleStartTls(reply);
        break;
    case Stage::Auth:
        handleAuth(reply);
        break;
    case Stage::Sending:
        m_transaction->handle(reply);
        followTransaction();
        break;
    case Stage::Reset:
        reply.isPositive() ? enter(Stage::Ready) : refuse(reply);
        break;
    default:
        // Nothing was asked: a server that ends an idle session, or one that has lost its place.
        failWith({reply.Code, u"The server has ended the session: “%1”."_s.arg(reply.text())}, false);
        break;
    }
}

// Sends one command whose answer decides how to go on.
void SmtpSession::ask(Stage stage, const QByteArray &line)
{
    if (m_wire.hasPending()) {
        // It would be taken for the answer to this command.
        fail(u"the server talks out of turn"_s);
        return;
    }
    enter(stage);
    m_wire.writeLine(line);
}

void SmtpSession::greet()
{
    ask(Stage::Ehlo, "EHLO " + ownName(m_wire));
}

void SmtpSession::handleEhlo(const SmtpReply &reply)
{
    if (m_stage == Stage::Ehlo && reply.Code >= badSequence) {
        ask(Stage::Helo, "HELO " + ownName(m_wire));
        return;
    }
    if (!reply.isPositive()) {
        refuse(reply);
        return;
    }
    // What was offered before TLS may have been forged and counts no more.
    m_extensions = m_stage == Stage::Ehlo ? SmtpExtensions::fromEhlo(reply) : SmtpExtensions();
    goOn();
}

// After EHLO or HELO: TLS if it is wanted and not there, then the login if there is a user.
void SmtpSession::goOn()
{
    if (m_target.StartTls && !m_wire.isEncrypted()) {
        if (!m_extensions.StartTls) {
            m_stage = Stage::StartTls;
            fail(u"the server does not offer it, and nothing was sent in the clear"_s, 0, true);
            return;
        }
        ask(Stage::StartTls, "STARTTLS");
    } else if (!m_target.User.isEmpty()) {
        beginLogin();
    } else {
        enter(Stage::Ready);
    }
}

void SmtpSession::handleStartTls(const SmtpReply &reply)
{
    if (reply.Code != serviceReady) {
        refuse(reply);
        return;
    }
    if (m_wire.hasPending()) {
        // Whatever follows this reply in the clear may come from anybody on the way.
        fail(u"there was more behind the answer to STARTTLS"_s);
        return;
    }
    m_wire.forgetInput();
    m_extensions = SmtpExtensions();
    m_lastReply.clear();
    enter(Stage::TlsHandshake);
    m_wire.startTls();
}

void SmtpSession::beginLogin()
{
    m_login.emplace(m_extensions, m_wire.isEncrypted(), m_target.User, m_target.Password, m_target.Host);
    const QByteArray command = m_login->command();
    if (command.isEmpty()) {
        m_stage = Stage::Auth;
        m_lastReply.clear();
        fail(m_login->fault(), 0, true);
        return;
    }
    ask(Stage::Auth, command);
}

void SmtpSession::handleAuth(const SmtpReply &reply)
{
    if (reply.Code == authContinues) {
        const std::optional<QByteArray> answer = m_login->answer(reply);
        if (!answer) {
            m_wire.writeLine("*");
            fail(m_login->fault(), 0, true);
        } else if (m_wire.hasPending()) {
            fail(u"the server talks out of turn"_s);
        } else {
            m_wire.writeLine(*answer);
        }
    } else if (!reply.isPositive()) {
        refuse(reply);
    } else if (!m_login->mayEnd()) {
        m_lastReply.clear();
        fail(u"the server ended the login before it had proved itself"_s);
    } else {
        m_login.reset();
        m_lastReply.clear();
        enter(Stage::Ready);
    }
}

// Acts on what the transaction has come to.
void SmtpSession::followTransaction()
{
    if (m_stage != Stage::Sending) {
        return; // the connection was lost underneath it
    }
    using State = SmtpTransaction::State;
    switch (m_transaction->state()) {
    case State::Body:
        tell(u"Sending the message: %1 %"_s.arg(m_transaction->percent()));
        break;
    case State::EndOfData:
        tell(u"Sending the message: 100 %"_s);
        m_wire.allowSilence(m_timeouts.Silence * endOfDataPatience);
        break;
    case State::Sent:
        enter(Stage::Ready);
        break;
    case State::Refused:
        m_failure = m_transaction->failure();
        if (m_transaction->needsReset()) {
            ask(Stage::Reset, "RSET");
        } else {
            enter(Stage::Ready);
        }
        wake();
        break;
    case State::Broken:
        failWith(m_transaction->failure(), false);
        break;
    default:
        break;
    }
}

QString SmtpSession::stageName() const
{
    switch (m_stage) {
    case Stage::Connecting:
        return u"Connecting to %1"_s.arg(place());
    case Stage::ImplicitTls:
    case Stage::TlsHandshake:
        return u"Securing the connection to %1 (TLS)"_s.arg(m_target.Host);
    case Stage::Greeting:
        return u"Waiting for the greeting of %1"_s.arg(m_target.Host);
    case Stage::Ehlo:
        return u"Greeting %1 (EHLO)"_s.arg(m_target.Host);
    case Stage::Helo:
        return u"Greeting %1 (HELO)"_s.arg(m_target.Host);
    case Stage::StartTls:
        return u"Asking %1 for encryption (STARTTLS)"_s.arg(m_target.Host);
    case Stage::Auth:
        return m_login ? u"Logging in at %1 (AUTH %2)"_s.arg(m_target.Host, QString::fromLatin1(m_login->mechanism()))
                       : u"Logging in at %1"_s.arg(m_target.Host);
    case Stage::Ready:
        return u"Connected to %1"_s.arg(m_target.Host);
    case Stage::Sending:
        return u"Sending the addresses"_s;
    case Stage::Reset:
        return u"Taking the message back (RSET)"_s;
    default:
        return {};
    }
}

QString SmtpSession::place() const
{
    const QString server = u"%1, port %2,"_s.arg(m_target.Host).arg(m_target.Port);
    if (m_target.Proxy.type() == QNetworkProxy::NoProxy) {
        return server;
    }
    return u"%1 through the proxy %2, port %3,"_s.arg(server, m_target.Proxy.hostName()).arg(m_target.Proxy.port());
}

} // namespace quillon
