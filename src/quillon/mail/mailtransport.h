#pragma once

#include "quillon/mail/mailmessage.h"
#include "quillon/sequence/pending.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace quillon {

class SmtpSession;
struct EncodedMail;
struct SmtpFailure;

/// One SMTP connection (RFC 5321): it connects, sends, and reports what goes wrong. Connect(), Send() and Accepted()
/// are awaited, one at a time; what goes wrong is reported from the event loop before the call settles, so that a
/// receiver may do what it likes, also destroy the transport. A transport lives for one connection; its end settles a
/// call that is under way as failed.
class MailTransport : public QObject {
    Q_OBJECT

public:
    enum StateValue { Closed = 0, Connecting = 1, Connected = 2 };
    enum SecurityValue { NoSecurity = 0, Ssl = 1, StartTls = 2 };

    explicit MailTransport(QObject *parent = nullptr);
    ~MailTransport() override;

    QString ProxyServer; ///< host of a SOCKS5 proxy; empty: none
    long ProxyPort = 0;
    QString ProxyUser;
    QString ProxyPassword;
    QString User; ///< empty: no authentication
    QString Password;
    int Security = NoSecurity;

    /// 2 while the session stands (see Connect()).
    [[nodiscard]] long State() const;

    /// Connects to @p server (host name or address) on @p port and goes on with greeting, EHLO, TLS and AUTH. The two
    /// further arguments have no meaning and are 0. A failure is reported once by Error() and leaves State() other
    /// than 2. A peer that says nothing leaves State() at 2 after a grace of three seconds.
    Pending<> Connect(const QString &server, long port, long reserved1, long reserved2);

    /// Sends @p message to all of its recipients, or to none. False: the reason has been reported by Error(), unless
    /// an earlier Connect() failed, which has reported its own.
    Pending<bool> Send(const MailMessage &message);

    /// As Send(), for a mail that is encoded already: from the address @p from to each of @p recipients.
    Pending<bool> SendEncoded(const EncodedMail &mail, const QString &from, const QStringList &recipients);

    /// Whether the server has accepted the session; waits for that up to the time-out.
    Pending<bool> Accepted();

    /// Whether the server has accepted the session so far, be it that it has ended since.
    [[nodiscard]] bool wasAccepted() const;

    /// Ends the connection, and a call that is under way as failed, without a report; never waits for a peer that
    /// hangs.
    void Quit();

    /// Time-outs of every connection made from now on, in milliseconds, each above 0: for a connection to stand
    /// (30,000 until set), for a server's silence (60,000; ten times that after the end of a message, when it may
    /// look through it, RFC 5321, 4.5.3.2.6), the grace that Connect() gives a peer that says nothing (3,000), and for
    /// a whole reply, however it comes (300,000; twice that after the end of a message).
    static void setTimeouts(int connectMs, int silenceMs, int graceMs, int replyMs = 300'000);

Q_SIGNALS:
    /// One sentence: what failed, at which stage, with the server's own last reply.
    void Error(int ErrCode, const QString &ErrDesc);
    /// The name of the stage, then the percentage of the body sent.
    void Progress(int ProgID, const QString &ProgDesc);

private:
    enum class Operation { None, Connect, Send, Accepted };

    /// Whether another call is under way, which is a fault.
    [[nodiscard]] bool isBusy(const QString &name) const;
    void begin(Operation operation, std::function<void(bool success)> settle);
    /// Ends the call from the event loop, as failed, and reports @p failure if there is one.
    void failLater(const std::optional<SmtpFailure> &failure);
    void onAnswered(bool success);
    void end(bool success, const std::optional<SmtpFailure> &failure);
    [[nodiscard]] QString faultOfSettings(const QString &server, long port) const;

    std::unique_ptr<SmtpSession> m_session;
    Operation m_operation = Operation::None; // that is under way
    std::function<void(bool success)> m_settle;
    int m_call = 0;              // number of the call, so that a late end of one is not taken for that of another
    bool m_failureKnown = false; // the session's end has been reported by Connect() or Accepted()
};

} // namespace quillon
