#include "connectionbench.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;
using testsupport::ChildServer;
using testsupport::ScriptedServer;

/// What the lines of an account and of its proxy may hold.
class TestConnectionInput : public ConnectionBench {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        MailTransport::setTimeouts(longTime, longTime, longTime);
        m_reason = u"left from before"_s;
    }

    void accountWithoutElevenFieldsFailsWithoutAConnection();
    void accountWithoutElevenFieldsFailsWithoutAConnection_data();
    void proxyWithoutSevenFieldsFailsWithoutAConnection();
    void proxyWithoutSevenFieldsFailsWithoutAConnection_data();
    void proxyWithoutAnAddressFailsWithoutAConnection();
    void hostAndPortAreTakenWithoutBlanksAtTheirEnds();
    void portThatIsNoneFails();
    void portThatIsNoneFails_data();
    void oddHostFailsWithAReason();
    void oddHostFailsWithAReason_data();
    void refusedPortFails();
    void emptyProxyLineConnectsDirectly();
    void accountIsReachedThroughTheProxyByName();
    void accountsProxyGetsUserAndPassword();
};

void TestConnectionInput::accountWithoutElevenFieldsFailsWithoutAConnection_data()
{
    QTest::addColumn<int>("fields");
    for (const int fields : {1, 2, 10, 12, 22}) {
        QTest::addRow("%d fields", fields) << fields;
    }
}

void TestConnectionInput::accountWithoutElevenFieldsFailsWithoutAConnection()
{
    QFETCH(const int, fields);
    ScriptedServer server;
    const QString usable = accountLine(server.port(), u"N"_s, noLogin);
    QVERIFY2(smtp(usable), qPrintable(m_reason));
    QCOMPARE(server.Connections, 1);
    QVERIFY(!smtp((usable.split(u'\t') + QStringList(11, password)).mid(0, fields).join(u'\t')));
    verifyReason(u"fields, not 11"_s);
    QCOMPARE(server.Connections, 1);
}

void TestConnectionInput::proxyWithoutSevenFieldsFailsWithoutAConnection_data()
{
    addWrongProxyLines();
}

void TestConnectionInput::proxyWithoutSevenFieldsFailsWithoutAConnection()
{
    QFETCH(QString, proxy);
    ScriptedServer server;
    ScriptedServer proxyServer;
    proxy.replace(u"%1"_s, QString::number(proxyServer.port()));
    QVERIFY(!smtp(accountLine(server.port(), u"N"_s, noLogin), proxy));
    verifyReason(u"fields, not 7"_s);
    QCOMPARE(server.Connections + proxyServer.Connections, 0);
}

void TestConnectionInput::proxyWithoutAnAddressFailsWithoutAConnection()
{
    ScriptedServer server;
    QVERIFY(!smtp(accountLine(server.port(), u"N"_s, noLogin), proxyLine(u" "_s, u"1080"_s, noLogin)));
    verifyReason(u"no address"_s);
    QCOMPARE(server.Connections, 0);
}

void TestConnectionInput::hostAndPortAreTakenWithoutBlanksAtTheirEnds()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY2(smtp(accountLine(u" 127.0.0.1 "_s, u" %1 "_s.arg(server.port()), u"N"_s, noLogin),
                  proxyLine(u" 127.0.0.1 "_s, u" %1 "_s.arg(proxy.port()), noLogin)),
             qPrintable(m_reason));
    QCOMPARE(server.Connections, 1);
}

void TestConnectionInput::portThatIsNoneFails_data()
{
    QTest::addColumn<QString>("port");
    for (const char *port : {"", "0", "-1", "65536", "smtp", "25x", "99999999999", "99999999999999999999"}) {
        QTest::newRow(port) << QString::fromLatin1(port);
    }
}

void TestConnectionInput::portThatIsNoneFails()
{
    QFETCH(const QString, port);
    QVERIFY(!smtp(accountLine(u"127.0.0.1"_s, port, u"N"_s, noLogin)));
    verifyReason(u"is not a port"_s);
    ScriptedServer server;
    QVERIFY(!smtp(accountLine(server.port(), u"N"_s, noLogin), proxyLine(u"127.0.0.1"_s, port, noLogin)));
    verifyReason(u"is not a port of the proxy"_s);
    QCOMPARE(server.Connections, 0);
}

void TestConnectionInput::oddHostFailsWithAReason_data()
{
    addOddHosts();
}

void TestConnectionInput::oddHostFailsWithAReason()
{
    QFETCH(const QString, host);
    QVERIFY(!smtp(accountLine(host, u"25"_s, u"N"_s, login)));
    verifyReason(u"failed"_s);
    QVERIFY(!smtp(accountLine(portOfNobody(), u"N"_s, login), proxyLine(host, u"1080"_s, login)));
    verifyReason(u"proxy"_s);
}

void TestConnectionInput::refusedPortFails()
{
    const quint16 port = portOfNobody();
    QVERIFY(!smtp(accountLine(port, u"N"_s, login)));
    verifyReason(u"Connecting to 127.0.0.1, port %1, failed"_s.arg(port));
}

void TestConnectionInput::emptyProxyLineConnectsDirectly()
{
    ScriptedServer server;
    QVERIFY2(smtp(accountLine(server.port(), u"N"_s, noLogin), QString()), qPrintable(m_reason));
    QCOMPARE(server.Connections, 1);
}

void TestConnectionInput::accountIsReachedThroughTheProxyByName()
{
    ScriptedServer server;
    for (const auto &[host, asked] : {std::pair(u"mail.only-the-proxy.invalid"_s, "mail.only-the-proxy.invalid"),
                                      std::pair(u"bücher.invalid"_s, "xn--bcher-kva.invalid")}) {
        ChildServer proxy;
        QVERIFY2(startStub(proxy, server), qPrintable(proxy.fault()));
        QVERIFY2(smtp(accountLine(host, u"2525"_s, u"N"_s, noLogin), proxyLine(proxy.port())), qPrintable(m_reason));
        QCOMPARE(proxy.waitForLine("ASKED "), QByteArray("name ") + asked + " 2525");
    }
    QCOMPARE(server.Connections, 2);
}

void TestConnectionInput::accountsProxyGetsUserAndPassword()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(u"pat"_s, password), qPrintable(proxy.fault()));
    const QString account = accountLine(server.port(), u"N"_s, noLogin);
    QVERIFY2(smtp(account, proxyLine(proxy.port(), u"Y\tpat\t"_s + password)), qPrintable(m_reason));
    QVERIFY(!smtp(account, proxyLine(proxy.port(), u"N\tpat\t"_s + password)));
    verifyReason(u"proxy"_s);
    QCOMPARE(server.Connections, 1);
}

QTEST_GUILESS_MAIN(TestConnectionInput)
#include "test_connectioninput.moc"
