#include "quillon/mail/smtpwire.h"

#include "quillon/mail/smtptls.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QSslError>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace quillon {

namespace {

// Enough to keep a fast line busy between two turns of the event loop, little enough to see a refusal early.
constexpr qint64 writeAhead = 128 * 1024;
constexpr qint64 readAhead = 64 * 1024;
constexpr auto farewell = 3s;

// Lets a socket end without its session: the peer has a moment to answer QUIT and close, then it is cut off.
void retire(QSslSocket *socket, bool politely)
{
    // Whatever the program's end cuts short then goes with the application.
    socket->setParent(QCoreApplication::instance());
    if (!politely || socket->state() != QAbstractSocket::ConnectedState) {
        socket->abort();
        socket->deleteLater();
        return;
    }
    QObject::connect(socket, &QSslSocket::readyRead, socket, [socket] { socket->readAll(); });
    QObject::connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(farewell, socket, [socket] {
        socket->abort();
        socket->deleteLater();
    });
    socket->write("QUIT\r\n");
    socket->flush();
}

} // namespace

SmtpWire::SmtpWire(QObject *parent) : QObject(parent), m_socket(new QSslSocket)
{
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this, &SmtpWire::onSilence);
    connect(m_socket, &QSslSocket::connected, this, [this] {
        // Commands are short and each awaits its answer: none may wait for the one before to be acknowledged.
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        Q_EMIT connected();
    });
    connect(m_socket, &QSslSocket::encrypted, this, &SmtpWire::onEncrypted);
    connect(m_socket, &QSslSocket::readyRead, this, &SmtpWire::onReadyRead);
    connect(m_socket, &QSslSocket::bytesWritten, this, &SmtpWire::onBytesWritten);
    connect(m_socket, &QSslSocket::encryptedBytesWritten, this, &SmtpWire::onBytesWritten);
    connect(m_socket, &QSslSocket::errorOccurred, this, &SmtpWire::onError);
    connect(m_socket, &QSslSocket::newSessionTicketReceived, this,
            [this] { SmtpTls::keepTicket(m_host, m_port, m_socket->sslConfiguration().sessionTicket()); });
    m_socket->setReadBufferSize(readAhead);
}

SmtpWire::~SmtpWire()
{
    close(false);
}

void SmtpWire::open(const QString &host, quint16 port, const QNetworkProxy &proxy)
{
    m_host = host;
    m_port = port;
    m_socket->setProxy(proxy);
    m_socket->connectToHost(host, port);
}

void SmtpWire::startTls()
{
    m_socket->setSslConfiguration(SmtpTls::configurationFor(m_host, m_port));
    m_socket->setPeerVerifyName(m_host);
    m_socket->startClientEncryption();
}

void SmtpWire::write(const QByteArray &octets)
{
    if (m_socket) {
        m_socket->write(octets);
    }
}

qint64 SmtpWire::unsent() const
{
    return m_socket ? m_socket->bytesToWrite() + m_socket->encryptedBytesToWrite() : 0;
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

void SmtpWire::allowSilence(std::chrono::milliseconds time)
{
    if (m_socket && time > 0ms) {
        m_silence.start(time);
    } else {
        m_silence.stop();
    }
}

void SmtpWire::close(bool politely)
{
    m_silence.stop();
    if (!m_socket) {
        return;
    }
    QSslSocket *socket = m_socket;
    m_socket.clear();
    socket->disconnect(this);
    retire(socket, politely);
}

void SmtpWire::onReadyRead()
{
    if (m_silence.isActive()) {
        m_silence.start();
    }
    m_heard = true;
    m_parser.feed(m_socket->readAll());
    Q_EMIT heard();
}

void SmtpWire::onBytesWritten()
{
    if (m_silence.isActive()) {
        m_silence.start();
    }
    Q_EMIT roomLeft();
}

void SmtpWire::onEncrypted()
{
    // TLS 1.2 has its ticket by now, 1.3 sends it later.
    SmtpTls::keepTicket(m_host, m_port, m_socket->sslConfiguration().sessionTicket());
    Q_EMIT encrypted();
}

void SmtpWire::onError(QAbstractSocket::SocketError error)
{
    QString reason;
    if (error == QAbstractSocket::SslHandshakeFailedError || !m_socket->sslHandshakeErrors().isEmpty()) {
        SmtpTls::forgetTicket(m_host, m_port);
        reason = tlsReason();
    } else if (error == QAbstractSocket::RemoteHostClosedError) {
        reason = u"the server has closed the connection"_s;
    } else {
        reason = printableText(m_socket->errorString());
    }
    // What the server said last may still lie in the socket, and says more than the loss of the connection does.
    if (m_socket->bytesAvailable() > 0) {
        QPointer<SmtpWire> self(this);
        onReadyRead();
        if (!self || !m_socket) {
            return;
        }
    }
    close(false);
    Q_EMIT failed(reason);
}

void SmtpWire::onSilence()
{
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(m_silence.intervalAsDuration());
    close(false);
    Q_EMIT failed(u"there was no answer for %1 s"_s.arg(seconds.count()));
}

// The certificates' faults in the library's own words, each once.
QString SmtpWire::tlsReason() const
{
    QStringList faults;
    const QList<QSslError> errors = m_socket->sslHandshakeErrors();
    for (const QSslError &error : errors) {
        if (!faults.contains(error.errorString())) {
            faults += error.errorString();
        }
    }
    if (faults.isEmpty()) {
        faults += m_socket->errorString();
    }
    return printableText(faults.join(u"; "_s));
}

} // namespace quillon
