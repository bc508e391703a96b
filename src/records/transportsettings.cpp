#include "records/transportsettings.h"

#include "quillon/fault.h"
#include "records/recordfields.h"

using namespace Qt::StringLiterals;

namespace corvane {

using quillon::MailTransport;

int securityOf(const QString &field, int standard)
{
    if (field == "N"_L1) {
        return MailTransport::NoSecurity;
    }
    if (field == "S"_L1 || field == "Y"_L1) {
        return MailTransport::Ssl;
    }
    return field == "T"_L1 ? MailTransport::StartTls : standard;
}

long numberOf(const QString &field)
{
    bool number = false;
    const long value = field.trimmed().toLong(&number);
    if (!number && !field.trimmed().isEmpty()) {
        quillon::reportFault(u"not a number: '"_s + field + u'\'');
    }
    return number ? value : 0;
}

void useAccount(const QString &record, MailTransport &transport)
{
    transport.Security = securityOf(recordField(record, AccountSecurity), transport.Security);
    if (recordField(record, AccountAuthentication) == "Y"_L1) {
        transport.User = recordField(record, AccountUser);
        transport.Password = recordField(record, AccountPassword);
    }
}

void useProxy(const QString &record, MailTransport &transport)
{
    transport.ProxyServer = recordField(record, ProxyAddress);
    transport.ProxyPort = numberOf(recordField(record, ProxyPort));
    if (recordField(record, ProxyAuthentication) == "Y"_L1) {
        transport.ProxyUser = recordField(record, ProxyUser);
        transport.ProxyPassword = recordField(record, ProxyPassword);
    }
}

} // namespace corvane
