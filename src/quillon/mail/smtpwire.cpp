#include "quillon/mail/smtpwire.h"

#include "quillon/mail/addressrace.h"
#include "quillon/mail/mailtexts.h"
#include "quillon/mail/socksclient.h"

#include <QCoreApplication>
#include <QHostAddress>

#include <algorithm>

using namespace std::chrono_literals;

namespace quillon {

namespace {

// Enough to keep a fast line busy between two turns of the event loop, little enough to see a refusal early.
constexpr qint64 writeAhead = 128 * 1024;
constexpr qint64 readAhead = 64 * 1024;

// What TLS begins with is a number far below any letter or digit.
bool isText(char octet)
{
    return octet >= ' ' && octet <= '~';
}

} // namespace

SmtpWire::SmtpWire(QObject *parent) : QObject(parent)
{
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this, &SmtpWire::onSilence);
    use(new QTcpSocket);
}

SmtpWire::~SmtpWire()
{
    close(false);
}

void SmtpWire::use(QTcpSocket *socket)
{
    m_socket = socket;
    connect(socket, &QTcpSocket::connected, this, &SmtpWire::onConnected);
    connect(socket, &QTcpSocket::readyRead, this, &SmtpWire::onReadyRead);
    connect(socket, &QTcpSocket::bytesWritten, this, &SmtpWire::onBytesWritten);
    connect(socket, &QTcpSocket::errorOccurred, this, &SmtpWire::onError);
    socket->setReadBufferSize(readAhead);
}

void SmtpWire::open(const QString &host, quint16 port, const QNetworkProxy &proxy)
{
    m_host = host;
    m_port = port;
    m_standing = std::make_unique<SmtpStanding>(SmtpPeer(host.toLower(), port));
    if (proxy.type() == QNetworkProxy::NoProxy) {
        reach(host, port);
        return;
    }
    m_socks = std::make_unique<SocksClient>(host, port, proxy.user(), proxy.password());
    reach(proxy.hostName(), proxy.port());
}

void SmtpWire::reach(const QString &host, quint16 port)
{
    if (QHostAddress(host).isNull()) {
        race(host, port);
        return;
    }
    m_socket->setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_socket->connectToHost(host, port);
}

void SmtpWire::race(const QString &host, quint16 port)
{
    m_race = new AddressRace(QCoreApplication::instance());
    connect(m_race, &AddressRace::won, this, [this](QTcpSocket *socket) {
        m_race->deleteLater();
        m_race.clear();
        delete m_socket.data(); // it has never been used
        use(socket);
        onConnected();
    });
    connect(m_race, &AddressRace::lost, this, [this](const QString &reason) { giveUp(failureOf(reason)); });
    m_race->run(host, port);
}

void SmtpWire::onConnected()
{
    // Commands are short and each awaits its answer: none may wait for the one before to be acknowledged.
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (m_socks) {
        talkToProxy({});
    } else {
        Q_EMIT connected();
    }
}

// What a loss of the connection is to be told as: until the proxy has made it, it is the proxy that is lost.
QString SmtpWire::failureOf(const QString &reason) const
{
    return m_socks ? say(mailtexts::proxyUnreachable, reason) : reason;
}

// Takes what the proxy says, until it has made the connection; gives what comes behind that, which is the server's.
QByteArray SmtpWire::talkToProxy(const QByteArray &octets)
{
    m_socks->feed(octets);
    m_socket->write(m_socks->takeOutput());
    flush();
    if (!m_socket || m_socks->state() == SocksClient::State::Talking) {
        return {};
    }
    if (m_socks->state() == SocksClient::State::Failed) {
        giveUp(m_socks->fault());
        return {};
    }
    const QByteArray rest = m_socks->takeRest();
    m_socks.reset();
    const QPointer<SmtpWire> self(this);
    Q_EMIT connected();
    return self && m_socket ? rest : QByteArray();
}

void SmtpWire::startTls()
{
    if (m_socket) {
        m_tls = std::make_unique<TlsClient>(m_host, m_port);
        shakeHands();
    }
}

void SmtpWire::write(const QByteArray &octets)
{
    if (!m_socket) {
        return;
    }
    if (m_tls) {
        m_tls->write(octets);
        m_socket->write(m_tls->takeOutput());
    } else {
        m_socket->write(octets);
    }
}

void SmtpWire::flush()
{
    if (m_socket) {
        m_flushing = true;
        m_socket->flush();
        m_flushing = false;
    }
    if (m_tls && m_tls->state() == TlsClient::State::Failed) {
        giveUp(m_tls->fault());
    }
}

qint64 SmtpWire::unsent() const
{
    return m_socket ? m_socket->bytesToWrite() : 0;
}

bool SmtpWire::hasRoom() const
{
    return m_socket && unsent() < writeAhead;
}

QByteArray SmtpWire::addressLiteral() const
{
    QHostAddress address = m_socket ? m_socket->localAddress() : QHostAddress();
    bool isIPv4 = false;
    const quint32 mapped = address.toIPv4Address(&isIPv4);
    if (isIPv4) {
        return '[' + QHostAddress(mapped).toString().toLatin1() + ']';
    }
    address.setScopeId({});
    return address.isNull() ? QByteArray("[127.0.0.1]") : "[IPv6:" + address.toString().toLatin1() + ']';
}

// What a proxy says on the way to the server gives neither of them more time: connecting has one time for all of it.
void SmtpWire::noteSign()
{
    if (!m_socks) {
        m_lastSign = Clock::now();
        m_silentSince = m_lastSign;
    }
}

void SmtpWire::allowSilence(std::chrono::milliseconds time)
{
    m_silentSince = Clock::now();
    allowMoreSilence(time);
}

void SmtpWire::allowMoreSilence(std::chrono::milliseconds time)
{
    m_allowed = m_socket ? time : 0ms;
    if (m_allowed <= 0ms) {
        return; // a timer that stands finds nothing to do
    }
    // Starting the timer anew at every sign of the peer would cost more than all else here: it only looks at the clock
    // when it goes off, and is started anew when that would be too late.
    m_lastSign = Clock::now();
    const Clock::time_point due = patienceEnds();
    if (!m_silence.isActive() || due < m_due) {
        m_due = due;
        m_silence.start(std::chrono::ceil<std::chrono::milliseconds>(due - m_lastSign));
    }
}

void SmtpWire::allowReply(std::chrono::milliseconds time)
{
    m_allowedReply = time;
    m_replyDue = Clock::now() + time;
}

SmtpWire::Clock::time_point SmtpWire::patienceEnds() const
{
    const Clock::time_point end = m_lastSign + m_allowed;
    return m_allowedReply > 0ms ? std::min(end, m_replyDue) : end;
}

void SmtpWire::close(bool politely)
{
    m_silence.stop();
    m_allowed = 0ms;
    if (m_race) {
        m_race->stop();
        m_race->disconnect(this);
        m_race->deleteLater(); // it may be within a call of its own
        m_race.clear();
    }
    if (!m_socket) {
        return;
    }
    QTcpSocket *socket = m_socket;
    m_socket.clear();
    socket->disconnect(this);
    if (politely && socket->state() == QAbstractSocket::ConnectedState && (!m_tls || isEncrypted())) {
        SmtpFarewell::begin({socket, std::move(m_tls), std::move(m_standing), std::move(m_parser), m_unanswered});
        return;
    }
    // It may be within a signal of its own.
    socket->setParent(QCoreApplication::instance());
    socket->abort();
    socket->deleteLater();
    m_standing.reset();
}

std::optional<SmtpReply> SmtpWire::nextReply()
{
    std::optional<SmtpReply> reply = m_parser.next();
    if (reply) {
        m_unanswered = std::max(0, m_unanswered - 1);
        m_replyDue = Clock::now() + m_allowedReply;
    }
    return reply;
}

void SmtpWire::onReadyRead()
{
    noteSign();
    QByteArray octets = m_socket->readAll();
    if (m_socks) {
        octets = talkToProxy(octets);
        if (octets.isEmpty()) {
            return;
        }
    }
    if (!m_tls) {
        take(octets);
        return;
    }
    if (!octets.isEmpty() && !m_tlsHeard && m_tls->state() == TlsClient::State::Handshake) {
        if (!m_plainWords.isEmpty() || isText(octets.front())) {
            hearPlainWords(octets);
            return;
        }
        m_tlsHeard = true;
    }
    m_tls->feed(octets);
    const QPointer<SmtpWire> self(this);
    if (m_tls->state() == TlsClient::State::Handshake) {
        shakeHands();
    }
    if (!self || !m_socket || !isEncrypted()) {
        return;
    }
    const QByteArray text = m_tls->read();
    m_socket->write(m_tls->takeOutput()); // TLS itself may have something to answer
    const TlsClient::State state = m_tls->state();
    if (!text.isEmpty()) {
        take(text);
    }
    if (!self || !m_socket) {
        return;
    }
    if (state == TlsClient::State::Ended) {
        giveUp(say(mailtexts::closedConnection));
    } else if (state == TlsClient::State::Failed) {
        giveUp(m_tls->fault());
    }
}

// A server that is not ready for TLS, or does not know it there, says so in words, which say more than that they are no
// TLS. They are heard to the end of the reply.
void SmtpWire::hearPlainWords(const QByteArray &octets)
{
    m_plainWords += octets;
    m_parser.feed(octets);
    if (m_parser.next() || !m_parser.fault().isEmpty()) {
        giveUp({});
    }
}

void SmtpWire::take(const QByteArray &octets)
{
    m_heard = true;
    m_parser.feed(octets);
    Q_EMIT heard();
}

void SmtpWire::shakeHands()
{
    m_tls->shakeHands();
    m_socket->write(m_tls->takeOutput()); // at a failure this says so to the server
    if (m_tls->state() == TlsClient::State::Failed) {
        flush();
    } else if (m_tls->state() == TlsClient::State::Ready) {
        Q_EMIT encrypted(); // what it writes goes along with the end of the handshake
    } else {
        flush();
    }
}

void SmtpWire::onBytesWritten()
{
    noteSign();
    m_replyDue = Clock::now() + m_allowedReply;
    if (!m_flushing && !m_socks) {
        Q_EMIT roomLeft();
    }
}

void SmtpWire::onError(QAbstractSocket::SocketError error)
{
    const bool closed = error == QAbstractSocket::RemoteHostClosedError;
    const QString reason = closed ? say(m_socks ? mailtexts::proxyClosed : mailtexts::closedConnection)
                                  : failureOf(printableText(m_socket->errorString()));
    // What the server said last may still lie in the socket, and says more than the loss of the connection does.
    if (m_socket->bytesAvailable() > 0) {
        const QPointer<SmtpWire> self(this);
        onReadyRead();
        if (!self) {
            return;
        }
    }
    giveUp(reason);
}

void SmtpWire::giveUp(const QString &reason)
{
    if (m_socket) {
        const QByteArray words = m_plainWords;
        close(false);
        Q_EMIT failed(words.isEmpty() ? reason : say(mailtexts::plainWords, printableText(words)));
    }
}

void SmtpWire::onSilence()
{
    if (m_allowed <= 0ms) {
        return;
    }
    const Clock::time_point now = Clock::now();
    const Clock::time_point end = patienceEnds();
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - now);
    if (left > 0ms) {
        m_due = end;
        m_silence.start(left);
        return;
    }
    if (m_lastSign + m_allowed > now) {
        const auto allowed = std::chrono::ceil<std::chrono::seconds>(m_allowedReply);
        giveUp(say(mailtexts::answerTooSlow, QString::number(allowed.count())));
        return;
    }
    const auto before = std::chrono::round<std::chrono::seconds>(m_lastSign - m_silentSince);
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(m_allowed) + before;
    giveUp(say(mailtexts::noAnswer, QString::number(seconds.count())));
}

} // namespace quillon
