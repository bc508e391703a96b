#include "quillon/smtp/dialogue.h"

#include <QtEndian>

#include <netinet/in.h>
#include <sys/socket.h>

using namespace dialogue;

/// Replies that come out of turn: none of them counts as the acceptance of a mail.
class TestSmtpOutOfTurn : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }

    void successInTheMiddleOfTheMailIsNone();
    void successBeforeTheMailHasBegunIsNone();
    void anAnswerBeforeTheEndHasLeftIsNoSuccess_data();
    void anAnswerBeforeTheEndHasLeftIsNoSuccess();
    void octetsBetweenTheEndAndTheReplyAreNoSuccess();
    void aSecondReplyAfterTheEndSpoilsTheNextMailOnly();
    void aReplyThatWasNotAskedForEndsTheSession_data();
    void aReplyThatWasNotAskedForEndsTheSession();
};

void TestSmtpOutOfTurn::successInTheMiddleOfTheMailIsNone()
{
    // The begin of an answer would be taken for that to the end of the mail.
    for (const char *early : {"250 2.0.0 queued\r\n", "250 2.0.0 queued "}) {
        ScriptedServer server;
        server.InterruptAfter = 100'000;
        server.Interruption = early;
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(!client.send(largeText()));
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY2(client.Errors.first().contains(u"out of turn"), qPrintable(client.Errors.first()));
        QVERIFY(server.Mails.isEmpty());
    }
}

void TestSmtpOutOfTurn::successBeforeTheMailHasBegunIsNone()
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

namespace {

/// Lets the system take but little of what the client of @p server writes. The client keeps its socket to itself, so it
/// is looked for among the open ones.
bool narrowClientOf(const ScriptedServer &server)
{
    constexpr int mostDescriptors = 1024;
    constexpr int least = 1;
    bool found = false;
    for (int descriptor = 0; descriptor < mostDescriptors; ++descriptor) {
        sockaddr_in peer{};
        socklen_t length = sizeof peer;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr *>(&peer), &length) == 0 &&
            peer.sin_family == AF_INET && qFromBigEndian(peer.sin_port) == server.port()) {
            found = ::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &least, sizeof least) == 0;
        }
    }
    return found;
}

} // namespace

void TestSmtpOutOfTurn::anAnswerBeforeTheEndHasLeftIsNoSuccess_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("told");
    QTest::newRow("success") << QByteArray("250 2.0.0 queued") << u"the server talks out of turn"_s;
    QTest::newRow("refusal") << QByteArray("552 5.2.2 Mailbox full")
                             << u"the server has refused the message while it was sent"_s;
}

void TestSmtpOutOfTurn::anAnswerBeforeTheEndHasLeftIsNoSuccess()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, told);
    // The server reads nothing of the mail, so that its end is written but has not left this process.
    ScriptedServer server;
    server.narrow();
    server.Deaf = true;
    server.Interruption = answer + "\r\n";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(narrowClientOf(server));
    QVERIFY(!client.send(QByteArray(120'000, 'x')));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().startsWith(u"Waiting for the message to be accepted failed"_s) &&
                 client.Errors.first().contains(told) && client.Errors.first().contains(QString::fromLatin1(answer)),
             qPrintable(client.Errors.first()));
    QVERIFY(client.Transport.State() != 2);
    QVERIFY(server.Interruption.isEmpty() && server.Mails.isEmpty());
}

void TestSmtpOutOfTurn::octetsBetweenTheEndAndTheReplyAreNoSuccess()
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

void TestSmtpOutOfTurn::aSecondReplyAfterTheEndSpoilsTheNextMailOnly()
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

void TestSmtpOutOfTurn::aReplyThatWasNotAskedForEndsTheSession_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("greeting") << QByteArray() << QByteArray("220 a\r\n250 b\r\n");
    QTest::newRow("EHLO") << QByteArray("EHLO") << QByteArray("250-a\r\n250 AUTH PLAIN\r\n250 c\r\n");
    QTest::newRow("AUTH") << QByteArray("AUTH") << QByteArray("235 a\r\n250 b\r\n");
    QTest::newRow("MAIL") << QByteArray("MAIL") << QByteArray("250 a\r\n250 b\r\n");
    QTest::newRow("RCPT") << QByteArray("RCPT") << QByteArray("250 a\r\n354 b\r\n");
}

void TestSmtpOutOfTurn::aReplyThatWasNotAskedForEndsTheSession()
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

QTEST_GUILESS_MAIN(TestSmtpOutOfTurn)
#include "test_smtpoutofturn.moc"
