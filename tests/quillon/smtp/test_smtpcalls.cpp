#include "quillon/smtp/client.h"
#include "support/scriptedserver.h"

#include <QTcpServer>
#include <QTest>
#include <QTimer>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ScriptedServer;

namespace {
const QByteArray text = "Subject: x\r\n\r\nhello\r\n";
} // namespace

/// What the calls promise their caller: states, results, one error each.
class TestSmtpCalls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }

    void anEmptyPortFieldIsPortZeroAndAnError();
    void stateTellsWhereTheConnectionIs();
    void settingsAreTrimmedAndBounded_data();
    void settingsAreTrimmedAndBounded();
    void badServersAndPortsAreErrorsWithoutAConnection_data();
    void badServersAndPortsAreErrorsWithoutAConnection();
    void aRefusedConnectionIsAnError();
    void anUnknownHostIsAnError();

    void sendAfterAFailedConnectIsFalseWithoutASecondError();
    void sendWithoutConnectIsAnError();
    void sendAfterQuitIsAnError();
    void sendAfterABrokenSendIsAnError();
    void quitForgetsThatConnectFailed();
    void aLateEndIsNotTakenForThatOfTheNextCall();
    void aNewConnectionReportsItsOwnFailures();
    void oneResultForOneSend();
    void aTransportCanConnectAgain();

    void quitDoesNotWaitForAHungPeer();
    void quitSendsItsCommandOnAnIdleSession();
    void quitTwiceAndWithoutConnectIsHarmless();

    void aMessageGoesToToCcAndBcc();
    void aMessageThatCannotBeEncodedIsAnErrorOfSend();
};

void TestSmtpCalls::anEmptyPortFieldIsPortZeroAndAnError()
{
    Client client;
    waitFor(client.Transport.Connect(u"127.0.0.1"_s, QString().toLong(), 0, 0));
    QVERIFY(client.Transport.State() != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"0 is not a port"), qPrintable(client.Errors.first()));
}

void TestSmtpCalls::stateTellsWhereTheConnectionIs()
{
    ScriptedServer server;
    MailTransport transport;
    QCOMPARE(transport.State(), 0);
    const Pending<> connecting = transport.Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    QCOMPARE(transport.State(), 1);
    long atGreeting = 0;
    server.Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            atGreeting = transport.State();
        }
        return std::nullopt;
    };
    QTRY_VERIFY(connecting.isSettled());
    QCOMPARE(atGreeting, 2);
    QCOMPARE(transport.State(), 2);
    transport.Quit();
    QCOMPARE(transport.State(), 0);
    const Pending<> again = transport.Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    QCOMPARE(transport.State(), 1);
    transport.Quit();
    QCOMPARE(transport.State(), 0);
    QVERIFY(again.isSettled());
}

void TestSmtpCalls::settingsAreTrimmedAndBounded_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<long>("port");
    QTest::addColumn<QString>("proxy");
    QTest::addColumn<long>("proxyPort");
    QTest::addColumn<QString>("start"); // of the one error: nobody listens on any of these
    const QString direct = u"Connecting to 127.0.0.1, port %1, failed: "_s;
    const QString behind = u"Connecting to 127.0.0.1, port 1, through the proxy 127.0.0.1, port %1, failed: "_s;
    QTest::newRow("least port") << u"127.0.0.1"_s << 1L << QString() << 0L << direct.arg(1);
    QTest::newRow("greatest port") << u"127.0.0.1"_s << 65535L << QString() << 0L << direct.arg(65535);
    QTest::newRow("blanks around the server") << u" \t127.0.0.1\n"_s << 1L << QString() << 0L << direct.arg(1);
    QTest::newRow("a proxy of blanks is none") << u"127.0.0.1"_s << 1L << u" \t"_s << 0L << direct.arg(1);
    QTest::newRow("blanks around the proxy") << u"127.0.0.1"_s << 1L << u" 127.0.0.1\t"_s << 1L << behind.arg(1);
    QTest::newRow("greatest port of the proxy")
        << u"127.0.0.1"_s << 1L << u"127.0.0.1"_s << 65535L << behind.arg(65535);
}

void TestSmtpCalls::settingsAreTrimmedAndBounded()
{
    QFETCH(QString, server);
    QFETCH(long, port);
    QFETCH(QString, proxy);
    QFETCH(long, proxyPort);
    QFETCH(QString, start);
    Client client;
    client.Transport.ProxyServer = proxy;
    client.Transport.ProxyPort = proxyPort;
    waitFor(client.Transport.Connect(server, port, 0, 0));
    QCOMPARE(client.Transport.State(), 0);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().startsWith(start), qPrintable(client.Errors.first()));
}

void TestSmtpCalls::badServersAndPortsAreErrorsWithoutAConnection_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<long>("port");
    QTest::addColumn<QString>("reason");
    const QString noServer = u"no mail server is given."_s;
    const QString noName = u"“%1” is not the name of a mail server."_s;
    const QString noPort = u"%1 is not a port; ports go from 1 to 65535."_s;
    QTest::newRow("no server") << QString() << 25L << noServer;
    QTest::newRow("blank server") << u" \t "_s << 25L << noServer;
    QTest::newRow("server with a line end") << u"a\r\nb"_s << 25L << noName.arg(u"a b");
    QTest::newRow("server that is an address") << u"a@b.c"_s << 25L << noName.arg(u"a@b.c");
    QTest::newRow("server that is a URL") << u"a/b"_s << 25L << noName.arg(u"a/b");
    QTest::newRow("server with NUL") << u"127.0.0.1\0x"_s << 25L << noName.arg(u"127.0.0.1 x");
    QTest::newRow("port 0") << u"127.0.0.1"_s << 0L << noPort.arg(0);
    QTest::newRow("negative port") << u"127.0.0.1"_s << -25L << noPort.arg(-25);
    QTest::newRow("port 65536") << u"127.0.0.1"_s << 65536L << noPort.arg(65536);
    QTest::newRow("huge port") << u"127.0.0.1"_s << (1L << 40) + 25 << noPort.arg((1L << 40) + 25);
}

void TestSmtpCalls::badServersAndPortsAreErrorsWithoutAConnection()
{
    QFETCH(QString, server);
    QFETCH(long, port);
    QFETCH(QString, reason);
    Client client;
    waitFor(client.Transport.Connect(server, port, 0, 0));
    QCOMPARE(client.Transport.State(), 0);
    QCOMPARE(client.Errors, QStringList{u"Connecting failed: "_s + reason});
    QCOMPARE(client.Codes, QList<int>{0});
    QVERIFY(!client.send(text));
    QVERIFY(!client.accepted());
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpCalls::aRefusedConnectionIsAnError()
{
    quint16 port = 0;
    {
        QTcpServer gone;
        QVERIFY(gone.listen(QHostAddress::LocalHost));
        port = gone.serverPort();
    }
    Client client;
    QVERIFY(client.connectTo(port) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"Connecting to 127.0.0.1, port %1, failed"_s.arg(port)),
             qPrintable(client.Errors.first()));
}

void TestSmtpCalls::anUnknownHostIsAnError()
{
    Client client;
    // A label of more than 63 octets is known to be no name without asking anybody.
    const QString host = QString(64, u'x') + u".invalid"_s;
    QVERIFY(client.connectTo(25, host) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(host), qPrintable(client.Errors.first()));
}

void TestSmtpCalls::sendAfterAFailedConnectIsFalseWithoutASecondError()
{
    ScriptedServer server;
    server.Greeting = "554 go away\r\n";
    Client client;
    QVERIFY(client.connectTo(server.port()) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(!client.send(text));
    QVERIFY(!client.sendMessage(MailMessage()));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpCalls::sendWithoutConnectIsAnError()
{
    Client client;
    QVERIFY(!client.sendMessage(MailMessage()));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpCalls::sendAfterQuitIsAnError()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    client.Transport.Quit();
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpCalls::sendAfterABrokenSendIsAnError()
{
    ScriptedServer server;
    server.answer("MAIL", "421 closing\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 2);
}

void TestSmtpCalls::quitForgetsThatConnectFailed()
{
    Client client;
    waitFor(client.Transport.Connect(QString(), 25, 0, 0));
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    client.Transport.Quit();
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.mid(1),
             QStringList{u"The message was not sent: there is no connection to a mail server."_s});
    QVERIFY(!client.sendMessage(MailMessage()));
    QCOMPARE(client.Errors.size(), 3);
}

void TestSmtpCalls::aLateEndIsNotTakenForThatOfTheNextCall()
{
    // The first call's failure waits in the event loop when the second begins.
    ScriptedServer server;
    Client client;
    const Pending<> failing = client.Transport.Connect(QString(), 25, 0, 0);
    QVERIFY(!failing.isSettled());
    client.Transport.Quit();
    QVERIFY(failing.isSettled());
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Errors.isEmpty());
    QVERIFY(client.accepted());
}

void TestSmtpCalls::aNewConnectionReportsItsOwnFailures()
{
    ScriptedServer server;
    server.Greeting = "554 not yet\r\n";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 0);
    server.Greeting = "220 now\r\n";
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.accepted());
    server.hangUp();
    QTRY_COMPARE(client.Transport.State(), 0);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.mid(1), QStringList{u"Connected to 127.0.0.1 failed: the server has closed the connection "
                                               "(its last answer was “250 scripted.example”)."_s});
    // That it is lost has been told by Send; one more mail is one more failure.
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.mid(2),
             QStringList{u"The message was not sent: there is no connection to a mail server."_s});
}

void TestSmtpCalls::oneResultForOneSend()
{
    // Refused, and then the connection is lost as well: that is one failure.
    ScriptedServer server;
    server.answer("RCPT", "550 no\r\n550 and no\r\n421 and away\r\n");
    server.closeAt("RCPT");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QTRY_COMPARE(client.Transport.State(), 0);
    QCOMPARE(client.Errors, QStringList{u"The server refused the recipient to@example.org (RCPT TO): “550 no”."_s});
}

void TestSmtpCalls::aTransportCanConnectAgain()
{
    ScriptedServer server;
    server.Greeting = "554 not yet\r\n";
    Client client;
    QVERIFY(client.connectTo(server.port()) != 2);
    server.Greeting = "220 now\r\n";
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text));
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text));
    QCOMPARE(server.Connections, 3);
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpCalls::quitDoesNotWaitForAHungPeer()
{
    // No event loop runs between here and there, so a wait could only end by a time-out, which is half a minute.
    ScriptedServer server;
    server.answer("QUIT", "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    bool looped = false;
    QTimer::singleShot(0, &server, [&looped] { looped = true; });
    client.Transport.Quit();
    QVERIFY(!looped);
    QCOMPARE(client.Transport.State(), 0);
}

void TestSmtpCalls::quitSendsItsCommandOnAnIdleSession()
{
    ScriptedServer server;
    {
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(client.send(text));
    }
    QTRY_COMPARE(server.count("QUIT"), 1);
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpCalls::quitTwiceAndWithoutConnectIsHarmless()
{
    Client client;
    client.Transport.Quit();
    client.Transport.Quit();
    ScriptedServer server;
    QCOMPARE(client.connectTo(server.port()), 2);
    client.Transport.Quit();
    client.Transport.Quit();
    QTRY_COMPARE(server.Ended, 1);
    QCOMPARE(server.count("QUIT"), 1);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpCalls::aMessageGoesToToCcAndBcc()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    MailMessage message;
    message.From = {u"from@example.org"_s, u"Me"_s};
    message.To.Add({u"to@example.org"_s, {}});
    message.CC.Add({u"cc@example.org"_s, {}});
    message.BCC.Add({u"bcc@example.org"_s, {}});
    message.BCC.Add({u"to@example.org"_s, {}});
    message.Subject = u"Hello"_s;
    message.Content = u"Text\r\n.\r\n"_s;
    QVERIFY2(client.sendMessage(message), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(server.Lines.mid(1), (QList<QByteArray>{"MAIL FROM:<from@example.org>", "RCPT TO:<to@example.org>",
                                                     "RCPT TO:<cc@example.org>", "RCPT TO:<bcc@example.org>", "DATA"}));
    QCOMPARE(server.Mails.size(), 1);
    QVERIFY(!server.Mails.first().contains("bcc@example.org"));
}

void TestSmtpCalls::aMessageThatCannotBeEncodedIsAnErrorOfSend()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    MailMessage message;
    message.From = {u"from@example.org"_s, {}};
    message.To.Add({u"to@example.org"_s, {}});
    message.Attachments.Add({u"gone.txt"_s, u"/nowhere/gone.txt"_s});
    QVERIFY(!client.sendMessage(message));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"gone.txt"), qPrintable(client.Errors.first()));
    QVERIFY(!server.heard("MAIL"));
}

QTEST_GUILESS_MAIN(TestSmtpCalls)
#include "test_smtpcalls.moc"
