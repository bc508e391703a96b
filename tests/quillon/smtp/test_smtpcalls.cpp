#include "quillon/fault.h"
#include "quillon/mail/smtptls.h"
#include "quillon/smtp/client.h"
#include "support/certificates.h"
#include "support/scriptedserver.h"

#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ScriptedServer;

namespace {
constexpr int shortSilence = 150;
constexpr int shortGrace = 30;
const QByteArray text = "Subject: x\r\n\r\nhello\r\n";
} // namespace

/// What the calls promise their caller: states, results, one error each, and no harm from what a nested loop lets in.
class TestSmtpCalls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void anEmptyPortFieldIsPortZeroAndAnError();
    void badServersAndPortsAreErrorsWithoutAConnection_data();
    void badServersAndPortsAreErrorsWithoutAConnection();
    void aRefusedConnectionIsAnError();
    void anUnknownHostIsAnError();

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

    void sendAfterAFailedConnectIsFalseWithoutASecondError();
    void sendWithoutConnectIsAnError();
    void sendAfterQuitIsAnError();
    void sendAfterABrokenSendIsAnError();
    void oneResultForOneSend();
    void aTransportCanConnectAgain();

    void quitDoesNotWaitForAHungPeer();
    void quitSendsItsCommandOnAnIdleSession();
    void quitTwiceAndWithoutConnectIsHarmless();
    void aSecondSendWithinASendIsFalse();
    void connectAndAcceptedWithinASendAreHarmless();
    void quitWithinSendUnwindsItFalse_data();
    void quitWithinSendUnwindsItFalse();
    void destructionWithinSendUnwindsItFalse_data();
    void destructionWithinSendUnwindsItFalse();
    void quitWithinConnectUnwindsIt();
    void destructionWithinConnectUnwindsIt();
    void destructionWithinProgressIsHarmless();
    void destructionWithinErrorIsHarmless();
    void theEventLoopKeepsRunningWithinACall();
    void theProgramsExitUnwindsACall();

    void aMessageGoesToToCcAndBcc();
    void aMessageThatCannotBeEncodedIsAnErrorOfSend();

private:
    testsupport::Certificates m_certificates;
};

namespace {

// Runs the action at the moment when the server has got the line, with the client's call on the stack.
void atLine(ScriptedServer &server, const QByteArray &line, const std::function<void()> &action)
{
    server.Responder = [&server, line, action](const QByteArray &got) -> std::optional<QByteArray> {
        if (!got.startsWith(line)) {
            return std::nullopt;
        }
        QTimer::singleShot(0, &server, action);
        return QByteArray();
    };
}

void addMoments()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("MAIL") << QByteArray("MAIL");
    QTest::newRow("RCPT") << QByteArray("RCPT");
    QTest::newRow("DATA") << QByteArray("DATA");
    QTest::newRow("end") << QByteArray(".");
}

} // namespace

void TestSmtpCalls::anEmptyPortFieldIsPortZeroAndAnError()
{
    Client client;
    client.Transport.Connect(u"127.0.0.1"_s, QString().toLong(), 0, 0);
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
    client.Transport.Connect(server, port, 0, 0);
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

void TestSmtpCalls::aSilentPeerLeavesStateAtTwoAfterTheGrace()
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

void TestSmtpCalls::aSilentPeerBehindTlsLeavesStateAtTwoAfterTheGrace()
{
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    client.Transport.Security = MailTransport::Ssl;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpCalls::sendWaitsForALateGreeting()
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

void TestSmtpCalls::acceptedWaitsForALateGreeting()
{
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QTimer::singleShot(0, &server, [&server] { server.say("220 here at last\r\n"); });
    QVERIFY(client.Transport.Accepted());
    QVERIFY(server.heard("EHLO"));
}

void TestSmtpCalls::acceptedIsFalseForAPeerThatStaysSilent()
{
    MailTransport::setTimeouts(30'000, shortSilence, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.Transport.Accepted());
    QCOMPARE(client.Transport.State(), 0);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpCalls::sendIsFalseForAPeerThatStaysSilent()
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

void TestSmtpCalls::aGreetingThatHasBegunIsWaitedFor()
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

void TestSmtpCalls::acceptedIsTrueOnlyForAFinishedSession()
{
    Client never;
    QVERIFY(!never.Transport.Accepted());
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Transport.Accepted());
    QVERIFY(client.Transport.Accepted());
    client.Transport.Quit();
    QVERIFY(!client.Transport.Accepted());
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpCalls::aLossBetweenTwoCallsIsToldByTheNext()
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

void TestSmtpCalls::aLossBetweenConnectAndQuitIsNotTold()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    server.hangUp();
    QTRY_COMPARE(client.Transport.State(), 0);
    client.Transport.Quit();
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpCalls::sendAfterAFailedConnectIsFalseWithoutASecondError()
{
    ScriptedServer server;
    server.Greeting = "554 go away\r\n";
    Client client;
    QVERIFY(client.connectTo(server.port()) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(!client.send(text));
    QVERIFY(!client.Transport.Send(MailMessage()));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpCalls::sendWithoutConnectIsAnError()
{
    Client client;
    QVERIFY(!client.Transport.Send(MailMessage()));
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

void TestSmtpCalls::aSecondSendWithinASendIsFalse()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    bool inner = true;
    const int faults = faultCount();
    atLine(server, "RCPT", [&] {
        inner = client.send(text);
        server.say("250 ok\r\n");
    });
    QVERIFY(client.send(text));
    QVERIFY(!inner);
    QCOMPARE(faultCount(), faults + 1);
    QCOMPARE(server.Mails.size(), 1);
    QCOMPARE(server.count("MAIL"), 1);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpCalls::connectAndAcceptedWithinASendAreHarmless()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    bool accepted = true;
    atLine(server, "RCPT", [&] {
        client.Transport.Connect(u"127.0.0.1"_s, server.port(), 0, 0);
        accepted = client.Transport.Accepted();
        server.say("250 ok\r\n");
    });
    QVERIFY(client.send(text));
    QVERIFY(!accepted);
    QCOMPARE(server.Connections, 1);
}

void TestSmtpCalls::quitWithinSendUnwindsItFalse_data()
{
    addMoments();
}

void TestSmtpCalls::quitWithinSendUnwindsItFalse()
{
    QFETCH(QByteArray, line);
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    atLine(server, line, [&] { client.Transport.Quit(); });
    QVERIFY(!client.send(text));
    QCOMPARE(client.Transport.State(), 0);
    QVERIFY(client.Errors.isEmpty());
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpCalls::destructionWithinSendUnwindsItFalse_data()
{
    addMoments();
}

void TestSmtpCalls::destructionWithinSendUnwindsItFalse()
{
    QFETCH(QByteArray, line);
    ScriptedServer server;
    auto transport = std::make_unique<MailTransport>();
    transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    QCOMPARE(transport->State(), 2);
    atLine(server, line, [&] { transport.reset(); });
    QVERIFY(!transport->SendEncoded(Client::mailOf(text), u"a@b.c"_s, {u"d@e.f"_s}));
    QVERIFY(!transport);
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpCalls::quitWithinConnectUnwindsIt()
{
    ScriptedServer server;
    Client client;
    atLine(server, "EHLO", [&] { client.Transport.Quit(); });
    QCOMPARE(client.connectTo(server.port()), 0);
    QVERIFY(client.Errors.isEmpty());
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpCalls::destructionWithinConnectUnwindsIt()
{
    ScriptedServer server;
    auto transport = std::make_unique<MailTransport>();
    atLine(server, "EHLO", [&] { transport.reset(); });
    transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    QVERIFY(!transport);
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpCalls::destructionWithinProgressIsHarmless()
{
    // Once for each report that a session makes, from the first to the last.
    for (int victim = 1;; ++victim) {
        ScriptedServer server;
        auto transport = std::make_unique<MailTransport>();
        int count = 0;
        connect(transport.get(), &MailTransport::Progress, &server, [&] {
            if (++count == victim) {
                transport.reset();
            }
        });
        transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0);
        if (transport) {
            const bool sent = transport->SendEncoded(Client::mailOf(text), u"a@b.c"_s, {u"d@e.f"_s});
            QVERIFY(transport || !sent);
        }
        if (transport) {
            QVERIFY(victim > 5);
            break;
        }
    }
}

void TestSmtpCalls::destructionWithinErrorIsHarmless()
{
    ScriptedServer server;
    server.answer("RCPT", "550 no\r\n");
    auto transport = std::make_unique<MailTransport>();
    connect(transport.get(), &MailTransport::Error, &server, [&] { transport.reset(); });
    transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    QCOMPARE(transport->State(), 2);
    QVERIFY(!transport->SendEncoded(Client::mailOf(text), u"a@b.c"_s, {u"d@e.f"_s}));
    QVERIFY(!transport);
}

void TestSmtpCalls::theEventLoopKeepsRunningWithinACall()
{
    // The server answers only after the program's own timer has fired a hundred times.
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &server, [&] {
        if (++ticks == 100) {
            server.say("250 ok\r\n");
        }
    });
    atLine(server, ".", [&timer] { timer.start(0); });
    QVERIFY(client.send(text));
    QVERIFY(ticks >= 100);
}

void TestSmtpCalls::theProgramsExitUnwindsACall()
{
    ScriptedServer server;
    Client client;
    bool sent = true;
    atLine(server, "RCPT", [] { QCoreApplication::quit(); });
    QTimer::singleShot(0, &server, [&] {
        client.connectTo(server.port());
        sent = client.send(text);
    });
    QCoreApplication::exec();
    QVERIFY(!sent);
    QCOMPARE(client.Transport.State(), 0);
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
    QVERIFY2(client.Transport.Send(message), qPrintable(client.Errors.join(u'\n')));
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
    QVERIFY(!client.Transport.Send(message));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"gone.txt"), qPrintable(client.Errors.first()));
    QVERIFY(!server.heard("MAIL"));
}

QTEST_GUILESS_MAIN(TestSmtpCalls)
#include "test_smtpcalls.moc"
