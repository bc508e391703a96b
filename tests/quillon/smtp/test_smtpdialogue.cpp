#include "quillon/mail/smtptls.h"
#include "quillon/smtp/client.h"
#include "support/certificates.h"
#include "support/scriptedserver.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ScriptedServer;

namespace {
constexpr int shortSilence = 150;
constexpr int shortGrace = 40;
const QByteArray text = "Subject: x\r\n\r\nhello\r\n.\r\nend\r\n";
const QByteArray textOnWire = "Subject: x\r\n\r\nhello\r\n..\r\nend\r\n.\r\n";
} // namespace

/// What goes over the wire, octet by octet, against a server that does what the test says.
class TestSmtpDialogue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void aMailGoesStepByStep();
    void pipelinedCommandsGoTogether();
    void severalRecipientsHoldDataBackUntilAllAreAccepted();
    void aThousandPipelinedRecipientsAllGetTheMail();
    void everyReplyCutAtEveryPlaceIsUnderstood();
    void multiLineRepliesEverywhereAreUnderstood();
    void blankLinesBetweenRepliesArePassedOver();
    void heloFollowsWhenEhloIsUnknown();
    void ehloNamesAFullHostOrAnAddress();

    void aRefusalIsReportedAtEachStage_data();
    void aRefusalIsReportedAtEachStage();
    void aRefusalOfConnectClosesAndIsReportedOnce_data();
    void aRefusalOfConnectClosesAndIsReportedOnce();
    void closingIsReportedAtEachStage_data();
    void closingIsReportedAtEachStage();
    void silenceIsReportedAtEachStage_data();
    void silenceIsReportedAtEachStage();
    void garbageIsReportedAtEachStage_data();
    void garbageIsReportedAtEachStage();
    void anEndlessLineIsReported();

    void oneRefusedRecipientMeansThatNobodyGetsTheMail();
    void oneRefusedRecipientMeansThatNobodyGetsTheMailWithPipelining();
    void dataAcceptedAfterARefusedRecipientEndsTheConnection();
    void afterARefusalTheNextMailGoesOverTheSameConnection();
    void aRefusalAfterTheEndLeavesTheSessionStanding();

    void aRefusalInTheMiddleOfTheMailIsSeen();
    void aRefusalInTheMiddleOfTheMailIsSeenThoughTheServerCloses();
    void successInTheMiddleOfTheMailIsNone();
    void successBeforeTheMailHasBegunIsNone();
    void octetsBetweenTheEndAndTheReplyAreNoSuccess();
    void aSecondReplyAfterTheEndSpoilsTheNextMailOnly();
    void aReplyThatWasNotAskedForEndsTheSession_data();
    void aReplyThatWasNotAskedForEndsTheSession();

    void withoutStartTlsOfferedNothingGoesInTheClear();
    void startTlsRefusedIsAnError();
    void octetsBehindTheStartTlsReplyAreAnError();
    void whatWasOfferedBeforeTlsIsForgotten();
    void aUserWithoutAuthOfferedIsAnError();
    void aUserWithOnlyUnknownMechanismsIsAnError();
    void aRefusedLoginTriesNoOtherMechanism();
    void aLoginGoesWithoutShowingItsWords();
    void aServerThatEchoesTheSecretsIsCensored();

    void aFileThatVanishesEndsTheConnectionWithoutTheFinalDot();
    void aFileThatHasGrownEndsTheConnectionWithoutTheFinalDot();
    void aMailBeyondSizeIsNotBegun();
    void aBadAddressIsNotBegun();
    void progressNamesTheStagesThenThePercentage();

private:
    testsupport::Certificates m_certificates;
};

void TestSmtpDialogue::aMailGoesStepByStep()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Transport.Accepted());
    QVERIFY(client.send(text, {u"a@b.c"_s, u"d@e.f"_s}));
    QCOMPARE(server.Lines.mid(1),
             (QList<QByteArray>{"MAIL FROM:<from@example.org>", "RCPT TO:<a@b.c>", "RCPT TO:<d@e.f>", "DATA"}));
    QCOMPARE(server.Mails, QList<QByteArray>{textOnWire});
    client.Transport.Quit();
    QCOMPARE(client.Transport.State(), 0);
    QTRY_COMPARE(server.Lines.last(), "QUIT");
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpDialogue::pipelinedCommandsGoTogether()
{
    // The server is silent until it has DATA: only a client that does not wait for answers gets so far.
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    server.answer("MAIL", "");
    server.answer("RCPT", "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    server.Responder = [&server](const QByteArray &line) -> std::optional<QByteArray> {
        if (line == "DATA") {
            server.say("250 ok\r\n250 ok\r\n");
        }
        return std::nullopt;
    };
    QVERIFY(client.send(text));
    QCOMPARE(server.Mails, QList<QByteArray>{textOnWire});
}

void TestSmtpDialogue::severalRecipientsHoldDataBackUntilAllAreAccepted()
{
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    server.answer("RCPT TO:<a@b.c>", "");
    bool dataCameEarly = false;
    server.Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (line == "RCPT TO:<d@e.f>") {
            // Both have come without waiting; what has come by the next turn was sent along.
            QTimer::singleShot(0, &server, [&] {
                dataCameEarly = server.heard("DATA");
                server.say("250 first\r\n250 second\r\n");
            });
            return QByteArray();
        }
        return std::nullopt;
    };
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text, {u"a@b.c"_s, u"d@e.f"_s}));
    QVERIFY(!dataCameEarly);
    QCOMPARE(server.Mails.size(), 1);
}

void TestSmtpDialogue::aThousandPipelinedRecipientsAllGetTheMail()
{
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    QStringList recipients;
    for (int i = 0; i < 1000; ++i) {
        recipients += u"r%1@example.org"_s.arg(i);
    }
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text, recipients));
    QCOMPARE(server.Lines.size(), 1 + 1 + 1000 + 1);
    QCOMPARE(server.Mails.size(), 1);
}

void TestSmtpDialogue::everyReplyCutAtEveryPlaceIsUnderstood()
{
    for (int at = 1; at < 40; ++at) {
        ScriptedServer server;
        server.CutAt = at;
        server.Offers = {"PIPELINING", "SIZE 1000000"};
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
        QCOMPARE(server.Mails.size(), 1);
    }
}

void TestSmtpDialogue::multiLineRepliesEverywhereAreUnderstood()
{
    ScriptedServer server;
    server.Greeting = "220-one\r\n220-two\r\n220 three\r\n";
    server.answer("MAIL", "250-a\r\n250 b\r\n");
    server.answer("RCPT", "250-a\r\n250-b\r\n250 c\r\n");
    server.answer("DATA", "354-a\r\n354 b\r\n");
    server.answer(".", "250-a\r\n250 b\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text));
    QCOMPARE(server.Mails, QList<QByteArray>{textOnWire});
}

void TestSmtpDialogue::blankLinesBetweenRepliesArePassedOver()
{
    ScriptedServer server;
    server.Greeting = "\r\n220 ready\r\n\r\n";
    server.answer("MAIL", "\r\n250 ok\r\n\r\n");
    server.answer("DATA", "354 ok\r\n\r\n");
    server.answer(".", "\r\n\r\n250 ok\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text));
}

void TestSmtpDialogue::heloFollowsWhenEhloIsUnknown()
{
    ScriptedServer server;
    server.answer("EHLO", "502 what?\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text));
    QVERIFY(server.Lines.at(1).startsWith("HELO "));
    QCOMPARE(server.Lines.at(2), "MAIL FROM:<from@example.org>");
}

void TestSmtpDialogue::ehloNamesAFullHostOrAnAddress()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    const QByteArray name = server.Lines.first().mid(5);
    QVERIFY2(name == "[127.0.0.1]" || (name.contains('.') && !name.contains('[') && !name.contains(' ')),
             name.constData());
}

namespace {

// The commands of a session with login, by which the stages are known.
void addStages(bool withConnect, bool withSend)
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QString>("stage");
    if (withConnect) {
        QTest::newRow("greeting") << QByteArray() << u"greeting"_s;
        QTest::newRow("EHLO") << QByteArray("EHLO") << u"Greeting 127.0.0.1"_s;
        QTest::newRow("AUTH") << QByteArray("AUTH") << u"AUTH PLAIN"_s;
    }
    if (withSend) {
        QTest::newRow("MAIL") << QByteArray("MAIL") << u"MAIL FROM"_s;
        QTest::newRow("RCPT") << QByteArray("RCPT") << u"to@example.org (RCPT TO)"_s;
        QTest::newRow("DATA") << QByteArray("DATA") << u"DATA"_s;
        QTest::newRow("end") << QByteArray(".") << QString();
    }
}

// Sets the server so that it gives `reply` at the stage.
void setReply(ScriptedServer &server, const QByteArray &command, const QByteArray &reply)
{
    server.Offers = {"AUTH PLAIN"};
    if (command.isEmpty()) {
        server.Greeting = reply;
    } else {
        server.answer(command, reply);
        if (command == "EHLO") {
            server.answer("HELO", reply);
        }
    }
}

// Connects with a login and sends; whether it was sent.
bool runSession(Client &client, const ScriptedServer &server)
{
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"geheim"_s;
    client.connectTo(server.port());
    return client.send(text);
}

} // namespace

void TestSmtpDialogue::aRefusalIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpDialogue::aRefusalIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    QFETCH(QString, stage);
    for (const QByteArray &code : {QByteArray("554"), QByteArray("451"), QByteArray("421")}) {
        ScriptedServer server;
        setReply(server, command, code + "-5.7.1 Not\r\n" + code + " today\r\n");
        Client client;
        QVERIFY(!runSession(client, server));
        QCOMPARE(client.Errors.size(), 1);
        const QString error = client.Errors.first();
        QVERIFY2(error.contains(stage), qPrintable(error));
        QVERIFY2(error.contains(QString::fromLatin1(code) + u" 5.7.1 Not today"_s), qPrintable(error));
        QVERIFY2(error.endsWith(u'.') && !error.contains(u'\n'), qPrintable(error));
        QVERIFY2(!error.contains(u"geheim"), qPrintable(error));
        QCOMPARE(client.Codes.first(), code.toInt());
        QVERIFY(server.Mails.isEmpty() || command == ".");
    }
}

void TestSmtpDialogue::aRefusalOfConnectClosesAndIsReportedOnce_data()
{
    addStages(true, false);
}

void TestSmtpDialogue::aRefusalOfConnectClosesAndIsReportedOnce()
{
    QFETCH(QByteArray, command);
    ScriptedServer server;
    setReply(server, command, "554 no\r\n");
    Client client;
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"geheim"_s;
    QCOMPARE(client.connectTo(server.port()), 0);
    QCOMPARE(client.Errors.size(), 1);
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(!client.send(text));
    QVERIFY(!client.Transport.Send(MailMessage()));
    QVERIFY(!client.Transport.Accepted());
    client.Transport.Quit();
    QCOMPARE(client.Errors.size(), 1);
    QCOMPARE(server.Connections, 1);
}

void TestSmtpDialogue::closingIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpDialogue::closingIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    ScriptedServer server;
    setReply(server, command, "");
    server.closeAt(command);
    server.closeAt(command == "EHLO" ? "HELO" : command);
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"the server has closed the connection"),
             qPrintable(client.Errors.first()));
    QVERIFY(client.Transport.State() != 2);
}

void TestSmtpDialogue::silenceIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpDialogue::silenceIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    MailTransport::setTimeouts(30'000, shortSilence, shortGrace);
    ScriptedServer server;
    setReply(server, command, "");
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"there was no answer for"), qPrintable(client.Errors.first()));
    QVERIFY(client.Transport.State() != 2);
}

void TestSmtpDialogue::garbageIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpDialogue::garbageIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    for (const QByteArray &garbage : {QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n"), QByteArray("\0\xff\x16\r\n", 5),
                                      QByteArray("250-a\r\n354 b\r\n"), QByteArray("999 no\r\n")}) {
        ScriptedServer server;
        setReply(server, command, garbage);
        Client client;
        QVERIFY(!runSession(client, server));
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY2(client.Errors.first().contains(u"not SMTP"), qPrintable(client.Errors.first()));
        QVERIFY(client.Transport.State() != 2);
    }
}

void TestSmtpDialogue::anEndlessLineIsReported()
{
    ScriptedServer server;
    server.Greeting = "220 " + QByteArray(10'000'000, 'x');
    Client client;
    QVERIFY(client.connectTo(server.port()) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"a line without end"), qPrintable(client.Errors.first()));
    QVERIFY(client.Errors.first().size() < 500);
}

void TestSmtpDialogue::oneRefusedRecipientMeansThatNobodyGetsTheMail()
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

void TestSmtpDialogue::oneRefusedRecipientMeansThatNobodyGetsTheMailWithPipelining()
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

void TestSmtpDialogue::dataAcceptedAfterARefusedRecipientEndsTheConnection()
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

void TestSmtpDialogue::afterARefusalTheNextMailGoesOverTheSameConnection()
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

void TestSmtpDialogue::aRefusalAfterTheEndLeavesTheSessionStanding()
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

namespace {

// Large enough that it cannot all lie in the system's buffers before the server's word is read.
const QByteArray &largeText()
{
    static const QByteArray large =
        QByteArray("0123456789abcdef0123456789abcdef0123456789abcdef\r\n").repeated(1'000'000);
    return large;
}

} // namespace

void TestSmtpDialogue::aRefusalInTheMiddleOfTheMailIsSeen()
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

void TestSmtpDialogue::aRefusalInTheMiddleOfTheMailIsSeenThoughTheServerCloses()
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

void TestSmtpDialogue::successInTheMiddleOfTheMailIsNone()
{
    ScriptedServer server;
    server.InterruptAfter = 100'000;
    server.Interruption = "250 2.0.0 queued\r\n";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(largeText()));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"out of turn"), qPrintable(client.Errors.first()));
    QVERIFY(server.Mails.isEmpty());
}

void TestSmtpDialogue::successBeforeTheMailHasBegunIsNone()
{
    for (const char *early : {"354 go\r\n250 queued\r\n", "354 go\r\n25"}) {
        ScriptedServer server;
        server.answer("DATA", early);
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(!client.send(text));
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY2(client.Errors.first().contains(u"out of turn"), qPrintable(client.Errors.first()));
    }
}

void TestSmtpDialogue::octetsBetweenTheEndAndTheReplyAreNoSuccess()
{
    for (const char *reply : {"garbage\r\n250 queued\r\n", "354 again\r\n250 queued\r\n", "x250 queued\r\n"}) {
        ScriptedServer server;
        server.answer(".", reply);
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(!client.send(text));
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY(client.Transport.State() != 2);
    }
}

void TestSmtpDialogue::aSecondReplyAfterTheEndSpoilsTheNextMailOnly()
{
    ScriptedServer server;
    server.answer(".", "250 queued\r\n451 or not\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text));
    QVERIFY(client.Errors.isEmpty());
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"451 or not"), qPrintable(client.Errors.first()));
}

void TestSmtpDialogue::aReplyThatWasNotAskedForEndsTheSession_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("greeting") << QByteArray() << QByteArray("220 a\r\n250 b\r\n");
    QTest::newRow("EHLO") << QByteArray("EHLO") << QByteArray("250-a\r\n250 AUTH PLAIN\r\n250 c\r\n");
    QTest::newRow("AUTH") << QByteArray("AUTH") << QByteArray("235 a\r\n250 b\r\n");
    QTest::newRow("MAIL") << QByteArray("MAIL") << QByteArray("250 a\r\n250 b\r\n");
    QTest::newRow("RCPT") << QByteArray("RCPT") << QByteArray("250 a\r\n354 b\r\n");
}

void TestSmtpDialogue::aReplyThatWasNotAskedForEndsTheSession()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, reply);
    ScriptedServer server;
    setReply(server, command, reply);
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(server.Mails.isEmpty());
    QVERIFY(client.Transport.State() != 2);
}

void TestSmtpDialogue::withoutStartTlsOfferedNothingGoesInTheClear()
{
    for (const bool knowsEhlo : {true, false}) {
        ScriptedServer server;
        server.Offers = {"AUTH PLAIN"};
        if (!knowsEhlo) {
            server.answer("EHLO", "500 what?\r\n");
        }
        Client client;
        client.Transport.Security = MailTransport::StartTls;
        QVERIFY(!runSession(client, server));
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY2(client.Errors.first().contains(u"STARTTLS"), qPrintable(client.Errors.first()));
        QVERIFY(client.Transport.State() != 2);
        QTRY_COMPARE(server.Ended, 1);
        QVERIFY(!server.heard("AUTH") && !server.heard("MAIL"));
    }
}

void TestSmtpDialogue::startTlsRefusedIsAnError()
{
    ScriptedServer server;
    server.answer("STARTTLS", "454 4.7.0 not now\r\n");
    server.Offers = {"STARTTLS", "AUTH PLAIN"};
    Client client;
    client.Transport.Security = MailTransport::StartTls;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"454 4.7.0 not now"), qPrintable(client.Errors.first()));
    QVERIFY(!server.heard("AUTH") && !server.heard("MAIL"));
}

void TestSmtpDialogue::octetsBehindTheStartTlsReplyAreAnError()
{
    QVERIFY2(m_certificates.isValid(), qPrintable(m_certificates.fault()));
    SmtpTls::setAuthorities({m_certificates.authority()});
    for (const char *injected : {"250-forged\r\n250 AUTH PLAIN\r\n", "2", "\x16\x03"}) {
        ScriptedServer server;
        server.Certificate = m_certificates.localhost();
        server.Key = m_certificates.localhostKey();
        server.Offers = {"STARTTLS"};
        server.answer("STARTTLS", QByteArray("220 go\r\n") + injected);
        Client client;
        client.Transport.Security = MailTransport::StartTls;
        QVERIFY(client.connectTo(server.port()) != 2);
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY2(client.Errors.first().contains(u"behind the answer to STARTTLS"), qPrintable(client.Errors.first()));
    }
}

void TestSmtpDialogue::whatWasOfferedBeforeTlsIsForgotten()
{
    QVERIFY2(m_certificates.isValid(), qPrintable(m_certificates.fault()));
    SmtpTls::setAuthorities({m_certificates.authority()});
    ScriptedServer server;
    server.Certificate = m_certificates.localhost();
    server.Key = m_certificates.localhostKey();
    server.Offers = {"STARTTLS", "AUTH PLAIN", "PIPELINING"};
    int greetings = 0;
    server.Responder = [&greetings](const QByteArray &line) -> std::optional<QByteArray> {
        return line.startsWith("EHLO") && ++greetings == 2 ? std::optional<QByteArray>("250 bare\r\n") : std::nullopt;
    };
    Client client;
    client.Transport.Security = MailTransport::StartTls;
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"geheim"_s;
    QVERIFY(client.connectTo(server.port()) != 2);
    QCOMPARE(greetings, 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"does not offer AUTH"), qPrintable(client.Errors.first()));
}

void TestSmtpDialogue::aUserWithoutAuthOfferedIsAnError()
{
    ScriptedServer server;
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"does not offer AUTH"), qPrintable(client.Errors.first()));
    QVERIFY(!server.heard("MAIL"));
}

void TestSmtpDialogue::aUserWithOnlyUnknownMechanismsIsAnError()
{
    ScriptedServer server;
    server.Offers = {"AUTH XOAUTH2 NTLM"};
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"XOAUTH2 NTLM"), qPrintable(client.Errors.first()));
    QVERIFY2(!client.Errors.first().contains(u"AUTH )"), qPrintable(client.Errors.first()));
}

void TestSmtpDialogue::aRefusedLoginTriesNoOtherMechanism()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN LOGIN"};
    server.answer("AUTH", "535 5.7.8 no\r\n");
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QTRY_COMPARE(server.Ended, 1);
    QCOMPARE(server.count("AUTH"), 1);
}

void TestSmtpDialogue::aLoginGoesWithoutShowingItsWords()
{
    ScriptedServer server;
    server.Offers = {"AUTH LOGIN"};
    server.answer("AUTH LOGIN", "334 VXNlcm5hbWU6\r\n");
    server.answer(QByteArray("user").toBase64(), "334 UGFzc3dvcmQ6\r\n");
    server.answer(QByteArray("geheim").toBase64(), "235 welcome\r\n");
    Client client;
    QVERIFY(runSession(client, server));
    QCOMPARE(server.Lines.mid(1, 3), (QList<QByteArray>{"AUTH LOGIN", "dXNlcg==", "Z2VoZWlt"}));
    const QString told = client.Progress.join(u'\n');
    QVERIFY(told.contains(u"Logging in"));
    QVERIFY(!told.contains(u"geheim") && !told.contains(u"Z2VoZWlt") && !told.contains(u"dXNlcg"));
}

void TestSmtpDialogue::aServerThatEchoesTheSecretsIsCensored()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    server.Responder = [](const QByteArray &line) -> std::optional<QByteArray> {
        return line.startsWith("AUTH") ? std::optional<QByteArray>("535 bad geheim in " + line + "\r\n") : std::nullopt;
    };
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    const QByteArray word = QByteArray("\0user\0geheim", 12).toBase64();
    QVERIFY2(!client.Errors.first().contains(u"geheim"), qPrintable(client.Errors.first()));
    QVERIFY(!client.Errors.first().contains(QString::fromLatin1(word)));
    QVERIFY(client.Errors.first().contains(u"535 bad"));
}

namespace {

QString writeFile(const QTemporaryDir &folder, qint64 size)
{
    const QString path = folder.filePath(u"attachment.bin"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(size)) {
        qFatal("cannot write the test's file");
    }
    return path;
}

} // namespace

void TestSmtpDialogue::aFileThatVanishesEndsTheConnectionWithoutTheFinalDot()
{
    const QTemporaryDir folder;
    const QString path = writeFile(folder, 1'000'000);
    const EncodedMail mail = Client::mailWithFile(path);
    QVERIFY(QFile::remove(path));
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.Transport.SendEncoded(mail, u"a@b.c"_s, {u"d@e.f"_s}));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"attachment.bin"), qPrintable(client.Errors.first()));
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(server.Mails.isEmpty());
    QVERIFY(client.Transport.State() != 2);
}

void TestSmtpDialogue::aFileThatHasGrownEndsTheConnectionWithoutTheFinalDot()
{
    const QTemporaryDir folder;
    const QString path = writeFile(folder, 1'000'000);
    const EncodedMail mail = Client::mailWithFile(path);
    writeFile(folder, 1'000'001);
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.Transport.SendEncoded(mail, u"a@b.c"_s, {u"d@e.f"_s}));
    QCOMPARE(client.Errors.size(), 1);
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(server.Mails.isEmpty());
}

void TestSmtpDialogue::aMailBeyondSizeIsNotBegun()
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

void TestSmtpDialogue::aBadAddressIsNotBegun()
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

void TestSmtpDialogue::progressNamesTheStagesThenThePercentage()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Progress.first().startsWith(u"Connecting to 127.0.0.1"));
    QVERIFY(client.Progress.last().startsWith(u"Connected to"));
    client.Progress.clear();
    QVERIFY(client.send(largeText()));
    QCOMPARE(client.Progress.first(), u"Sending the addresses"_s);
    const QStringList percents = client.Progress.filter(u"Sending the message: "_s);
    QCOMPARE(percents.last(), u"Sending the message: 100 %"_s);
    QVERIFY(percents.size() > 10 && percents.size() <= 101);
    QStringList unique = percents;
    QCOMPARE(unique.removeDuplicates(), 0);
}

QTEST_GUILESS_MAIN(TestSmtpDialogue)
#include "test_smtpdialogue.moc"
