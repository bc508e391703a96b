#pragma once

#include "quillon/mail/smtplogin.h"
#include "quillon/mail/smtptransaction.h"
#include "quillon/mail/smtpwire.h"

#include <QEventLoop>
#include <QStringList>

namespace quillon {

/// How long a peer may take, see MailTransport::setTimeouts().
struct SmtpTimeouts {
    std::chrono::milliseconds Connect;
    std::chrono::milliseconds Silence;
    std::chrono::milliseconds Grace;
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

/// One SMTP session as a state machine over a SmtpWire. open(), settle() and send() block in a nested event loop; what
/// goes wrong is kept, once, until takeFailure() asks for it, so that nothing is reported from within a socket's turn
/// or between two calls.
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

    /// Waits until the session is settled: true when a mail can be sent now.
    bool settle();

    /// Sends @p mail; true when the server has taken it for all of its recipients.
    bool send(const SmtpMail &mail);

    /// Gives the session up; a call that is under way ends with false and without a failure.
    void close();

    [[nodiscard]] Stage stage() const { return m_stage; }
    [[nodiscard]] bool stands() const { return m_stage > Stage::Connecting && m_stage < Stage::Closed; }
    std::optional<SmtpFailure> takeFailure() { return std::exchange(m_failure, std::nullopt); }

Q_SIGNALS:
    /// Comes from the event loop itself, never from the middle of a step, so that a receiver may do what it likes.
    void progressed(int stage, const QString &text);

private:
    template <typename Condition> void waitFor(Condition isMet);
    void wake();
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
    [[nodiscard]] QString place() const;

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
    QEventLoop *m_loop = nullptr;
    bool m_woken = false;
    int m_calls = 0; // that wait
    QList<std::pair<int, QString>> m_told;
    QString m_toldLast;
};

} // namespace quillon
