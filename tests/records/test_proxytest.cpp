#include "connectionbench.h"
#include "support/temporarytree.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;
using testsupport::ChildServer;
using testsupport::ScriptedServer;

namespace {

/// A web server as the test of a proxy sees it: it waits for a request that never comes.
struct WebServer : ScriptedServer {
    WebServer() { Greeting = ""; }
};

} // namespace

class TestProxyTest : public ConnectionBench {
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
    /// That a proxy with a login lets the right user through and refuses @p loginFields.
    void verifyRefused(const QString &loginFields)
    {
        WebServer web;
        ChildServer proxy;
        QVERIFY2(proxy.startMicrosocks(u"pat"_s, password), qPrintable(proxy.fault()));
        QVERIFY(!reach(proxyLine(proxy.port(), loginFields), web.port()));
        verifyReason(u"proxy"_s);
        QCOMPARE(web.Connections, 0);
        QVERIFY2(reach(proxyLine(proxy.port(), u"Y\tpat\t"_s + password), web.port()), qPrintable(m_reason));
    }
};

void TestProxyTest::webServerThatSaysNothingIsReachedThroughTheProxy()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY2(reach(proxyLine(proxy.port()), web.port()), qPrintable(m_reason));
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
    QVERIFY2(keep(waitFor(TestProxyConnection(proxyLine(proxy.port()), readSite(tree.globals.programFolder)))),
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
    QVERIFY2(keep(waitFor(TestProxyConnection(proxyLine(proxy.port()), readSite(tree.globals.programFolder)))),
             qPrintable(m_reason));
    QCOMPARE(proxy.waitForLine("ASKED "), "name web.xn--bcher-kva.invalid 8080");
}

void TestProxyTest::lineWithoutSevenFieldsFailsWithoutAConnection_data()
{
    addWrongProxyLines();
    QTest::newRow("empty") << QString();
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
    QVERIFY(!reach(proxyLine(u" "_s, u"1080"_s, noLogin), web.port()));
    verifyReason(u"no address"_s);
    QCOMPARE(web.Connections, 0);
}

void TestProxyTest::addressAndPortAreTakenWithoutBlanksAtTheirEnds()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY2(reach(proxyLine(u" 127.0.0.1 "_s, u" %1 "_s.arg(proxy.port()), noLogin), web.port()),
             qPrintable(m_reason));
}

void TestProxyTest::userAndPasswordReachTheProxy()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(startStub(proxy, web, {u"--login"_s}), qPrintable(proxy.fault()));
    QVERIFY2(reach(proxyLine(proxy.port(), u"Y\tpat\t"_s + password), web.port()), qPrintable(m_reason));
    QCOMPARE(proxy.waitForLine("LOGIN "), QByteArray("pat").toHex() + ' ' + password.toUtf8().toHex());
    QCOMPARE(web.Connections, 1);
}

void TestProxyTest::wrongPasswordFailsWithoutShowingIt()
{
    verifyRefused(u"Y\tpat\tnot-"_s + password);
}

void TestProxyTest::authenticationNSendsNoUser()
{
    verifyRefused(u"N\tpat\t"_s + password);
}

void TestProxyTest::proxyThatIsNotThereFails()
{
    WebServer web;
    const quint16 port = portOfNobody();
    QVERIFY(!reach(proxyLine(port), web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
}

void TestProxyTest::webServerThatIsNotThereFails()
{
    const quint16 port = portOfNobody();
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY(!reach(proxyLine(proxy.port()), port));
    verifyReason(u"Connecting to 127.0.0.1, port %1, through the proxy"_s.arg(port));
}

void TestProxyTest::proxyThatRefusesFails()
{
    WebServer web;
    ChildServer proxy;
    QVERIFY2(startStub(proxy, web, {u"--refuse"_s, u"2"_s}), qPrintable(proxy.fault()));
    QVERIFY(!reach(proxyLine(proxy.port()), web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
}

void TestProxyTest::proxyThatStaysSilentFailsWhileTheEventLoopLives()
{
    MailTransport::setTimeouts(shortTime, longTime, shortGrace);
    WebServer web;
    WebServer proxy; // one that waits as well
    verifyLoopLives([&] { return reach(proxyLine(proxy.port()), web.port()); });
    verifyReason(u"through the proxy"_s);
    QCOMPARE(proxy.Connections, 1);
}

void TestProxyTest::oddAddressFailsWithAReason_data()
{
    addOddHosts();
}

void TestProxyTest::oddAddressFailsWithAReason()
{
    QFETCH(const QString, host);
    WebServer web;
    QVERIFY(!reach(proxyLine(host, u"1080"_s, login), web.port()));
    verifyReason(u"proxy"_s);
    QCOMPARE(web.Connections, 0);
}

QTEST_GUILESS_MAIN(TestProxyTest)
#include "test_proxytest.moc"
