#include "quillon/smtp/dialogue.h"

#include <QHostAddress>
#include <QTimer>

using namespace dialogue;

/// What goes over the wire, octet by octet, against a server that does what the test says.
class TestSmtpDialogue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }

    void aMailGoesStepByStep();
    void pipelinedCommandsGoTogether();
    void withoutPipeliningEachCommandWaitsForItsAnswer();
    void severalRecipientsHoldDataBackUntilAllAreAccepted();
    void aThousandPipelinedRecipientsAllGetTheMail();
    void everyReplyCutAtEveryPlaceIsUnderstood();
    void multiLineRepliesEverywhereAreUnderstood();
    void blankLinesBetweenRepliesArePassedOver();
    void heloFollowsWhenEhloIsUnknown();
    void ehloNamesAFullHostOrAnAddress();
    void ehloNamesAnAddressInBrackets();
    void progressNamesTheStagesThenThePercentage();
};

void TestSmtpDialogue::aMailGoesStepByStep()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.accepted());
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

void TestSmtpDialogue::withoutPipeliningEachCommandWaitsForItsAnswer()
{
    ScriptedServer server;
    QList<qsizetype> linesAtAnswer;
    server.Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (!line.startsWith("MAIL") && !line.startsWith("RCPT")) {
            return std::nullopt;
        }
        // What has come by the next turn was sent along.
        QTimer::singleShot(0, &server, [&] {
            linesAtAnswer += server.Lines.size();
            server.say("250 ok\r\n");
        });
        return QByteArray();
    };
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.send(text, {u"a@b.c"_s, u"d@e.f"_s}));
    QCOMPARE(linesAtAnswer, (QList<qsizetype>{2, 3, 4}));
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

void TestSmtpDialogue::ehloNamesAnAddressInBrackets()
{
    // Unless this host has a full name of its own.
    for (const auto &[address, literal] :
         {std::pair{QHostAddress::LocalHost, "[127.0.0.1]"}, std::pair{QHostAddress::LocalHostIPv6, "[IPv6:::1]"}}) {
        ScriptedServer server;
        server.close();
        if (!server.listen(address)) {
            continue; // no IPv6 here
        }
        Client client;
        QCOMPARE(client.connectTo(server.port(), QHostAddress(address).toString()), 2);
        const QByteArray name = server.Lines.first().mid(5);
        QVERIFY2(name == literal || (name.contains('.') && !name.startsWith('[')), name.constData());
    }
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
