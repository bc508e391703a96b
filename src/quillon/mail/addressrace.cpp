#include "quillon/mail/addressrace.h"

#include "quillon/mail/mailtexts.h"
#include "quillon/mail/smtpreply.h"

#include <QNetworkProxy>
#include <QTcpSocket>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace quillon {

namespace {
constexpr auto headStart = 250ms; // RFC 8305, 5
}

AddressRace::AddressRace(QObject *parent) : QObject(parent)
{
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &AddressRace::tryNext);
}

AddressRace::~AddressRace()
{
    stop();
}

void AddressRace::run(const QString &host, quint16 port)
{
    m_port = port;
    if (isLocalhost(host)) {
        onFound({{QHostAddress(QHostAddress::LocalHostIPv6), QHostAddress(QHostAddress::LocalHost)}, {}});
        return;
    }
    m_lookup = resolver().lookUp(host);
    const auto take = [this] { onFound(m_lookup.await_resume()); };
    if (m_lookup.isSettled()) {
        take();
    } else {
        m_lookup.whenSettled(take);
    }
}

void AddressRace::stop()
{
    m_lookup = {};
    m_next.stop();
    m_waiting.clear();
    const QList<QTcpSocket *> attempts = std::exchange(m_attempts, {});
    for (QTcpSocket *socket : attempts) {
        drop(socket);
    }
}

QList<QHostAddress> AddressRace::takingTurns(const QList<QHostAddress> &addresses)
{
    QList<QHostAddress> same;
    QList<QHostAddress> other;
    for (const QHostAddress &address : addresses) {
        QList<QHostAddress> &family = address.protocol() == addresses.constFirst().protocol() ? same : other;
        if (!family.contains(address)) {
            family += address;
        }
    }
    QList<QHostAddress> turns;
    for (qsizetype i = 0; i < qMax(same.size(), other.size()); ++i) {
        turns += same.mid(i, 1);
        turns += other.mid(i, 1);
    }
    return turns;
}

void AddressRace::onFound(const HostAddresses &found)
{
    m_waiting = takingTurns(found.Addresses);
    if (m_waiting.isEmpty()) {
        Q_EMIT lost(found.Fault.isEmpty() ? say(mailtexts::hostNotFound) : printableText(found.Fault));
        return;
    }
    tryNext();
}

void AddressRace::tryNext()
{
    if (m_waiting.isEmpty()) {
        return;
    }
    auto *socket = new QTcpSocket(this);
    m_attempts += socket;
    socket->setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    connect(socket, &QTcpSocket::connected, this, [this, socket] { onConnected(socket); });
    connect(socket, &QTcpSocket::errorOccurred, this, [this, socket] { onFailed(socket); });
    const QHostAddress address = m_waiting.takeFirst();
    if (!m_waiting.isEmpty()) {
        m_next.start(headStart);
    }
    socket->connectToHost(address, m_port); // may come to its end from within
}

void AddressRace::onConnected(QTcpSocket *socket)
{
    m_attempts.removeOne(socket);
    socket->disconnect(this);
    socket->setParent(nullptr);
    stop();
    Q_EMIT won(socket);
}

void AddressRace::onFailed(QTcpSocket *socket)
{
    const QString reason = printableText(socket->errorString());
    m_attempts.removeOne(socket);
    drop(socket);
    if (!m_waiting.isEmpty()) {
        tryNext();
    } else if (m_attempts.isEmpty()) {
        Q_EMIT lost(reason);
    }
}

void AddressRace::drop(QTcpSocket *socket)
{
    socket->disconnect(this);
    socket->abort();
    socket->deleteLater();
}

} // namespace quillon
