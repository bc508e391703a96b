#include "sending/connection.h"
#include "support/scriptedserver.h"
#include "support/treefixture.h"
#include "support/waitfor.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;

class TestConnection : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeTree();
        m_errors.clear();
        m_transport.reset();
    }
    void cleanup()
    {
        m_transport.reset();
        dropTree();
    }

    void accountsFieldsReachTheTransport();
    void userIsTakenOnlyWithAuthentication();
    void proxyIsTakenByTheSettingNotByTheRecord();
    void proxyUserIsTakenOnlyWithAuthentication();
    void emptyPortIsPortZero();
    void newTransportDropsTheEarlierOneWithItsEvents();
    void transportThatGoesWhileItConnectsIsNoConnection();
    void runsWithoutAConnectionSendsNothingAndEndsNothing();
    void everyConnectionLooksTheProxyUpAnew();
    void errorsAndProgressReachTheirHearers();

private:
    bool connectWith(const QString &account, const QString &proxy = QString())
    {
        return waitFor(ConnectTransport(
            m_tree->globals, account, proxy,
            {[this](const QString &text) { m_errors.append(text); }, [](const QString &) {}}, m_transport));
    }
    static QString account(quint16 port, const QString &rest)
    {
        return u"127.0.0.1\t"_s + QString::number(port) + u'\t' + rest + u"\tAda\tada@x.org\t\t\t/SAEND"_s;
    }

    QStringList m_errors;
    std::unique_ptr<MailTransport> m_transport;
};

void TestConnection::accountsFieldsReachTheTransport()
{
    testsupport::ScriptedServer server;
    QVERIFY(connectWith(account(server.port(), u"N\tN\t\t"_s)));
    QCOMPARE(m_transport->Security, 0);
    QCOMPARE(server.Connections, 1);
    QVERIFY(m_errors.isEmpty());
}

void TestConnection::userIsTakenOnlyWithAuthentication()
{
    testsupport::ScriptedServer server;
    QVERIFY(connectWith(account(server.port(), u"N\tN\tuser\tsecret"_s)));
    QCOMPARE(m_transport->User, QString());
    QVERIFY(!connectWith(account(server.port(), u"N\tY\tuser\tsecret"_s))); // this server offers no login
    QCOMPARE(m_transport->User, u"user"_s);
    QCOMPARE(m_transport->Password, u"secret"_s);
    QCOMPARE(m_errors.size(), 1);
}

void TestConnection::proxyIsTakenByTheSettingNotByTheRecord()
{
    testsupport::ScriptedServer server;
    const QString proxy = u"Socks5\tproxy.invalid\t1080\tN\t\t\t/PSEND"_s;
    QVERIFY(connectWith(account(server.port(), u"N\tN\t\t"_s), proxy));
    QCOMPARE(m_transport->ProxyServer, QString());
    m_tree->globals.settings.set(Setting::ProxyUse, u"True"_s);
    QVERIFY(connectWith(account(server.port(), u"N\tN\t\t"_s), QString()));
    QCOMPARE(m_transport->ProxyServer, QString());
}

void TestConnection::proxyUserIsTakenOnlyWithAuthentication()
{
    m_tree->globals.settings.set(Setting::ProxyUse, u"True"_s);
    QVERIFY(!connectWith(account(1, u"N\tN\t\t"_s), u"Socks5\t127.0.0.1\t1\tN\tpu\tpp\t/PSEND"_s));
    QCOMPARE(m_transport->ProxyServer, u"127.0.0.1"_s);
    QCOMPARE(m_transport->ProxyPort, 1L);
    QCOMPARE(m_transport->ProxyUser, QString());
    QVERIFY(!connectWith(account(1, u"N\tN\t\t"_s), u"Socks5\t127.0.0.1\t1\tY\tpu\tpp\t/PSEND"_s));
    QCOMPARE(m_transport->ProxyUser, u"pu"_s);
    QCOMPARE(m_transport->ProxyPassword, u"pp"_s);
    QCOMPARE(m_errors.size(), 2);
}

void TestConnection::emptyPortIsPortZero()
{
    QVERIFY(!connectWith(u"127.0.0.1\t\tN\tN\t\t\tAda\tada@x.org\t\t\t/SAEND"_s));
    QCOMPARE(m_errors.size(), 1);
}

void TestConnection::newTransportDropsTheEarlierOneWithItsEvents()
{
    testsupport::ScriptedServer server;
    QVERIFY(connectWith(account(server.port(), u"N\tN\t\t"_s)));
    const QPointer<MailTransport> first = m_transport.get();
    QVERIFY(connectWith(account(server.port(), u"N\tN\t\t"_s)));
    QVERIFY(first.isNull());
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(m_errors.isEmpty());
}

void TestConnection::transportThatGoesWhileItConnectsIsNoConnection()
{
    testsupport::ScriptedServer server;
    server.Responder = [this](const QByteArray &) -> std::optional<QByteArray> {
        m_transport.reset();
        return std::nullopt;
    };
    QVERIFY(!connectWith(account(server.port(), u"N\tN\t\t"_s)));
    QVERIFY(m_errors.isEmpty());
}

void TestConnection::runsWithoutAConnectionSendsNothingAndEndsNothing()
{
    Connection connection(m_tree->globals, QString(), {});
    connection.quit();
    QVERIFY(!waitFor(connection.send({})));
}

void TestConnection::everyConnectionLooksTheProxyUpAnew()
{
    testsupport::ScriptedServer server;
    testsupport::ScriptedServer first; // no proxies at all, so that what goes through them fails
    testsupport::ScriptedServer second;
    first.Greeting.clear();
    second.Greeting.clear();
    first.closeAt(QByteArray());
    second.closeAt(QByteArray());
    Connection connection(m_tree->globals, account(server.port(), u"N\tN\t\t"_s),
                          {[this](const QString &text) { m_errors.append(text); }, [](const QString &) {}});
    QVERIFY(waitFor(connection.connect()));
    for (const testsupport::ScriptedServer *each : {&first, &second}) {
        m_tree->useProxy(u"Socks5\t127.0.0.1\t"_s + QString::number(each->port()) + u"\tN\t\t\t/PSEND"_s);
        QVERIFY(!waitFor(connection.connect()));
    }
    QCOMPARE(first.Connections, 1);
    QCOMPARE(second.Connections, 1);
    m_tree->globals.settings.set(Setting::ProxyUse, u"False"_s);
    QVERIFY(waitFor(connection.connect()));
    QCOMPARE(server.Connections, 2);
    QCOMPARE(m_errors.size(), 2);
}

void TestConnection::errorsAndProgressReachTheirHearers()
{
    testsupport::ScriptedServer server;
    server.Greeting = "554 not today\r\n";
    QStringList progress;
    Connection connection(m_tree->globals, account(server.port(), u"N\tN\t\t"_s),
                          {[this](const QString &text) { m_errors.append(text); },
                           [&progress](const QString &text) { progress.append(text); }});
    QVERIFY(!waitFor(connection.connect()));
    QCOMPARE(m_errors.size(), 1);
    QVERIFY(m_errors.constFirst().contains(u"554 not today"_s));
    QVERIFY(!progress.isEmpty() && progress.filter(u"554"_s).isEmpty());
}

QTEST_GUILESS_MAIN(TestConnection)
#include "test_connection.moc"
