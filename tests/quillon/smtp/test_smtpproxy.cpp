#include "quillon/mail/smtptls.h"
#include "quillon/smtp/client.h"
#include "support/certificates.h"
#include "support/childserver.h"
#include "support/scriptedserver.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ChildServer;
using testsupport::ScriptedServer;

/// The transport behind a SOCKS5 proxy: microsocks as the real one, and one that tells what it was asked.
class TestSmtpProxy : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(60'000, 60'000, 60'000); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void aMailGoesThroughAProxyWithoutAUser();
    void aMailGoesThroughAProxyWithAUser();
    void aMailGoesThroughAProxyInTls();
    void theProxyResolvesTheName();
    void aProxyThatWantsNoLoginIsUsedAlthoughThereIsAUser();
    void aProxyThatClosesIsNotToldAsTheServer();
    void theProxysNameMayHaveSeveralAddresses();
    void theServersFirstWordsMayComeWithTheProxysLast();
    void aUserInUtf8ReachesTheProxy();
    void aWrongProxyPasswordIsAnErrorThatNamesTheProxy();
    void aProxyThatRefusesIsAnErrorThatNamesTheProxy_data();
    void aProxyThatRefusesIsAnErrorThatNamesTheProxy();
    void anUnreachableProxyIsAnErrorThatNamesTheProxy();
    void aProxyThatIsNoneIsAnErrorThatNamesTheProxy();
    void aSilentProxyEndsWithTheTimeForConnecting();
    void aServerThatTheProxyCannotReachIsAnError();
    void aProxyCanBeTestedAgainstAPeerThatSaysNothing();
    void badProxySettingsAreErrorsWithoutAConnection_data();
    void badProxySettingsAreErrorsWithoutAConnection();
    void aLoginOfTheGreatestLengthReachesTheProxy();
};

namespace {

const QByteArray text = "Subject: x\r\n\r\nhello\r\n";

struct ProxiedClient : Client {
    explicit ProxiedClient(quint16 port, const QString &user = {}, const QString &password = {})
    {
        Transport.ProxyServer = u"127.0.0.1"_s;
        Transport.ProxyPort = port;
        Transport.ProxyUser = user;
        Transport.ProxyPassword = password;
    }
};

quint16 portOfNobody()
{
    QTcpServer gone;
    return gone.listen(QHostAddress::LocalHost) ? gone.serverPort() : 0;
}

} // namespace

void TestSmtpProxy::aMailGoesThroughAProxyWithoutAUser()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port());
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(server.Mails.size(), 1);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpProxy::aMailGoesThroughAProxyWithAUser()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(u"user"_s, u"geheim"_s), qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port(), u"user"_s, u"geheim"_s);
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(server.Mails.size(), 1);
}

void TestSmtpProxy::aMailGoesThroughAProxyInTls()
{
    const testsupport::Certificates certificates;
    QVERIFY2(certificates.isValid(), qPrintable(certificates.fault()));
    SmtpTls::setAuthorities({certificates.authority()});
    for (const int security : {MailTransport::Ssl, MailTransport::StartTls}) {
        ScriptedServer server;
        server.Certificate = certificates.localhost();
        server.Key = certificates.localhostKey();
        server.ImplicitTls = security == MailTransport::Ssl;
        server.Offers = {"STARTTLS"};
        ChildServer proxy;
        QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
        ProxiedClient client(proxy.port());
        client.Transport.Security = security;
        QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2);
        QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
        QCOMPARE(server.Mails.size(), 1);
    }
}

void TestSmtpProxy::theProxyResolvesTheName()
{
    // Nobody here can resolve this name, so that only the proxy can have been asked.
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--target"_s, QString::number(server.port())}),
             qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port());
    QCOMPARE(client.connectTo(2525, u"mail.only-the-proxy.invalid"_s), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(proxy.waitForLine("ASKED "), "name mail.only-the-proxy.invalid 2525");
    QCOMPARE(server.Mails.size(), 1);
}

void TestSmtpProxy::aProxyThatWantsNoLoginIsUsedAlthoughThereIsAUser()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--target"_s, QString::number(server.port())}),
             qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port(), u"user"_s, u"geheim"_s);
    QCOMPARE(client.connectTo(server.port()), 2);
    QCOMPARE(proxy.waitForLine("METHODS "), QByteArray("0002"));
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpProxy::aProxyThatClosesIsNotToldAsTheServer()
{
    ScriptedServer proxy;
    proxy.Greeting = "";
    proxy.closeAt("");
    ProxiedClient client(proxy.port());
    QVERIFY(client.connectTo(25, u"mail.example.org"_s) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().endsWith(u"failed: the proxy has closed the connection."),
             qPrintable(client.Errors.first()));
}

void TestSmtpProxy::theProxysNameMayHaveSeveralAddresses()
{
    // This machine by its name is two addresses, of which the first refuses.
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--target"_s, QString::number(server.port())}),
             qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port());
    client.Transport.ProxyServer = u"localhost"_s;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    ProxiedClient other(portOfNobody());
    other.Transport.ProxyServer = u"localhost"_s;
    QVERIFY(other.connectTo(server.port()) != 2);
    QVERIFY2(other.Errors.first().endsWith(u"the proxy cannot be reached (Connection refused)."),
             qPrintable(other.Errors.first()));
}

void TestSmtpProxy::theServersFirstWordsMayComeWithTheProxysLast()
{
    QTcpServer proxy;
    QVERIFY(proxy.listen(QHostAddress::LocalHost));
    connect(&proxy, &QTcpServer::newConnection, &proxy, [&proxy] {
        QTcpSocket *socket = proxy.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [socket] {
            const QByteArray said = socket->readAll();
            if (said.startsWith("\x05\x01") && said.size() == 3) {
                socket->write(QByteArray("\x05\0", 2));
            } else if (said.startsWith('\x05')) {
                socket->write(QByteArray("\x05\0\0\x01\0\0\0\0\0\0", 10) + "220 eager.example\r\n");
            } else {
                socket->write("250 eager.example\r\n");
            }
        });
    });
    ProxiedClient client(proxy.serverPort());
    QCOMPARE(client.connectTo(25, u"mail.example.org"_s), 2);
    QVERIFY(client.accepted());
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpProxy::aUserInUtf8ReachesTheProxy()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--login"_s, u"--target"_s, QString::number(server.port())}),
             qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port(), u"jürgen"_s, u"密码"_s);
    QCOMPARE(client.connectTo(server.port()), 2);
    QCOMPARE(proxy.waitForLine("LOGIN "), u"jürgen"_s.toUtf8().toHex() + ' ' + u"密码"_s.toUtf8().toHex());
}

void TestSmtpProxy::aWrongProxyPasswordIsAnErrorThatNamesTheProxy()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(u"user"_s, u"geheim"_s), qPrintable(proxy.fault()));
    for (const QString &user : {u"user"_s, QString()}) {
        ProxiedClient client(proxy.port(), user, u"falsches Wort"_s);
        QVERIFY(client.connectTo(server.port()) != 2);
        QCOMPARE(client.Errors.size(), 1);
        const QString error = client.Errors.first();
        QVERIFY2(error.contains(u"through the proxy 127.0.0.1, port %1"_s.arg(proxy.port())), qPrintable(error));
        QVERIFY2(!error.contains(u"falsches Wort"), qPrintable(error));
        QVERIFY2(error.endsWith(user.isEmpty() ? u"the proxy wants a user name and a password."_s
                                               : u"the proxy does not accept the user name or the password."_s),
                 qPrintable(error));
    }
    QCOMPARE(server.Connections, 0);
}

void TestSmtpProxy::aProxyThatRefusesIsAnErrorThatNamesTheProxy_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("said");
    QTest::newRow("general failure") << 1 << u"the proxy reports a general failure"_s;
    QTest::newRow("not allowed") << 2 << u"the proxy does not allow this connection"_s;
    QTest::newRow("network unreachable") << 3 << u"the proxy reports that the network cannot be reached"_s;
    QTest::newRow("host unreachable") << 4 << u"the proxy reports that the host cannot be reached"_s;
    QTest::newRow("connection refused") << 5 << u"the proxy reports that the server refused the connection"_s;
    QTest::newRow("time to live") << 6 << u"the proxy reports that the time to live is over"_s;
    QTest::newRow("command not supported") << 7 << u"the proxy does not know the command"_s;
    QTest::newRow("address type not supported") << 8 << u"the proxy does not know this kind of address"_s;
    QTest::newRow("unknown code") << 99 << u"the proxy answers with the unknown code 99"_s;
}

void TestSmtpProxy::aProxyThatRefusesIsAnErrorThatNamesTheProxy()
{
    QFETCH(int, code);
    QFETCH(QString, said);
    ChildServer proxy;
    QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--refuse"_s, QString::number(code)}), qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port());
    QVERIFY(client.connectTo(25, u"mail.example.org"_s) != 2);
    QCOMPARE(client.Errors.size(), 1);
    const QString begin =
        u"Connecting to mail.example.org, port 25, through the proxy 127.0.0.1, port %1, failed: "_s.arg(proxy.port());
    QCOMPARE(client.Errors.first(), begin + said + u'.');
}

void TestSmtpProxy::anUnreachableProxyIsAnErrorThatNamesTheProxy()
{
    const quint16 port = portOfNobody();
    ScriptedServer server;
    ProxiedClient client(port);
    QVERIFY(client.connectTo(server.port()) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"through the proxy 127.0.0.1, port %1"_s.arg(port)),
             qPrintable(client.Errors.first()));
    QVERIFY2(client.Errors.first().endsWith(u"the proxy cannot be reached (Connection refused)."),
             qPrintable(client.Errors.first()));
    QCOMPARE(server.Connections, 0);
}

void TestSmtpProxy::aProxyThatIsNoneIsAnErrorThatNamesTheProxy()
{
    ScriptedServer noProxy;
    ProxiedClient client(noProxy.port());
    QVERIFY(client.connectTo(25, u"mail.example.org"_s) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"through the proxy 127.0.0.1"), qPrintable(client.Errors.first()));
}

void TestSmtpProxy::aSilentProxyEndsWithTheTimeForConnecting()
{
    MailTransport::setTimeouts(150, 60'000, 60'000);
    ScriptedServer silent;
    silent.Greeting = "";
    ProxiedClient client(silent.port());
    QVERIFY(client.connectTo(25, u"mail.example.org"_s) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"through the proxy 127.0.0.1"), qPrintable(client.Errors.first()));
}

void TestSmtpProxy::aServerThatTheProxyCannotReachIsAnError()
{
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port());
    QVERIFY(client.connectTo(portOfNobody()) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"through the proxy 127.0.0.1"), qPrintable(client.Errors.first()));
}

void TestSmtpProxy::aProxyCanBeTestedAgainstAPeerThatSaysNothing()
{
    // A web server says nothing until it is asked.
    MailTransport::setTimeouts(60'000, 60'000, 30);
    ScriptedServer web;
    web.Greeting = "";
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    ProxiedClient client(proxy.port());
    QCOMPARE(client.connectTo(web.port()), 2);
    client.Transport.Quit();
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpProxy::badProxySettingsAreErrorsWithoutAConnection_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<long>("port");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("reason");
    const QString noPort = u"%1 is not a port of the proxy; ports go from 1 to 65535."_s;
    const QString tooLong = u"the user name or the password for the proxy is longer than 255 octets."_s;
    const QString none;
    QTest::newRow("port 0") << u"127.0.0.1"_s << 0L << none << none << noPort.arg(0);
    QTest::newRow("port 65536") << u"127.0.0.1"_s << 65536L << none << none << noPort.arg(65536);
    QTest::newRow("no host name") << u"a b"_s << 1080L << none << none << u"“a b” is not the name of a proxy server."_s;
    QTest::newRow("an address") << u"a@b"_s << 1080L << none << none << u"“a@b” is not the name of a proxy server."_s;
    QTest::newRow("user of 256") << u"127.0.0.1"_s << 1080L << QString(256, u'x') << none << tooLong;
    QTest::newRow("password of 256") << u"127.0.0.1"_s << 1080L << u"x"_s << QString(256, u'x') << tooLong;
    QTest::newRow("user of 256 octets") << u"127.0.0.1"_s << 1080L << QString(128, u'ü') << none << tooLong;
    QTest::newRow("password of 256 octets") << u"127.0.0.1"_s << 1080L << u"x"_s << QString(128, u'ü') << tooLong;
}

void TestSmtpProxy::badProxySettingsAreErrorsWithoutAConnection()
{
    QFETCH(QString, host);
    QFETCH(long, port);
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(QString, reason);
    ScriptedServer server;
    Client client;
    client.Transport.ProxyServer = host;
    client.Transport.ProxyPort = port;
    client.Transport.ProxyUser = user;
    client.Transport.ProxyPassword = password;
    QCOMPARE(client.connectTo(server.port()), 0);
    QCOMPARE(client.Errors, QStringList{u"Connecting failed: "_s + reason});
    QCOMPARE(server.Connections, 0);
}

void TestSmtpProxy::aLoginOfTheGreatestLengthReachesTheProxy()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--login"_s, u"--target"_s, QString::number(server.port())}),
             qPrintable(proxy.fault()));
    const QString user(255, u'u');
    const QString password(255, u'p');
    ProxiedClient client(proxy.port(), user, password);
    QCOMPARE(client.connectTo(server.port()), 2);
    QCOMPARE(proxy.waitForLine("LOGIN "), user.toLatin1().toHex() + ' ' + password.toLatin1().toHex());
}

QTEST_GUILESS_MAIN(TestSmtpProxy)
#include "test_smtpproxy.moc"
