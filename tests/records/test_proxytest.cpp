#include "quillon/mail/mailtransport.h"
#include "records/connectiontest.h"
#include "support/childserver.h"
#include "support/scriptedserver.h"
#include "support/temporarytree.h"

#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;
using testsupport::ChildServer;
using testsupport::ScriptedServer;

namespace {

constexpr int longTime = 60'000;
constexpr int shortTime = 150;
constexpr int shortGrace = 30;

const QString password = u"geheim-hunter2"_s;

/// A web server as the test of a proxy sees it: it waits for a request that never comes.
struct WebServer : ScriptedServer {
    WebServer() { Greeting = ""; }
};

} // namespace

class TestProxyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        MailTransport::setTimeouts(longTime, longTime, shortGrace);
        m_reason = u"left from before"_s;
    }

    void webServerThatSaysNothingIsReachedThroughTheProxy();
    void shippedSiteIsAskedForByNameOnPort80();
    void deployersSiteIsAskedFor();
    void lineWithoutSevenFieldsFailsWithoutAConnection();
    void lineWithoutSevenFieldsFailsWithoutAConnection_data();
    void lineWithoutAnAddressIsNotTestedAroundTheProxy();
    void addressAndPortAreTakenWithoutBlanksAtTheirEnds();
    void userAndPasswordReachTheProxy();
    void wrongPasswordFailsWithoutShowingIt();
    void authenticationNSendsNoUser();
    void proxyThatIsNotThereFails();
    void webServerThatIsNotThereFails();
    void proxyThatRefusesFails();
    void proxyThatStaysSilentFailsWhileTheEventLoopLives();
    void oddAddressFailsWithAReason();
    void oddAddressFailsWithAReason_data();

private:
    bool reach(const QString &proxy, quint16 webPort)
    {
        return TestProxyConnection(proxy, {u"http://127.0.0.1/"_s, u"127.0.0.1"_s, webPort}, &m_reason);
    }
    static QString line(quint16 port, const QString &authentication = u"N\t\t"_s)
    {
        return u"Socks5\t127.0.0.1\t"_s + QString::number(port) + u'\t' + authentication + u"\t/PSEND"_s;
    }
    static bool startStub(ChildServer &proxy, const ScriptedServer &target, QStringList more = {})
    {
        more += {u"--target"_s, QString::number(target.port())};
        return proxy.startPython(u"socks_stub.py"_s, more);
    }
    void verifyReason(const QString &words) const
    {
        QVERIFY2(m_reason.contains(words, Qt::CaseInsensitive), qPrintable(m_reason));
        QVERIFY2(!m_reason.contains(password), qPrintable(m_reason));
    }

    QString m_reason;
};

void TestProxyTest::webServerThatSaysNothingIsReachedThroughTheProxy()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY2(reach(line(proxy.port()), web.port()), qPrintable(m_reason));
    QCOMPARE(m_reason, QString());
    QTRY_COMPARE(web.Ended, 1);
    QCOMPARE(web.Connections, 1);
    QVERIFY(web.Lines.isEmpty());
}

void TestProxyTest::shippedSiteIsAskedForByNameOnPort80()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(startStub(proxy, web), qPrintable(proxy.fault()));
    const TemporaryTree tree;
    QVERIFY2(TestProxyConnection(line(proxy.port()), readSite(tree.globals.programFolder), &m_reason),
             qPrintable(m_reason));
    QCOMPARE(proxy.waitForLine("ASKED "), "name www.corvane.invalid 80");
    QCOMPARE(web.Connections, 1);
}

void TestProxyTest::deployersSiteIsAskedFor()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(startStub(proxy, web), qPrintable(proxy.fault()));
    const TemporaryTree tree;
    writeFile(tree.globals.programFolder + u"/site.dll"_s,
              "[Site]\r\nProxy Test Host=web.bücher.invalid\r\nProxy Test Port=8080\r\n");
    QVERIFY2(TestProxyConnection(line(proxy.port()), readSite(tree.globals.programFolder), &m_reason),
             qPrintable(m_reason));
    QCOMPARE(proxy.waitForLine("ASKED "), "name web.xn--bcher-kva.invalid 8080");
}

void TestProxyTest::lineWithoutSevenFieldsFailsWithoutAConnection_data()
{
    QTest::addColumn<QString>("proxy");
    QTest::newRow("empty") << QString();
    QTest::newRow("6 fields") << u"Socks5\t127.0.0.1\t%1\tY\tpat\tgeheim-hunter2"_s;
    QTest::newRow("8 fields") << u"Socks5\t127.0.0.1\t%1\tY\tpat\tgeheim-hunter2\t\t/PSEND"_s;
}

void TestProxyTest::lineWithoutSevenFieldsFailsWithoutAConnection()
{
    QFETCH(QString, proxy);
    WebServer web;
    ScriptedServer proxyServer;
    QVERIFY(!reach(proxy.replace(u"%1"_s, QString::number(proxyServer.port())), web.port()));
    verifyReason(u"fields, not 7"_s);
    QCOMPARE(web.Connections + proxyServer.Connections, 0);
}

void TestProxyTest::lineWithoutAnAddressIsNotTestedAroundTheProxy()
{
    WebServer web;
    QVERIFY(!reach(u"Socks5\t \t1080\tN\t\t\t/PSEND"_s, web.port()));
    verifyReason(u"no address"_s);
    QCOMPARE(web.Connections, 0);
}

void TestProxyTest::addressAndPortAreTakenWithoutBlanksAtTheirEnds()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY2(reach(u"Socks5\t 127.0.0.1 \t %1 \tN\t\t\t/PSEND"_s.arg(proxy.port()), web.port()), qPrintable(m_reason));
}

void TestProxyTest::userAndPasswordReachTheProxy()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(startStub(proxy, web, {u"--login"_s}), qPrintable(proxy.fault()));
    QVERIFY2(reach(line(proxy.port(), u"Y\tpat\t"_s + password), web.port()), qPrintable(m_reason));
    QCOMPARE(proxy.waitForLine("LOGIN "), QByteArray("pat").toHex() + ' ' + password.toUtf8().toHex());
    QCOMPARE(web.Connections, 1);
}

void TestProxyTest::wrongPasswordFailsWithoutShowingIt()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(u"pat"_s, password), qPrintable(proxy.fault()));
    QVERIFY(!reach(line(proxy.port(), u"Y\tpat\tnot-"_s + password), web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
    QVERIFY2(reach(line(proxy.port(), u"Y\tpat\t"_s + password), web.port()), qPrintable(m_reason));
}

void TestProxyTest::authenticationNSendsNoUser()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(u"pat"_s, password), qPrintable(proxy.fault()));
    QVERIFY(!reach(line(proxy.port(), u"N\tpat\t"_s + password), web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
}

void TestProxyTest::proxyThatIsNotThereFails()
{
    WebServer web;
    quint16 port = 0;
    {
        const ScriptedServer gone;
        port = gone.port();
    }
    QVERIFY(!reach(line(port), web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
}

void TestProxyTest::webServerThatIsNotThereFails()
{
    quint16 port = 0;
    {
        const WebServer gone;
        port = gone.port();
    }
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY(!reach(line(proxy.port()), port));
    verifyReason(u"Connecting to 127.0.0.1, port %1, through the proxy"_s.arg(port));
}

void TestProxyTest::proxyThatRefusesFails()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(startStub(proxy, web, {u"--refuse"_s, u"2"_s}), qPrintable(proxy.fault()));
    QVERIFY(!reach(line(proxy.port()), web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
}

void TestProxyTest::proxyThatStaysSilentFailsWhileTheEventLoopLives()
{
    MailTransport::setTimeouts(shortTime, longTime, shortGrace);
    WebServer web;
    WebServer proxy; // one that waits as well
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&ticks] { ++ticks; });
    timer.start(1);
    QVERIFY(!reach(line(proxy.port()), web.port()));
    verifyReason(u"through the proxy"_s);
    QCOMPARE(proxy.Connections, 1);
    QCOMPARE_GT(ticks, 1);
}

void TestProxyTest::oddAddressFailsWithAReason_data()
{
    QTest::addColumn<QString>("address");
    // A label of more than 63 octets is known to be no name without asking anybody.
    QTest::newRow("unresolvable") << QString(64, u'x') + u".invalid"_s;
    QTest::newRow("unresolvable, not Latin") << QString(64, u'ж') + u".invalid"_s;
    QTest::newRow("300 characters") << QString(300, u'x');
    QTest::newRow("blank within") << u"proxy x.org"_s;
    QTest::newRow("brackets") << u"[]"_s;
    QTest::newRow("lone surrogate") << QString(QChar(0xd800));
}

void TestProxyTest::oddAddressFailsWithAReason()
{
    QFETCH(const QString, address);
    WebServer web;
    QVERIFY(!reach(u"Socks5\t"_s + address + u"\t1080\tN\t\t\t/PSEND"_s, web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
}

QTEST_GUILESS_MAIN(TestProxyTest)
#include "test_proxytest.moc"
