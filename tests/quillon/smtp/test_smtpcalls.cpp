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
    void badServersAndPortsAreErrorsWithoutAConnection_data();
    void badServersAndPortsAreErrorsWithoutAConnection();
    void aRefusedConnectionIsAnError();
    void anUnknownHostIsAnError();

    void sendAfterAFailedConnectIsFalseWithoutASecondError();
    void sendWithoutConnectIsAnError();
    void sendAfterQuitIsAnError();
    void sendAfterABrokenSendIsAnError();
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

void TestSmtpCalls::badServersAndPortsAreErrorsWithoutAConnection_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<long>("port");
    QTest::newRow("no server") << QString() << 25L;
    QTest::newRow("blank server") << u"  "_s << 25L;
    QTest::newRow("server with a line end") << u"a\r\nb"_s << 25L;
    QTest::newRow("server that is an address") << u"a@b.c"_s << 25L;
    QTest::newRow("server with NUL") << u"127.0.0.1\0x"_s << 25L;
    QTest::newRow("port 0") << u"127.0.0.1"_s << 0L;
    QTest::newRow("negative port") << u"127.0.0.1"_s << -25L;
    QTest::newRow("port 65536") << u"127.0.0.1"_s << 65536L;
    QTest::newRow("huge port") << u"127.0.0.1"_s << (1L << 40) + 25;
}

void TestSmtpCalls::badServersAndPortsAreErrorsWithoutAConnection()
{
    QFETCH(QString, server);
    QFETCH(long, port);
    Client client;
    waitFor(client.Transport.Connect(server, port, 0, 0));
    QCOMPARE(client.Transport.State(), 0);
    QCOMPARE(client.Errors.size(), 1);
    QCOMPARE(client.Errors.first(), client.Errors.first().simplified());
    QVERIFY(!client.send(text));
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
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(client.Errors.first().contains(u"550 no"));
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
    QCOMPARE(server.Lines.mid(2), (QList<QByteArray>{"RCPT TO:<to@example.org>", "RCPT TO:<cc@example.org>",
                                                     "RCPT TO:<bcc@example.org>", "DATA"}));
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
