#pragma once

#include "quillon/mail/smtplogin.h"
#include "quillon/mail/smtptransaction.h"
#include "quillon/mail/smtpwire.h"

#include <QStringList>

namespace quillon {

/// How long a peer may take, see MailTransport::setTimeouts().
struct SmtpTimeouts {
    std::chrono::milliseconds Connect;
    std::chrono::milliseconds Silence;
    std::chrono::milliseconds Grace;
    std::chrono::milliseconds Reply; ///< for a whole one
};

/// Where a session goes and as whom.
struct SmtpTarget {
    QString Host; ///< as asciiHost() gives it
    quint16 Port = 0;
    bool ImplicitTls = false;
    bool StartTls = false;
    QString User; ///< empty: no login
    QString Password;
    QNetworkProxy Proxy;
};

/// One SMTP session as a state machine over a SmtpWire. open(), settle() and send() are calls, one at a time, which
/// answered() ends from the event loop; what goes wrong is kept, once, until takeFailure() asks for it, so that nothing
/// is reported from within a socket's turn or between two calls.
class SmtpSession : public QObject {
    Q_OBJECT

public:
    enum class Stage {
        Idle,
        Connecting,  ///< to the server or through the proxy
        ImplicitTls, ///< the handshake that comes before the greeting
        Greeting,
        Ehlo,
        Helo,         ///< the server does not know EHLO
        StartTls,     ///< the command
        TlsHandshake, ///< what follows it
        Auth,
        Ready,
        Sending,
        Reset, ///< RSET after a refusal
        Closed
    };

    SmtpSession(const SmtpTarget &target, const SmtpTimeouts &timeouts);
    ~SmtpSession() override;

    /// Connects and goes on until the session is settled, has failed, or the peer has said nothing for the grace.
    void open();

    /// Waits until the session is settled, with success when a mail can be sent now.
    void settle();

    /// Sends @p mail once the session is settled, with success when the server has taken it for all of its recipients.
    void send(const SmtpMail &mail);

    /// Gives the session up, and with it a call that is under way, which is not answered any more.
    void close();

    [[nodiscard]] Stage stage() const { return m_stage; }
    [[nodiscard]] bool stands() const { return m_stage > Stage::Connecting && m_stage < Stage::Closed; }
    /// Whether the server has accepted the session, whatever became of it since.
    [[nodiscard]] bool wasReady() const { return m_wasReady; }
    std::optional<SmtpFailure> takeFailure() { return std::exchange(m_failure, std::nullopt); }

Q_SIGNALS:
    /// The call that is under way has come to its end. A receiver may do what it likes, also destroy the session.
    void answered(bool success);
    /// Comes from the event loop itself, never from the middle of a step, so that a receiver may do what it likes.
    void progressed(int stage, const QString &text);

private:
    /// The call that is under way.
    enum class Call { None, Open, Settle, Send };

    void begin(Call call);
    [[nodiscard]] bool isAtEnd() const;
    void wake();
    void answer();
    void beginTransaction();
    void enter(Stage stage);
    void tell(const QString &text);
    void deliverProgress();
    void fail(const QString &reason, int code = 0, bool politely = false);
    void failWith(const SmtpFailure &failure, bool politely);
    void refuse(const SmtpReply &reply);

    void onConnected();
    void onEncrypted();
    void onHeard();
    void onGraceOver();
    void handle(const SmtpReply &reply);
    void ask(Stage stage, const QByteArray &line);
    void greet();
    void handleEhlo(const SmtpReply &reply);
    void handleStartTls(const SmtpReply &reply);
    void goOn();
    void beginLogin();
    void handleAuth(const SmtpReply &reply);
    void followTransaction();
    [[nodiscard]] QString stageName() const;
    [[nodiscard]] QString connectingTo() const;

    SmtpTarget m_target;
    SmtpTimeouts m_timeouts;
    SmtpWire m_wire;
    Stage m_stage = Stage::Idle;
    SmtpExtensions m_extensions;
    std::optional<SmtpLogin> m_login;
    std::unique_ptr<SmtpTransaction> m_transaction;
    std::optional<SmtpFailure> m_failure;
    QString m_lastReply;
    QTimer m_grace;
    bool m_graceOver = false;
    bool m_wasReady = false;
    Call m_call = Call::None;
    std::optional<SmtpMail> m_mail; // of the call to send, until it can go
    bool m_answerQueued = false;
    QList<std::pair<int, QString>> m_told;
    QString m_toldLast;
};

} // namespace quillon
