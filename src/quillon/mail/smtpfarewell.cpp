#include "quillon/mail/smtpfarewell.h"

#include <QCoreApplication>
#include <QHash>
#include <QPointer>

#include <algorithm>

using namespace std::chrono_literals;

namespace quillon {

namespace {

constexpr auto patience = 3s;
constexpr auto shortSession = 50ms;    // after as long as this a server has surely forgotten the session before
constexpr auto momentOfAShort = 100ms; // for the answer to QUIT, which comes at once where sessions are short
constexpr int mostAtOneServer = 2;
constexpr int closing = 221;             // the answer to QUIT, after which the server closes (RFC 5321, 4.1.1.10)
constexpr int serviceNotAvailable = 421; // after which it closes as well

struct Count {
    int all = 0;
    int leaving = 0;
    int brief = 0; ///< of these, short ones
};

struct Waiter {
    SmtpPeer peer;
    QPointer<QObject> context;
    std::function<void()> go;
};

struct Registry {
    QHash<SmtpPeer, Count> counts;
    QList<Waiter> waiters;
};

Registry &registry()
{
    static auto *const instance = new Registry; // never destroyed: what is counted may outlive any static
    return *instance;
}

// Where none is being left no waiting helps: those that stand are in use.
bool hasRoom(const SmtpPeer &peer)
{
    const Count count = registry().counts.value(peer);
    return count.leaving == 0 || (count.brief == 0 && count.all < mostAtOneServer);
}

// One after the other: each that goes takes up room.
void letWaitersGo()
{
    QList<Waiter> &waiters = registry().waiters;
    while (true) {
        waiters.removeIf([](const Waiter &waiter) { return waiter.context.isNull(); });
        const auto next =
            std::find_if(waiters.cbegin(), waiters.cend(), [](const Waiter &waiter) { return hasRoom(waiter.peer); });
        if (next == waiters.cend()) {
            return;
        }
        const std::function<void()> go = next->go;
        waiters.erase(next);
        go();
    }
}

} // namespace

SmtpStanding::SmtpStanding(SmtpPeer peer) : m_peer(std::move(peer))
{
    ++registry().counts[m_peer].all;
    m_short.setSingleShot(true);
    QObject::connect(&m_short, &QTimer::timeout, &m_short, [this] { forgive(); });
}

SmtpStanding::~SmtpStanding()
{
    Count &count = registry().counts[m_peer];
    --count.all;
    count.leaving -= m_leaving ? 1 : 0;
    count.brief -= m_short.isActive() ? 1 : 0;
    if (count.all == 0) {
        registry().counts.remove(m_peer);
    }
    if (!registry().waiters.isEmpty() && QCoreApplication::instance() != nullptr) {
        QMetaObject::invokeMethod(QCoreApplication::instance(), letWaitersGo, Qt::QueuedConnection);
    }
}

void SmtpStanding::leave()
{
    if (!m_leaving) {
        m_leaving = true;
        ++registry().counts[m_peer].leaving;
        if (std::chrono::steady_clock::now() - m_since < shortSession) {
            ++registry().counts[m_peer].brief;
            m_short.start(momentOfAShort);
        }
    }
}

// The server takes its time: the next one goes beside it.
void SmtpStanding::forgive()
{
    --registry().counts[m_peer].brief;
    letWaitersGo();
}

void SmtpStanding::whenRoom(const SmtpPeer &peer, QObject *context, const std::function<void()> &go)
{
    if (hasRoom(peer)) {
        go();
    } else {
        registry().waiters += {peer, context, go};
    }
}

void SmtpFarewell::begin(Estate estate)
{
    // It ends by itself; what the program's end cuts short goes with the application.
    auto *farewell = new SmtpFarewell(std::move(estate));
    farewell->start();
}

SmtpFarewell::SmtpFarewell(Estate estate) : QObject(QCoreApplication::instance()), m_estate(std::move(estate))
{
    m_estate.Socket->setParent(this);
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, m_estate.Socket, &QTcpSocket::abort);
    connect(m_estate.Socket, &QTcpSocket::readyRead, this, &SmtpFarewell::onReadyRead);
    // Nothing stands for the server from here on, whenever the object itself may go.
    connect(m_estate.Socket, &QTcpSocket::disconnected, this, [this] {
        m_estate.Standing.reset();
        deleteLater();
    });
}

void SmtpFarewell::start()
{
    if (m_estate.Standing) {
        m_estate.Standing->leave();
    }
    m_patience.start(patience);
    QByteArray quit = "QUIT\r\n";
    if (m_estate.Tls) {
        m_estate.Tls->write(quit);
        quit = m_estate.Tls->takeOutput();
    }
    m_estate.Socket->write(quit);
    m_estate.Socket->flush();
}

void SmtpFarewell::onReadyRead()
{
    if (m_finished) {
        m_estate.Socket->readAll();
        return;
    }
    const QByteArray octets = m_estate.Socket->readAll();
    if (!m_estate.Tls) {
        m_estate.Input.feed(octets);
    } else {
        m_estate.Tls->feed(octets);
        m_estate.Input.feed(m_estate.Tls->read());
        m_estate.Socket->write(m_estate.Tls->takeOutput()); // TLS itself may have something to answer
    }
    hear();
}

void SmtpFarewell::hear()
{
    bool over = m_estate.Tls && m_estate.Tls->state() != TlsClient::State::Ready;
    while (const std::optional<SmtpReply> reply = m_estate.Input.next()) {
        over = over || reply->Code == closing || reply->Code == serviceNotAvailable || m_estate.Unanswered == 0;
        --m_estate.Unanswered;
    }
    if (over || !m_estate.Input.fault().isEmpty()) {
        finish();
    }
}

// Over TLS a server waits for our end of it before it takes the session for ended, some for seconds.
void SmtpFarewell::finish()
{
    m_finished = true;
    if (m_estate.Tls) {
        m_estate.Tls->close();
        m_estate.Socket->write(m_estate.Tls->takeOutput());
        m_estate.Socket->flush();
    }
    m_estate.Socket->disconnectFromHost();
}

} // namespace quillon
