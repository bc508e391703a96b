#pragma once

#include "core/globals.h"
#include "quillon/mail/mailtransport.h"
#include "quillon/sequence/task.h"

#include <QString>

#include <functional>
#include <memory>

namespace corvane {

/// Who hears the events of a transport. Both come from the event loop, while the sequence that sends rests.
struct TransportEvents {
    std::function<void(const QString &text)> error;
    std::function<void(const QString &text)> progress;
};

/// Makes a new transport in @p transport, dropping any earlier one with its events, configures it from the two record
/// lines and connects. Whether the proxy is used is told by the settings, not by @p proxyRecord. True when it stands.
/// The references outlive the task.
quillon::Task<bool> ConnectTransport(const ApplicationGlobals &globals, QString accountRecord, QString proxyRecord,
                                     TransportEvents events, std::unique_ptr<quillon::MailTransport> &transport);

/// A run's way to the mail server of its account: one connection at a time.
class Connection {
public:
    /// @p globals outlives the connection.
    Connection(const ApplicationGlobals &globals, QString accountRecord, TransportEvents events);

    /// Connects anew, through the proxy that is in use at that moment. True when the connection stands.
    quillon::Task<bool> connect();
    /// True when the mail was taken; else the reason has been told. Without a connection it is false.
    quillon::Pending<bool> send(const quillon::MailMessage &message);
    /// Whether the server has let the run in: one that was silent when connect() settled may refuse the login later.
    /// Waits for its word as long as it may be silent; a refusal has been told then. True as well when it has let the
    /// run in and has ended the session since.
    quillon::Task<bool> accepted();
    void quit();

    [[nodiscard]] const QString &accountRecord() const { return m_accountRecord; }

private:
    const ApplicationGlobals &m_globals;
    QString m_accountRecord;
    TransportEvents m_events;
    std::unique_ptr<quillon::MailTransport> m_transport;
};

} // namespace corvane
