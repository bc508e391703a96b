#pragma once

#include "quillon/mail/smtpreply.h"
#include "quillon/mail/tlsclient.h"

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace quillon {

/// A server as it counts the connections that it is given: host and port.
using SmtpPeer = std::pair<QString, quint16>;

/// One connection to a server, counted from the moment that it is begun until its socket is closed. Servers allow a
/// host only so many at a time, so that one that is being left may stand beside the next, but never two of them. A
/// server may also be a while in forgetting one that has ended: of sessions as short as those on a fast line not even
/// one may stand, or it would be the third in the server's eyes.
class SmtpStanding {
public:
    explicit SmtpStanding(SmtpPeer peer);
    ~SmtpStanding();
    SmtpStanding(const SmtpStanding &) = delete;
    SmtpStanding &operator=(const SmtpStanding &) = delete;

    /// From now on only its end is awaited.
    void leave();

    /// Calls @p go when a connection to @p peer may be begun: at once, unless one that is being left stands beside
    /// another or was short, else from the event loop when one of these has ended, or the short one has had its moment.
    /// Not at all when @p context is gone by then.
    static void whenRoom(const SmtpPeer &peer, QObject *context, const std::function<void()> &go);

private:
    void forgive();

    SmtpPeer m_peer;
    std::chrono::steady_clock::time_point m_since = std::chrono::steady_clock::now();
    bool m_leaving = false;
    QTimer m_short; // while a short one that is being left is waited for, though it stands alone
};

/// Ends a session whose last command is given: says QUIT, awaits its answer, closes TLS and the connection, and is
/// gone. A server that says nothing has a moment for it and is then cut off; it is nobody's business any more.
class SmtpFarewell : public QObject {
    Q_OBJECT

public:
    /// What a session leaves behind.
    struct Estate {
        QTcpSocket *Socket = nullptr;
        std::unique_ptr<TlsClient> Tls; ///< none in the clear
        std::unique_ptr<SmtpStanding> Standing;
        SmtpReplyParser Input; ///< what was read and not yet asked for
        int Unanswered = 0;    ///< commands before QUIT whose answers are still to come
    };

    /// Begins it. A socket that is not connected is closed at once.
    static void begin(Estate estate);

private:
    explicit SmtpFarewell(Estate estate);

    void start();
    void onReadyRead();
    void hear();
    void finish();

    Estate m_estate;
    QTimer m_patience;
    bool m_finished = false;
};

} // namespace quillon
