#pragma once

#include "quillon/mail/smtpfarewell.h"
#include "quillon/mail/smtpreply.h"
#include "quillon/mail/tlsclient.h"

#include <QNetworkProxy>
#include <QObject>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>
#include <memory>

namespace quillon {

class AddressRace;
class SocksClient;

/// The connection beneath an SMTP session: a socket, TLS, the time-out for silence, and the server's octets cut into
/// replies. Never blocks. After failed() or close() it is silent and does nothing more.
class SmtpWire : public QObject {
    Q_OBJECT

public:
    explicit SmtpWire(QObject *parent = nullptr);
    ~SmtpWire() override;

    /// Begins to connect; connected() follows when the connection stands, through @p proxy (SOCKS5) if it is one, which
    /// is then given the name. All addresses of the host that is connected to are tried (see AddressRace).
    void open(const QString &host, quint16 port, const QNetworkProxy &proxy);

    /// Begins the TLS handshake for the host that open() was given; encrypted() follows when it is verified.
    void startTls();

    void write(const QByteArray &octets);
    /// Hands what was written to the system at once, without a turn of the event loop. A connection that is lost shows
    /// by failed(), from within.
    void flush();
    void writeLine(const QByteArray &line)
    {
        ++m_unanswered;
        write(line + "\r\n");
        flush();
    }

    /// Whether more may be written without filling memory; roomLeft() tells when there is some again.
    [[nodiscard]] bool hasRoom() const;
    /// Octets written that the system has not taken yet.
    [[nodiscard]] qint64 unsent() const;

    std::optional<SmtpReply> nextReply();
    /// Whether the server has said something that nextReply() has not given.
    [[nodiscard]] bool hasPending() const { return m_parser.hasPending() || !m_parser.fault().isEmpty(); }
    [[nodiscard]] QString parserFault() const { return m_parser.fault(); }
    void forgetInput() { m_parser.clear(); }
    /// Whether a single octet has come, line end or not.
    [[nodiscard]] bool hasHeard() const { return m_heard; }

    [[nodiscard]] bool isEncrypted() const { return m_tls && m_tls->state() == TlsClient::State::Ready; }
    /// This end's address, as EHLO names a host without a name: "[192.0.2.1]", "[IPv6:2001:db8::1]" (RFC 5321, 4.1.3).
    [[nodiscard]] QByteArray addressLiteral() const;

    /// How long the peer may be silent from now on; whatever comes or goes begins it anew. 0: for ever.
    void allowSilence(std::chrono::milliseconds time);
    /// The same where an answer has been awaited for some time already, which counts when it is told how long.
    void allowMoreSilence(std::chrono::milliseconds time);

    /// How long the peer may take for the whole of its next reply, and then for each further one, however it comes
    /// (RFC 5321, 4.5.3.2); what goes out begins it anew. Looked at only while silence is limited, too. 0: for ever.
    void allowReply(std::chrono::milliseconds time);

    /// Gives the connection up. @p politely: with QUIT, whose answer a farewell awaits in the background for a moment.
    void close(bool politely);

Q_SIGNALS:
    void connected();
    void encrypted();
    void heard();
    void roomLeft();
    /// The connection is lost or was never made; @p reason is the end of a sentence.
    void failed(const QString &reason);

private:
    using Clock = std::chrono::steady_clock;

    void use(QTcpSocket *socket);
    void reach(const QString &host, quint16 port);
    void race(const QString &host, quint16 port);
    void onConnected();
    [[nodiscard]] QString failureOf(const QString &reason) const;
    QByteArray talkToProxy(const QByteArray &octets);
    void noteSign();
    void onReadyRead();
    void onError(QAbstractSocket::SocketError error);
    void onSilence();
    [[nodiscard]] Clock::time_point patienceEnds() const;
    void onBytesWritten();
    void shakeHands();
    void take(const QByteArray &octets);
    void hearPlainWords(const QByteArray &octets);
    void giveUp(const QString &reason);

    QPointer<QTcpSocket> m_socket;        // lives on with the farewell when this is gone
    QPointer<AddressRace> m_race;         // for the socket that will take the place of the one above
    std::unique_ptr<SocksClient> m_socks; // until the proxy has made the connection
    std::unique_ptr<TlsClient> m_tls;
    SmtpReplyParser m_parser;
    std::unique_ptr<SmtpStanding> m_standing; // from open() on
    int m_unanswered = 0;                     // lines of writeLine() whose answers are still to come
    QTimer m_silence;
    std::chrono::milliseconds m_allowed{0}; // silence of the peer; 0: for ever
    std::chrono::milliseconds m_allowedReply{0};
    Clock::time_point m_replyDue;    // when the reply is to be complete
    Clock::time_point m_lastSign;    // of the peer, or the moment when it was given this time
    Clock::time_point m_silentSince; // as above, without the time that was given since
    Clock::time_point m_due;         // when m_silence goes off
    QString m_host;
    quint16 m_port = 0;
    QByteArray m_plainWords; // in place of the handshake
    bool m_tlsHeard = false; // the handshake's first octets were TLS
    bool m_heard = false;
    bool m_flushing = false;
};

} // namespace quillon
