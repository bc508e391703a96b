#include "records/connectiontest.h"

#include "records/recordfields.h"
#include "records/recordtexts.h"
#include "records/transportsettings.h"

#include <QScopedValueRollback>

namespace corvane {

using quillon::MailTransport;

namespace {

bool isUnderWay = false;

/// @p sentence with both numbers when @p record has not got @p expected fields.
QString faultOfCount(const QString &record, int expected, const quillon::OwnText &sentence)
{
    const qsizetype count = record.count(u'\t') + 1;
    return count == expected ? QString() : quillon::say(sentence, QString::number(count), QString::number(expected));
}

QString faultOfProxy(const QString &record)
{
    const QString fault = faultOfCount(record, proxyFieldCount, proxyFields);
    // To the transport no address means no proxy: a test around the proxy would tell nothing about it.
    const bool hasAddress = !recordField(record, ProxyAddress).trimmed().isEmpty();
    return fault.isEmpty() && !hasAddress ? quillon::say(proxyWithoutAddress) : fault;
}

void useTrimmedProxy(const QString &record, MailTransport &transport)
{
    useProxy(record, transport);
    transport.ProxyServer = transport.ProxyServer.trimmed();
}

/// Why a test must not begin; empty when it may.
QString obstacle(const QString &fault)
{
    return fault.isEmpty() && isUnderWay ? quillon::say(testUnderWay) : fault;
}

/// The transport of one test, and what it said.
struct Attempt {
    Attempt()
    {
        QObject::connect(&transport, &MailTransport::Error, &transport,
                         [this](int, const QString &text) { said = text; });
    }

    [[nodiscard]] ConnectionTestResult result(bool works) const
    {
        return ConnectionTestResult{works, works ? QString() : said};
    }

    QScopedValueRollback<bool> guard{isUnderWay, true};
    QString said;
    MailTransport transport;
};

} // namespace

quillon::Task<ConnectionTestResult> TestSmtpConnection(QString account, QString proxy)
{
    quillon::refreshTexts();
    QString fault = faultOfCount(account, accountFieldCount, accountFields);
    if (fault.isEmpty() && !proxy.isEmpty()) {
        fault = faultOfProxy(proxy);
    }
    fault = obstacle(fault);
    if (!fault.isEmpty()) {
        co_return ConnectionTestResult{false, fault};
    }
    Attempt attempt;
    MailTransport &transport = attempt.transport;
    useAccount(account, transport);
    if (!proxy.isEmpty()) {
        useTrimmedProxy(proxy, transport);
    }
    co_await transport.Connect(recordField(account, AccountServer).trimmed(),
                               numberOf(recordField(account, AccountPort)), 0, 0);
    bool works = transport.State() == MailTransport::Connected;
    if (works) {
        works = co_await transport.Accepted(); // a server that has said nothing yet stands connected as well
    }
    co_return attempt.result(works);
}

quillon::Task<ConnectionTestResult> TestProxyConnection(QString proxy, Site site)
{
    quillon::refreshTexts();
    const QString fault = obstacle(faultOfProxy(proxy));
    if (!fault.isEmpty()) {
        co_return ConnectionTestResult{false, fault};
    }
    Attempt attempt;
    useTrimmedProxy(proxy, attempt.transport);
    co_await attempt.transport.Connect(site.proxyTestHost, site.proxyTestPort, 0, 0);
    // A web server never greets, so that to be connected is all that can be asked for.
    co_return attempt.result(attempt.transport.State() == MailTransport::Connected);
}

} // namespace corvane
