#pragma once

#include <QHash>
#include <QList>
#include <QPointer>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>

#include <functional>
#include <optional>

namespace testsupport {

/// An SMTP server in the test's own process and thread that answers exactly as it is told and keeps every octet. It
/// listens on loopback, on a port of its own. Set its members before a client connects.
class ScriptedServer : public QTcpServer {
    Q_OBJECT

public:
    explicit ScriptedServer(QObject *parent = nullptr);

    QByteArray Greeting = "220 scripted.example ESMTP\r\n"; ///< empty: silence
    QList<QByteArray> Offers;                               ///< keywords in the answer to EHLO

    /// The whole answer, line ends and all, to a line that begins with @p line ("." for the end of a mail). Empty:
    /// silence. The longest beginning that fits counts. Lines in the course of AUTH are asked for here as well.
    void answer(const QByteArray &line, const QByteArray &reply) { m_answers[line] = reply; }

    /// Closes the connection when such a line comes, after its answer (which may be empty). An empty @p line: at once,
    /// after the greeting.
    void closeAt(const QByteArray &line) { m_closings += line; }

    /// Asked before answer(); an answer from here counts.
    std::function<std::optional<QByteArray>(const QByteArray &line)> Responder;

    qsizetype CutAt = 0;        ///< each answer goes out in two parts, the first of so many octets; 0: whole
    qint64 InterruptAfter = -1; ///< octets of a mail after which Interruption is sent
    QByteArray Interruption;    ///< sent once in the course of a mail
    bool CloseAfterInterruption = false;
    bool StaysAfterQuit = false; ///< leaves it to the client to close
    bool ImplicitTls = false;
    bool Deaf = false; ///< reads nothing of a mail, and sends Interruption when the first of it has come
    QSslCertificate Certificate;
    QSslKey Key;

    QList<QByteArray> Lines; ///< all command lines of all connections, without line ends
    QList<QByteArray> Mails; ///< what came after DATA, with the final dot, of those that came to their end
    QByteArray BodyBegun;    ///< of the mail that is under way or was cut short
    int Connections = 0;
    int Ended = 0; ///< of them closed, by either side

    [[nodiscard]] quint16 port() const { return serverPort(); }
    /// Lets the system take but little from a client before it is read.
    void narrow();
    /// How many lines began so.
    [[nodiscard]] qsizetype count(const QByteArray &beginning) const;
    [[nodiscard]] bool heard(const QByteArray &beginning) const { return count(beginning) > 0; }

    /// Sends octets to the client that connected last, out of turn.
    void say(const QByteArray &octets);
    void hangUp();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void onReadyRead(QSslSocket *socket);
    void onLine(QSslSocket *socket, const QByteArray &line);
    void onBody(QSslSocket *socket);
    void send(QSslSocket *socket, const QByteArray &reply);
    [[nodiscard]] QByteArray replyTo(const QByteArray &line) const;
    void startTls(QSslSocket *socket);

    QHash<QByteArray, QByteArray> m_answers;
    QList<QByteArray> m_closings;
    QHash<QSslSocket *, QByteArray> m_input;
    QHash<QSslSocket *, QByteArray> m_held; // answers behind one that was cut
    QSslSocket *m_inBody = nullptr;
    QPointer<QSslSocket> m_last;
};

} // namespace testsupport
