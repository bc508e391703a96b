#pragma once

#include "quillon/mail/resolver.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

class QTcpSocket;

namespace quillon {

/// The way to a host that may have several addresses, some of which do not answer, as where IPv6 is half set up
/// (RFC 8305): attempts begin one after the other, each a quarter of a second behind the one before or at once when
/// that has failed, and the first that stands wins. Never blocks, and sets no limit of time.
class AddressRace : public QObject {
    Q_OBJECT

public:
    explicit AddressRace(QObject *parent = nullptr);
    ~AddressRace() override;

    /// Begins; won() or lost() ends it, once. May end it from within.
    void run(const QString &host, quint16 port);

    /// Gives it up without a word.
    void stop();

    /// @p addresses with the families taking turns, beginning with that of the first, and each address once.
    [[nodiscard]] static QList<QHostAddress> takingTurns(const QList<QHostAddress> &addresses);

Q_SIGNALS:
    /// The connection that stands; whoever hears of it owns @p socket.
    void won(QTcpSocket *socket);
    /// None came about; @p reason is the end of a sentence, that of the last one that failed.
    void lost(const QString &reason);

private:
    void onFound(const HostAddresses &found);
    void tryNext();
    void onConnected(QTcpSocket *socket);
    void onFailed(QTcpSocket *socket);
    void drop(QTcpSocket *socket);

    Pending<HostAddresses> m_lookup;
    quint16 m_port = 0;
    QList<QHostAddress> m_waiting;
    QList<QTcpSocket *> m_attempts; // under way
    QTimer m_next;
};

} // namespace quillon
