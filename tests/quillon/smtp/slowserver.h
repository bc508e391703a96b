#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

/// An SMTP server that takes each mail in portions, with a rest before each, and answers at once otherwise.
class SlowServer : public QTcpServer {
public:
    SlowServer(qint64 portion, int restMs) : m_portion(portion), m_rest(restMs)
    {
        if (!listen(QHostAddress::LocalHost)) {
            qFatal("the slow server cannot listen");
        }
        connect(this, &QTcpServer::newConnection, this, &SlowServer::greet);
    }

    int Rests = 0;         ///< before the portions of all mails
    qint64 Taken = 0;      ///< octets of mails
    bool Accepted = false; ///< a final dot has come
    bool Closed = false;   ///< by the client: this one never closes
    QByteArray LastLine;   ///< of the commands

private:
    void greet()
    {
        QTcpSocket *socket = nextPendingConnection();
        socket->setReadBufferSize(m_portion);
        socket->write("220 slow.example\r\n");
        connect(socket, &QTcpSocket::disconnected, this, [this] { Closed = true; });
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { onReadyRead(socket); });
    }

    void onReadyRead(QTcpSocket *socket)
    {
        if (m_inBody) {
            if (!m_resting) {
                m_resting = true;
                ++Rests;
                QTimer::singleShot(m_rest, socket, [this, socket] {
                    m_resting = false;
                    onBody(socket);
                });
            }
            return;
        }
        while (!m_inBody && socket->canReadLine()) {
            LastLine = socket->readLine();
            m_inBody = LastLine == "DATA\r\n";
            socket->write(m_inBody ? "354 go\r\n" : "250 ok\r\n");
        }
    }

    void onBody(QTcpSocket *socket)
    {
        const QByteArray octets = socket->read(m_portion);
        Taken += octets.size();
        m_tail = (m_tail + octets).right(5);
        if (m_tail == "\r\n.\r\n") {
            m_inBody = false;
            Accepted = true;
            socket->write("250 taken\r\n");
        } else if (socket->bytesAvailable() > 0) {
            onReadyRead(socket);
        }
    }

    qint64 m_portion;
    int m_rest;
    bool m_inBody = false;
    bool m_resting = false;
    QByteArray m_tail;
};
