#include "support/scriptedserver.h"

#include <QSslConfiguration>
#include <QTimer>

#include <algorithm>
#include <sys/socket.h>

namespace testsupport {

ScriptedServer::ScriptedServer(QObject *parent) : QTcpServer(parent)
{
    if (!listen(QHostAddress::LocalHost)) {
        qFatal("the scripted server cannot listen");
    }
}

void ScriptedServer::narrow()
{
    // On the socket that listens, since the size is settled when a connection is made.
    constexpr int least = 1;
    if (::setsockopt(static_cast<int>(socketDescriptor()), SOL_SOCKET, SO_RCVBUF, &least, sizeof least) != 0) {
        qFatal("the scripted server cannot become narrow");
    }
}

qsizetype ScriptedServer::count(const QByteArray &beginning) const
{
    return std::count_if(Lines.cbegin(), Lines.cend(),
                         [&beginning](const QByteArray &line) { return line.startsWith(beginning); });
}

void ScriptedServer::say(const QByteArray &octets)
{
    if (m_last) {
        m_last->write(octets);
        m_last->flush();
    }
}

void ScriptedServer::hangUp()
{
    if (m_last) {
        m_last->disconnectFromHost();
    }
}

void ScriptedServer::incomingConnection(qintptr descriptor)
{
    ++Connections;
    auto *socket = new QSslSocket(this);
    socket->setSocketDescriptor(descriptor);
    m_last = socket;
    socket->setReadBufferSize(Deaf ? 1024 : 0);
    connect(socket, &QSslSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
    connect(socket, &QSslSocket::disconnected, this, [this, socket] {
        ++Ended;
        m_input.remove(socket);
        m_held.remove(socket);
        if (m_inBody == socket) {
            m_inBody = nullptr;
        }
        socket->deleteLater();
    });
    if (ImplicitTls) {
        connect(socket, &QSslSocket::encrypted, this, [this, socket] { send(socket, Greeting); });
        startTls(socket);
    } else {
        send(socket, Greeting);
    }
    if (m_closings.contains(QByteArray())) {
        socket->disconnectFromHost();
    }
}

void ScriptedServer::onReadyRead(QSslSocket *socket)
{
    if (Deaf && m_inBody == socket) {
        send(socket, std::exchange(Interruption, QByteArray()));
        return;
    }
    m_input[socket] += socket->readAll();
    while (true) {
        if (m_inBody == socket) {
            onBody(socket);
            if (m_inBody == socket) {
                return;
            }
        }
        QByteArray &input = m_input[socket];
        const qsizetype end = input.indexOf("\r\n");
        if (end < 0) {
            return;
        }
        const QByteArray line = input.left(end);
        input.remove(0, end + 2);
        onLine(socket, line);
    }
}

void ScriptedServer::onLine(QSslSocket *socket, const QByteArray &line)
{
    Lines += line;
    const QByteArray reply = replyTo(line);
    send(socket, reply);
    if (line == "DATA" && reply.startsWith("354")) {
        m_inBody = socket;
        BodyBegun.clear();
    }
    if (line == "STARTTLS" && reply.startsWith("220") && !Certificate.isNull()) {
        startTls(socket);
    }
    const bool closes = std::any_of(m_closings.cbegin(), m_closings.cend(), [&line](const QByteArray &beginning) {
        return !beginning.isEmpty() && line.startsWith(beginning);
    });
    if (closes || (line == "QUIT" && !StaysAfterQuit)) {
        socket->disconnectFromHost();
    }
}

void ScriptedServer::onBody(QSslSocket *socket)
{
    QByteArray &input = m_input[socket];
    const qsizetype from = qMax<qsizetype>(0, BodyBegun.size() - 4);
    BodyBegun += input;
    input.clear();
    if (InterruptAfter >= 0 && BodyBegun.size() >= InterruptAfter) {
        InterruptAfter = -1;
        send(socket, Interruption);
        if (CloseAfterInterruption) {
            socket->disconnectFromHost();
            return;
        }
    }
    qsizetype end = BodyBegun.startsWith(".\r\n") ? 3 : -1;
    if (end < 0) {
        const qsizetype found = BodyBegun.indexOf("\r\n.\r\n", from);
        if (found < 0) {
            return;
        }
        end = found + 5;
    }
    input = BodyBegun.mid(end);
    Mails += BodyBegun.left(end);
    BodyBegun.clear();
    m_inBody = nullptr;
    send(socket, replyTo("."));
    if (m_closings.contains(".")) {
        socket->disconnectFromHost();
    }
}

void ScriptedServer::send(QSslSocket *socket, const QByteArray &reply)
{
    if (reply.isEmpty()) {
        return;
    }
    QByteArray &held = m_held[socket];
    if (!held.isEmpty()) {
        held += reply;
        return;
    }
    if (CutAt <= 0 || CutAt >= reply.size()) {
        socket->write(reply);
        return;
    }
    // The rest goes out when the first part has left this process and the client has had its turn.
    socket->write(reply.left(CutAt));
    socket->flush();
    held = reply.mid(CutAt);
    QTimer::singleShot(0, socket, [this, socket] { socket->write(m_held.take(socket)); });
}

QByteArray ScriptedServer::replyTo(const QByteArray &line) const
{
    if (Responder) {
        if (const std::optional<QByteArray> reply = Responder(line)) {
            return *reply;
        }
    }
    QByteArray best;
    bool found = false;
    for (auto it = m_answers.cbegin(); it != m_answers.cend(); ++it) {
        if (line.startsWith(it.key()) && (!found || it.key().size() > best.size())) {
            best = it.key();
            found = true;
        }
    }
    if (found) {
        return m_answers.value(best);
    }
    if (line.startsWith("EHLO")) {
        QByteArray reply = Offers.isEmpty() ? "250 scripted.example\r\n" : "250-scripted.example\r\n";
        for (qsizetype i = 0; i < Offers.size(); ++i) {
            reply += (i + 1 < Offers.size() ? "250-" : "250 ") + Offers.at(i) + "\r\n";
        }
        return reply;
    }
    static const QHash<QByteArray, QByteArray> usual = {{"DATA", "354 go ahead\r\n"},
                                                        {"QUIT", "221 bye\r\n"},
                                                        {"STARTTLS", "220 go ahead\r\n"},
                                                        {".", "250 2.0.0 queued\r\n"}};
    if (line.startsWith("AUTH ")) {
        return "235 2.7.0 welcome\r\n";
    }
    return usual.value(line, "250 ok\r\n");
}

void ScriptedServer::startTls(QSslSocket *socket)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(Certificate);
    configuration.setPrivateKey(Key);
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    socket->setSslConfiguration(configuration);
    socket->flush();
    socket->startServerEncryption();
}

} // namespace testsupport
