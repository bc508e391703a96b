#include "quillon/smtp/client.h"
#include "support/scriptedserver.h"

#include <QTest>
#include <QTimer>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ScriptedServer;

namespace {
constexpr int shortSilence = 150;
constexpr int shortGrace = 30;
const QByteArray text = "Subject: x\r\n\r\nhello\r\n";
} // namespace

/// Peers that greet late, slowly or never, and those that are lost between two calls.
class TestSmtpGreeting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }

    void aSilentPeerLeavesStateAtTwoAfterTheGrace();
    void aSilentPeerBehindTlsLeavesStateAtTwoAfterTheGrace();
    void sendWaitsForALateGreeting();
    void acceptedWaitsForALateGreeting();
    void acceptedIsFalseForAPeerThatStaysSilent();
    void sendIsFalseForAPeerThatStaysSilent();
    void aGreetingThatHasBegunIsWaitedFor();
    void acceptedIsTrueOnlyForAFinishedSession();
    void aLossBetweenTwoCallsIsToldByTheNext();
    void aLossBetweenConnectAndQuitIsNotTold();
};

void TestSmtpGreeting::aSilentPeerLeavesStateAtTwoAfterTheGrace()
{
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Errors.isEmpty());
    client.Transport.Quit();
    QCOMPARE(client.Transport.State(), 0);
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(server.Lines.isEmpty());
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpGreeting::aSilentPeerBehindTlsLeavesStateAtTwoAfterTheGrace()
{
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    client.Transport.Security = MailTransport::Ssl;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpGreeting::sendWaitsForALateGreeting()
{
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QTimer::singleShot(0, &server, [&server] { server.say("220 here at last\r\n"); });
    QVERIFY(client.send(text));
    QCOMPARE(server.Mails.size(), 1);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpGreeting::acceptedWaitsForALateGreeting()
{
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QTimer::singleShot(0, &server, [&server] { server.say("220 here at last\r\n"); });
    QVERIFY(client.accepted());
    QVERIFY(server.heard("EHLO"));
}

void TestSmtpGreeting::acceptedIsFalseForAPeerThatStaysSilent()
{
    MailTransport::setTimeouts(30'000, shortSilence, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.accepted());
    QCOMPARE(client.Transport.State(), 0);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpGreeting::sendIsFalseForAPeerThatStaysSilent()
{
    MailTransport::setTimeouts(30'000, shortSilence, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"greeting"), qPrintable(client.Errors.first()));
}

void TestSmtpGreeting::aGreetingThatHasBegunIsWaitedFor()
{
    // Some servers show the first line of their greeting and see whether the client is patient.
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "220-wait a moment\r\n";
    QTimer::singleShot(shortGrace * 3, &server, [&server] { server.say("220 now\r\n"); });
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(server.heard("EHLO"));
}

void TestSmtpGreeting::acceptedIsTrueOnlyForAFinishedSession()
{
    Client never;
    QVERIFY(!never.accepted());
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.accepted());
    QVERIFY(client.accepted());
    client.Transport.Quit();
    QVERIFY(!client.accepted());
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpGreeting::aLossBetweenTwoCallsIsToldByTheNext()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    server.say("421 4.4.2 idle for too long\r\n");
    server.hangUp();
    QTRY_COMPARE(client.Transport.State(), 0);
    QVERIFY(client.Errors.isEmpty());
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"421 4.4.2 idle for too long"), qPrintable(client.Errors.first()));
}

void TestSmtpGreeting::aLossBetweenConnectAndQuitIsNotTold()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    server.hangUp();
    QTRY_COMPARE(client.Transport.State(), 0);
    client.Transport.Quit();
    QVERIFY(client.Errors.isEmpty());
}

QTEST_GUILESS_MAIN(TestSmtpGreeting)
#include "test_smtpgreeting.moc"
