#include "records/connectiontest.h"

#include "records/recordfields.h"
#include "records/transportsettings.h"

#include <QScopedValueRollback>

#include <functional>

using namespace Qt::StringLiterals;

namespace corvane {

using quillon::MailTransport;

namespace {

bool isUnderWay = false;

/// A sentence when @p record, that of @p owner, has not got @p expected fields.
QString faultOfCount(const QString &record, int expected, const QString &owner)
{
    const qsizetype count = record.count(u'\t') + 1;
    return count == expected ? QString()
                             : u"The record of the %1 has %2 fields, not %3."_s.arg(owner).arg(count).arg(expected);
}

QString faultOfProxy(const QString &record)
{
    const QString fault = faultOfCount(record, proxyFieldCount, u"proxy server"_s);
    // To the transport no address means no proxy: a test around the proxy would tell nothing about it.
    const bool hasAddress = !recordField(record, ProxyAddress).trimmed().isEmpty();
    return fault.isEmpty() && !hasAddress ? u"The record of the proxy server has no address."_s : fault;
}

void useTrimmedProxy(const QString &record, MailTransport &transport)
{
    useProxy(record, transport);
    transport.ProxyServer = transport.ProxyServer.trimmed();
}

/// Takes the steps of a test with a transport of its own, which is gone at the end, unless @p fault tells why it must
/// not begin.
bool takeSteps(const QString &fault, const std::function<bool(MailTransport &transport)> &steps, QString *reason)
{
    QString said = fault;
    if (said.isEmpty() && isUnderWay) {
        said = u"Another connection is being tested."_s;
    }
    bool works = false;
    if (said.isEmpty()) {
        const QScopedValueRollback<bool> guard(isUnderWay, true);
        MailTransport transport;
        QObject::connect(&transport, &MailTransport::Error, &transport,
                         [&said](int, const QString &text) { said = text; });
        works = steps(transport);
        transport.Quit();
    }
    if (reason != nullptr) {
        *reason = works ? QString() : said;
    }
    return works;
}

} // namespace

bool TestSmtpConnection(const QString &account, const QString &proxy, QString *reason)
{
    QString fault = faultOfCount(account, accountFieldCount, u"account"_s);
    if (fault.isEmpty() && !proxy.isEmpty()) {
        fault = faultOfProxy(proxy);
    }
    const auto steps = [&](MailTransport &transport) {
        useAccount(account, transport);
        if (!proxy.isEmpty()) {
            useTrimmedProxy(proxy, transport);
        }
        transport.Connect(recordField(account, AccountServer).trimmed(), numberOf(recordField(account, AccountPort)), 0,
                          0);
        // A server that has said nothing yet stands connected as well.
        return transport.State() == MailTransport::Connected && transport.Accepted();
    };
    return takeSteps(fault, steps, reason);
}

bool TestProxyConnection(const QString &proxy, const Site &site, QString *reason)
{
    const auto steps = [&](MailTransport &transport) {
        useTrimmedProxy(proxy, transport);
        transport.Connect(site.proxyTestHost, site.proxyTestPort, 0, 0);
        // A web server never greets, so that to be connected is all that can be asked for.
        return transport.State() == MailTransport::Connected;
    };
    return takeSteps(faultOfProxy(proxy), steps, reason);
}

} // namespace corvane
