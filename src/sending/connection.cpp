#include "sending/connection.h"

#include "core/settings.h"
#include "records/recordfields.h"
#include "records/transportsettings.h"

#include <utility>

namespace corvane {

using quillon::MailTransport;

quillon::Task<bool> ConnectTransport(const ApplicationGlobals &globals, QString accountRecord, QString proxyRecord,
                                     TransportEvents events, std::unique_ptr<MailTransport> &transport)
{
    transport = std::make_unique<MailTransport>();
    MailTransport *mail = transport.get();
    QObject::connect(mail, &MailTransport::Error, mail,
                     [error = events.error](int, const QString &text) { error(text); });
    QObject::connect(mail, &MailTransport::Progress, mail,
                     [progress = events.progress](int, const QString &text) { progress(text); });

    useAccount(accountRecord, *mail);
    if (proxyInUse(globals)) {
        useProxy(proxyRecord, *mail);
    }
    co_await mail->Connect(recordField(accountRecord, AccountServer), numberOf(recordField(accountRecord, AccountPort)),
                           0, 0);
    co_return transport && transport->State() == MailTransport::Connected;
}

Connection::Connection(const ApplicationGlobals &globals, QString accountRecord, TransportEvents events)
    : m_globals(globals), m_accountRecord(std::move(accountRecord)), m_events(std::move(events))
{
}

quillon::Task<bool> Connection::connect()
{
    // Looked up for each connection, as the flag is: one that was turned on between two mails of a run must not find an
    // empty record, which would lead around the proxy.
    return ConnectTransport(m_globals, m_accountRecord, m_globals.settings.text(Setting::DefaultProxy), m_events,
                            m_transport);
}

quillon::Pending<bool> Connection::send(const quillon::MailMessage &message)
{
    return m_transport ? m_transport->Send(message) : quillon::Pending<bool>::settled(false);
}

quillon::Task<bool> Connection::accepted()
{
    if (m_transport && !m_transport->wasAccepted()) {
        co_return co_await m_transport->Accepted();
    }
    co_return m_transport != nullptr;
}

void Connection::quit()
{
    if (m_transport) {
        m_transport->Quit();
    }
}

} // namespace corvane
