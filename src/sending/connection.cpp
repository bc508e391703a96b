#include "sending/connection.h"

#include "core/settings.h"
#include "quillon/fault.h"
#include "records/accountrecords.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// A number as a field tells it; an empty field is 0, and so is, with a fault, what is no number.
long numberOf(const QString &text)
{
    bool number = false;
    const long value = text.trimmed().toLong(&number);
    if (!number && !text.trimmed().isEmpty()) {
        quillon::reportFault(u"not a number: '"_s + text + u'\'');
    }
    return number ? value : 0;
}

} // namespace

int securityOf(const QString &field, int standard)
{
    using quillon::MailTransport;
    if (field == "N"_L1) {
        return MailTransport::NoSecurity;
    }
    if (field == "S"_L1 || field == "Y"_L1) {
        return MailTransport::Ssl;
    }
    return field == "T"_L1 ? MailTransport::StartTls : standard;
}

bool ConnectTransport(const ApplicationGlobals &globals, const QString &accountRecord, const QString &proxyRecord,
                      const TransportEvents &events, std::unique_ptr<quillon::MailTransport> &transport)
{
    using quillon::MailTransport;
    transport = std::make_unique<MailTransport>();
    MailTransport *mail = transport.get();
    QObject::connect(mail, &MailTransport::Error, mail, [events](int, const QString &text) { events.error(text); });
    QObject::connect(mail, &MailTransport::Progress, mail,
                     [events](int, const QString &text) { events.progress(text); });

    mail->Security = securityOf(recordField(accountRecord, AccountSecurity), mail->Security);
    if (proxyInUse(globals)) {
        mail->ProxyServer = recordField(proxyRecord, ProxyAddress);
        mail->ProxyPort = numberOf(recordField(proxyRecord, ProxyPort));
        if (recordField(proxyRecord, ProxyAuthentication) == "Y"_L1) {
            mail->ProxyUser = recordField(proxyRecord, ProxyUser);
            mail->ProxyPassword = recordField(proxyRecord, ProxyPassword);
        }
    }
    if (recordField(accountRecord, AccountAuthentication) == "Y"_L1) {
        mail->User = recordField(accountRecord, AccountUser);
        mail->Password = recordField(accountRecord, AccountPassword);
    }
    mail->Connect(recordField(accountRecord, AccountServer), numberOf(recordField(accountRecord, AccountPort)), 0, 0);
    return mail->State() == MailTransport::Connected;
}

} // namespace corvane
