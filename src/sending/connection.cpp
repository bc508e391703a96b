#include "sending/connection.h"

#include "core/settings.h"
#include "records/recordfields.h"
#include "records/transportsettings.h"

namespace corvane {

bool ConnectTransport(const ApplicationGlobals &globals, const QString &accountRecord, const QString &proxyRecord,
                      const TransportEvents &events, std::unique_ptr<quillon::MailTransport> &transport)
{
    using quillon::MailTransport;
    transport = std::make_unique<MailTransport>();
    MailTransport *mail = transport.get();
    QObject::connect(mail, &MailTransport::Error, mail, [events](int, const QString &text) { events.error(text); });
    QObject::connect(mail, &MailTransport::Progress, mail,
                     [events](int, const QString &text) { events.progress(text); });

    useAccount(accountRecord, *mail);
    if (proxyInUse(globals)) {
        useProxy(proxyRecord, *mail);
    }
    mail->Connect(recordField(accountRecord, AccountServer), numberOf(recordField(accountRecord, AccountPort)), 0, 0);
    return mail->State() == MailTransport::Connected;
}

} // namespace corvane
