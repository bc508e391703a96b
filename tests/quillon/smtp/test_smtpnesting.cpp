#include "quillon/fault.h"
#include "quillon/smtp/client.h"
#include "support/scriptedserver.h"

#include <QTest>
#include <QTimer>

#include <memory>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ScriptedServer;

namespace {
const QByteArray text = "Subject: x\r\n\r\nhello\r\n";
} // namespace

/// What may come while a call is under way: other calls, the client's end, a dialog. None does harm.
class TestSmtpNesting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }

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
    void aCallGoesOnInALoopOfSomebodyElse();
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

void TestSmtpNesting::aSecondSendWithinASendIsFalse()
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

void TestSmtpNesting::connectAndAcceptedWithinASendAreHarmless()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    bool accepted = true;
    const int faults = faultCount();
    atLine(server, "RCPT", [&] {
        waitFor(client.Transport.Connect(u"127.0.0.1"_s, server.port(), 0, 0));
        accepted = client.accepted();
        server.say("250 ok\r\n");
    });
    QVERIFY(client.send(text));
    QVERIFY(!accepted);
    QCOMPARE(faultCount(), faults + 2);
    QCOMPARE(server.Connections, 1);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpNesting::quitWithinSendUnwindsItFalse_data()
{
    addMoments();
}

void TestSmtpNesting::quitWithinSendUnwindsItFalse()
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

void TestSmtpNesting::destructionWithinSendUnwindsItFalse_data()
{
    addMoments();
}

void TestSmtpNesting::destructionWithinSendUnwindsItFalse()
{
    QFETCH(QByteArray, line);
    ScriptedServer server;
    auto transport = std::make_unique<MailTransport>();
    waitFor(transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0));
    QCOMPARE(transport->State(), 2);
    atLine(server, line, [&] { transport.reset(); });
    QVERIFY(!waitFor(transport->SendEncoded(Client::mailOf(text), u"a@b.c"_s, {u"d@e.f"_s})));
    QVERIFY(!transport);
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpNesting::quitWithinConnectUnwindsIt()
{
    ScriptedServer server;
    Client client;
    atLine(server, "EHLO", [&] { client.Transport.Quit(); });
    QCOMPARE(client.connectTo(server.port()), 0);
    QVERIFY(client.Errors.isEmpty());
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpNesting::destructionWithinConnectUnwindsIt()
{
    ScriptedServer server;
    auto transport = std::make_unique<MailTransport>();
    atLine(server, "EHLO", [&] { transport.reset(); });
    waitFor(transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0));
    QVERIFY(!transport);
    QTRY_COMPARE(server.Ended, 1);
}

void TestSmtpNesting::destructionWithinProgressIsHarmless()
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
        waitFor(transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0));
        if (transport) {
            const bool sent = waitFor(transport->SendEncoded(Client::mailOf(text), u"a@b.c"_s, {u"d@e.f"_s}));
            QVERIFY(transport || !sent);
        }
        if (transport) {
            QVERIFY(victim > 5);
            break;
        }
    }
}

void TestSmtpNesting::destructionWithinErrorIsHarmless()
{
    ScriptedServer server;
    server.answer("RCPT", "550 no\r\n");
    auto transport = std::make_unique<MailTransport>();
    connect(transport.get(), &MailTransport::Error, &server, [&] { transport.reset(); });
    waitFor(transport->Connect(u"127.0.0.1"_s, server.port(), 0, 0));
    QCOMPARE(transport->State(), 2);
    QVERIFY(!waitFor(transport->SendEncoded(Client::mailOf(text), u"a@b.c"_s, {u"d@e.f"_s})));
    QVERIFY(!transport);
}

void TestSmtpNesting::theEventLoopKeepsRunningWithinACall()
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

void TestSmtpNesting::aCallGoesOnInALoopOfSomebodyElse()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    const Pending<bool> sending =
        client.Transport.SendEncoded(Client::mailOf(text), u"a@b.c"_s, QStringList{u"d@e.f"_s});
    QVERIFY(!sending.isSettled());
    QEventLoop dialog; // as a modal dialog has one, which closes when the mail has gone
    QTimer watch;
    connect(&watch, &QTimer::timeout, &dialog, [&] {
        if (sending.isSettled()) {
            dialog.quit();
        }
    });
    watch.start(0);
    dialog.exec();
    QCOMPARE(server.Mails.size(), 1);
}

QTEST_GUILESS_MAIN(TestSmtpNesting)
#include "test_smtpnesting.moc"
