#include "quillon/smtp/dialogue.h"

#include <QTimer>

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

    void aRefusedResetEndsTheSession_data();
    void aRefusedResetEndsTheSession();
    void theNextMailWaitsForTheAnswerToReset();
    void aSecondRefusalOfOneMailIsNotTold();
    void theFirstOfSeveralRefusalsIsTold();
    void afterARefusalNobodyElseIsNamed();

    void aRefusalInTheMiddleOfTheMailIsSeen_data();
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

void TestSmtpRefusals::aRefusedResetEndsTheSession_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("atOnce"); // the next mail comes before the answer
    QTest::newRow("500 before the next mail") << QByteArray("500 what") << false;
    QTest::newRow("500 within the next mail") << QByteArray("500 what") << true;
    QTest::newRow("354 before the next mail") << QByteArray("354 go") << false;
    QTest::newRow("421 within the next mail") << QByteArray("421 bye") << true;
}

void TestSmtpRefusals::aRefusedResetEndsTheSession()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, atOnce);
    ScriptedServer server;
    server.answer("RCPT", "550 no\r\n");
    server.answer("RSET", atOnce ? QByteArray() : reply + "\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    if (atOnce) {
        QTRY_VERIFY(server.heard("RSET"));
        QCOMPARE(client.Transport.State(), 2);
        QTimer::singleShot(0, &server, [&] { server.say(reply + "\r\n"); });
    } else {
        QTRY_COMPARE(client.Transport.State(), 0);
        QCOMPARE(client.Errors.size(), 1);
    }
    QVERIFY(!client.send(text));
    QCOMPARE(client.Transport.State(), 0);
    QCOMPARE(client.Errors.mid(1),
             QStringList{u"Taking the message back (RSET) failed: the server answered “%1”."_s.arg(
                 QString::fromLatin1(reply))});
    QCOMPARE(client.Codes.last(), reply.left(3).toInt());
    QTRY_COMPARE(server.Ended, 1);
    QCOMPARE(server.count("MAIL"), 1);
}

void TestSmtpRefusals::theNextMailWaitsForTheAnswerToReset()
{
    ScriptedServer server;
    server.answer("RCPT TO:<bad@b.c>", "550 no\r\n");
    server.answer("RSET", "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {u"bad@b.c"_s}));
    QTRY_VERIFY(server.heard("RSET"));
    const Pending<bool> sending =
        client.Transport.SendEncoded(Client::mailOf(text), u"a@b.c"_s, QStringList{u"d@e.f"_s});
    waitFor(nextTurn());
    QCOMPARE(server.count("MAIL"), 1);
    server.say("250 forgotten\r\n");
    QTRY_VERIFY(sending.isSettled());
    QCOMPARE(server.count("MAIL"), 2);
    QCOMPARE(server.Mails.size(), 1);
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpRefusals::aSecondRefusalOfOneMailIsNotTold()
{
    // What RSET is answered is told by the next call, if there is one, and never in place of the mail's own refusal.
    ScriptedServer server;
    server.answer("RCPT", "550 the reason\r\n");
    server.answer("RSET", "502 no such thing\r\n");
    server.closeAt("RSET");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QTRY_COMPARE(client.Transport.State(), 0);
    client.Transport.Quit();
    QCOMPARE(client.Errors,
             QStringList{u"The server refused the recipient to@example.org (RCPT TO): “550 the reason”."_s});
}

void TestSmtpRefusals::theFirstOfSeveralRefusalsIsTold()
{
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    server.answer("RCPT TO:<bad@b.c>", "550 first\r\n");
    server.answer("RCPT TO:<worse@b.c>", "551 second\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {u"good@b.c"_s, u"bad@b.c"_s, u"worse@b.c"_s}));
    QCOMPARE(client.Errors, QStringList{u"The server refused the recipient bad@b.c (RCPT TO): “550 first”."_s});
    QCOMPARE(client.Codes, QList<int>{550});
    QTRY_COMPARE(server.count("RSET"), 1);
    QCOMPARE(client.Transport.State(), 2);
}

void TestSmtpRefusals::afterARefusalNobodyElseIsNamed()
{
    for (const bool pipelining : {false, true}) {
        ScriptedServer server;
        server.Offers = {pipelining ? QByteArray("PIPELINING") : QByteArray("HELP")};
        server.answer("RCPT TO:<r0@b.c>", "550 no\r\n");
        QStringList to;
        for (int i = 0; i < 300; ++i) {
            to += u"r%1@b.c"_s.arg(i);
        }
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(!client.send(text, to));
        QTRY_COMPARE(server.count("RSET"), 1);
        // Those that were on their way already are answered before.
        QCOMPARE(server.count("RCPT"), pipelining ? 100 : 1);
        QVERIFY(!server.heard("DATA"));
        QVERIFY(client.accepted());
    }
}

void TestSmtpRefusals::aRefusalInTheMiddleOfTheMailIsSeen_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("for good") << QByteArray("552 5.2.2 Mailbox full");
    QTest::newRow("for now") << QByteArray("452 4.3.1 No room");
    QTest::newRow("the server closes") << QByteArray("421 4.3.2 Closing");
}

void TestSmtpRefusals::aRefusalInTheMiddleOfTheMailIsSeen()
{
    QFETCH(QByteArray, answer);
    ScriptedServer server;
    server.InterruptAfter = 100'000;
    server.Interruption = answer + "\r\n";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(largeText()));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(QString::fromLatin1(answer)) &&
                 client.Errors.first().contains(u"the server has refused the message while it was sent"),
             qPrintable(client.Errors.first()));
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
    QVERIFY2(client.Errors.first().contains(u"552 5.2.2 Mailbox full") &&
                 client.Errors.first().contains(u"the server has refused the message while it was sent"),
             qPrintable(client.Errors.first()));
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
