#include "quillon/smtp/dialogue.h"

using namespace dialogue;

/// A mail or a recipient that is refused: nobody gets the mail, and the session is left in order.
class TestSmtpRefusals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }

    void oneRefusedRecipientMeansThatNobodyGetsTheMail();
    void oneRefusedRecipientMeansThatNobodyGetsTheMailWithPipelining();
    void dataAcceptedAfterARefusedRecipientEndsTheConnection();
    void afterARefusalTheNextMailGoesOverTheSameConnection();
    void aRefusalAfterTheEndLeavesTheSessionStanding();

    void aRefusalInTheMiddleOfTheMailIsSeen();
    void aRefusalInTheMiddleOfTheMailIsSeenThoughTheServerCloses();

    void aMailBeyondSizeIsNotBegun();
    void aBadAddressIsNotBegun();
};

void TestSmtpRefusals::oneRefusedRecipientMeansThatNobodyGetsTheMail()
{
    ScriptedServer server;
    server.answer("RCPT TO:<bad@b.c>", "550 5.1.1 unknown\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {u"good@b.c"_s, u"bad@b.c"_s, u"late@b.c"_s}));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"bad@b.c") && client.Errors.first().contains(u"550 5.1.1 unknown"),
             qPrintable(client.Errors.first()));
    QTRY_VERIFY(server.heard("RSET"));
    QVERIFY(!server.heard("DATA"));
    QVERIFY(server.Mails.isEmpty() && server.BodyBegun.isEmpty());
}

void TestSmtpRefusals::oneRefusedRecipientMeansThatNobodyGetsTheMailWithPipelining()
{
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    server.answer("RCPT TO:<bad@b.c>", "550 5.1.1 unknown\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {u"good@b.c"_s, u"bad@b.c"_s, u"late@b.c"_s}));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(client.Errors.first().contains(u"bad@b.c"));
    QTRY_VERIFY(server.heard("RSET"));
    QVERIFY(!server.heard("DATA"));
}

void TestSmtpRefusals::dataAcceptedAfterARefusedRecipientEndsTheConnection()
{
    // RFC 2920 warns of servers that accept DATA though they have refused the only recipient.
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    server.answer("RCPT", "550 5.1.1 unknown\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {u"bad@b.c"_s}));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(client.Errors.first().contains(u"bad@b.c"));
    QVERIFY(client.Transport.State() != 2);
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(server.heard("DATA"));
    QVERIFY(server.Mails.isEmpty() && server.BodyBegun.isEmpty());
}

void TestSmtpRefusals::afterARefusalTheNextMailGoesOverTheSameConnection()
{
    for (const QByteArray &offer : {QByteArray("PIPELINING"), QByteArray("HELP")}) {
        ScriptedServer server;
        server.Offers = {offer};
        server.answer("RCPT TO:<bad@b.c>", "550 5.1.1 unknown\r\n");
        if (offer == "PIPELINING") {
            bool refused = false;
            server.Responder = [refused](const QByteArray &line) mutable -> std::optional<QByteArray> {
                if (line.startsWith("RCPT")) {
                    refused = line.contains("bad");
                }
                return line == "DATA" && refused ? std::optional<QByteArray>("503 no recipients\r\n") : std::nullopt;
            };
        }
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(!client.send(text, {u"bad@b.c"_s}));
        QCOMPARE(client.Transport.State(), 2);
        QVERIFY(client.send(text, {u"good@b.c"_s}));
        QCOMPARE(server.Mails.size(), 1);
        QCOMPARE(server.Connections, 1);
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY(server.Lines.indexOf("RSET") < server.Lines.indexOf("RCPT TO:<good@b.c>"));
    }
}

void TestSmtpRefusals::aRefusalAfterTheEndLeavesTheSessionStanding()
{
    ScriptedServer server;
    server.answer(".", "554 5.7.1 spam\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    server.answer(".", "250 fine\r\n");
    QVERIFY(client.send(text));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpRefusals::aRefusalInTheMiddleOfTheMailIsSeen()
{
    ScriptedServer server;
    server.InterruptAfter = 100'000;
    server.Interruption = "552 5.2.2 Mailbox full\r\n";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(largeText()));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"552 5.2.2 Mailbox full"), qPrintable(client.Errors.first()));
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(server.Mails.isEmpty());
}

void TestSmtpRefusals::aRefusalInTheMiddleOfTheMailIsSeenThoughTheServerCloses()
{
    ScriptedServer server;
    server.InterruptAfter = 100'000;
    server.Interruption = "552 5.2.2 Mailbox full\r\n";
    server.CloseAfterInterruption = true;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(largeText()));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"552 5.2.2 Mailbox full"), qPrintable(client.Errors.first()));
}

void TestSmtpRefusals::aMailBeyondSizeIsNotBegun()
{
    ScriptedServer server;
    server.Offers = {"SIZE 20"};
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(client.Errors.first().contains(u"20 octets"));
    QVERIFY(client.send("short\r\n"));
    QCOMPARE(server.Lines.at(1), "MAIL FROM:<from@example.org> SIZE=7");
    QVERIFY(!server.heard("RSET"));
}

void TestSmtpRefusals::aBadAddressIsNotBegun()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {u"good@b.c"_s, u"a@b.c\r\nDATA"_s}));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(client.send(text, {u"good@b.c"_s}));
    QVERIFY(server.Lines.at(1).startsWith("MAIL"));
    QCOMPARE(server.count("DATA"), 1);
}

QTEST_GUILESS_MAIN(TestSmtpRefusals)
#include "test_smtprefusals.moc"
