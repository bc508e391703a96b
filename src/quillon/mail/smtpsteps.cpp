// The steps of a session, from the greeting to the mail that is sent: what each reply leads to.

#include "quillon/mail/mailtexts.h"
#include "quillon/mail/smtpsession.h"

#include <QHostInfo>

#include <algorithm>

namespace quillon {

namespace {

constexpr int serviceReady = 220;
constexpr int authContinues = 334;
constexpr int badSequence = 500; // 500 to 599: the server does not know EHLO, RFC 5321, 3.2

// A server may well look through the whole mail before it answers the final dot: RFC 5321, 4.5.3.2.6 gives it ten
// minutes where other answers are given less.
constexpr int endOfDataPatience = 10;
constexpr int endOfDataReplies = 2; // as long as any other: ten minutes after five

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

void SmtpSession::onHeard()
{
    while (m_stage != Stage::Closed) {
        std::optional<SmtpReply> reply = m_wire.nextReply();
        if (!reply) {
            break;
        }
        const bool isChallenge = m_stage == Stage::Auth && reply->Code == authContinues;
        if (m_login && !isChallenge) {
            // Only the server's words: our own would tell a password that is one of them.
            m_login->hideSecrets(*reply);
        }
        m_lastReply = isChallenge ? QString() : SmtpReply{reply->Code, reply->Lines.mid(0, 1)}.text();
        handle(*reply);
    }
    if (m_stage != Stage::Closed && !m_wire.parserFault().isEmpty()) {
        m_lastReply.clear();
        fail(m_login ? m_login->withoutSecrets(m_wire.parserFault()) : m_wire.parserFault());
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
        failWith({reply.Code, say(mailtexts::sessionEnded, reply.text())}, false);
        break;
    }
}

// Sends one command whose answer decides how to go on.
void SmtpSession::ask(Stage stage, const QByteArray &line)
{
    if (m_wire.hasPending()) {
        // It would be taken for the answer to this command.
        fail(say(mailtexts::outOfTurn));
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
            fail(say(mailtexts::noStartTls), 0, true);
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
        fail(say(mailtexts::moreBehindStartTls));
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
            fail(say(mailtexts::outOfTurn));
        } else {
            m_wire.writeLine(*answer);
        }
    } else if (!reply.isPositive()) {
        refuse(reply);
    } else if (!m_login->mayEnd()) {
        m_lastReply.clear();
        fail(say(mailtexts::loginEndedEarly));
    } else {
        enter(Stage::Ready); // the login stays, for what it hides
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
        m_wire.allowReply(std::chrono::milliseconds(0)); // it is our turn
        tell(say(mailtexts::sendingPercent, QString::number(m_transaction->percent())));
        break;
    case State::EndOfData:
        tell(say(mailtexts::sendingPercent, QString::number(100)));
        m_wire.allowReply(m_timeouts.Reply * endOfDataReplies);
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

} // namespace quillon
