#include "quillon/smtp/dialogue.h"

using namespace dialogue;

/// The whole outcome of each answer at each stage: the sentence, its code, whether the session stands, and how it is
/// taken leave of.
class TestSmtpSentences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void anAnswerDecidesTheSentenceAndTheSession_data();
    void anAnswerDecidesTheSentenceAndTheSession();
    void aLossNamesTheStageAndTheLastAnswer_data();
    void aLossNamesTheStageAndTheLastAnswer();
    void onlyTheFirstLineOfTheLastAnswerIsNamed();
    void aChallengeIsNoLastAnswer();
    void anIdleSessionTellsWhatTheServerSaid();
    void everyAnswerOfTheSecondClassAccepts();
    void anUntrustedServerIsNamedWithoutItsLastAnswer();

private:
    testsupport::Certificates m_certificates;
};

void TestSmtpSentences::anAnswerDecidesTheSentenceAndTheSession_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<bool>("stands");
    QTest::addColumn<int>("quits"); // also where the server is told that it is not understood
    QTest::addColumn<int>("resets");
    const auto add = [](const char *command, const char *reply, const char16_t *sentence, bool stands, int quits,
                        int resets) {
        QTest::addRow("%s %.3s", command, reply) << QByteArray(command) << QByteArray(reply) + "\r\n"
                                                 << QString::fromUtf16(sentence) << stands << quits << resets;
    };
    add("", "554 no", u"Waiting for the greeting of 127.0.0.1 failed: the server answered “554 no”.", false, 1, 0);
    add("", "421 no", u"Waiting for the greeting of 127.0.0.1 failed: the server answered “421 no”.", false, 1, 0);
    add("", "250 no", u"Waiting for the greeting of 127.0.0.1 failed: the server answered “250 no”.", false, 0, 0);
    add("", "web", u"Waiting for the greeting of 127.0.0.1 failed: its answer is not SMTP, “web”.", false, 0, 0);
    add("EHLO", "499 no", u"Greeting 127.0.0.1 (EHLO) failed: the server answered “499 no”.", false, 1, 0);
    add("EHLO", "500 no", u"Greeting 127.0.0.1 (HELO) failed: the server answered “500 no”.", false, 1, 0);
    add("EHLO", "354 no", u"Greeting 127.0.0.1 (EHLO) failed: the server answered “354 no”.", false, 0, 0);
    add("EHLO", "web", u"Greeting 127.0.0.1 (EHLO) failed: its answer is not SMTP, “web”.", false, 0, 0);
    add("AUTH", "535 no", u"Logging in at 127.0.0.1 (AUTH PLAIN) failed: the server answered “535 no”.", false, 1, 0);
    add("AUTH", "334 ",
        u"Logging in at 127.0.0.1 (AUTH PLAIN) failed: the exchange of PLAIN with the server makes no sense or proves "
        "another server.",
        false, 1, 0);
    add("AUTH", "354 no", u"Logging in at 127.0.0.1 (AUTH PLAIN) failed: the server answered “354 no”.", false, 0, 0);
    add("MAIL", "550 no", u"The server refused the sender (MAIL FROM): “550 no”.", true, 1, 1);
    add("MAIL", "451 no", u"The server refused the sender (MAIL FROM): “451 no”.", true, 1, 1);
    add("MAIL", "354 no", u"The server refused the sender (MAIL FROM): “354 no”.", true, 1, 1);
    add("MAIL", "421 no", u"Sending the sender (MAIL FROM) failed: the server has ended the session, “421 no”.", false,
        0, 0);
    add("RCPT", "550 no", u"The server refused the recipient to@example.org (RCPT TO): “550 no”.", true, 1, 1);
    add("RCPT", "421 no",
        u"Sending the recipient to@example.org (RCPT TO) failed: the server has ended the session, “421 no”.", false, 0,
        0);
    add("DATA", "554 no", u"The server refused the message (DATA): “554 no”.", true, 1, 1);
    add("DATA", "250 no", u"Sending the message (DATA) failed: the server answered “250 no”.", false, 0, 0);
    add("DATA", "355 no", u"Sending the message (DATA) failed: the server answered “355 no”.", false, 0, 0);
    add("DATA", "421 no", u"Sending the message (DATA) failed: the server has ended the session, “421 no”.", false, 0,
        0);
    add(".", "554 no", u"The server refused the message after its end: “554 no”.", true, 1, 1);
    add(".", "451 no", u"The server refused the message after its end: “451 no”.", true, 1, 1);
    add(".", "354 no", u"Waiting for the message to be accepted failed: the server did not take the message, “354 no”.",
        false, 0, 0);
    add(".", "421 no", u"Waiting for the message to be accepted failed: the server did not take the message, “421 no”.",
        false, 0, 0);
}

void TestSmtpSentences::anAnswerDecidesTheSentenceAndTheSession()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, reply);
    QFETCH(QString, sentence);
    QFETCH(bool, stands);
    QFETCH(int, quits);
    QFETCH(int, resets);
    ScriptedServer server;
    setReply(server, command, reply);
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors, QStringList{sentence});
    const int code = reply.left(3).toInt();
    QCOMPARE(client.Codes, QList<int>{code == 334 ? 0 : code});
    QCOMPARE(client.Transport.State(), stands ? 2 : 0);
    client.Transport.Quit();
    QTRY_COMPARE(server.Ended, 1);
    QCOMPARE(server.count("QUIT"), quits);
    QCOMPARE(server.count("RSET"), resets);
    QCOMPARE(server.count("*"), code == 334 ? 1 : 0);
    QCOMPARE(server.count("HELO"), reply.startsWith("500") ? 1 : 0);
}

void TestSmtpSentences::aLossNamesTheStageAndTheLastAnswer_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QString>("stage");
    QTest::addColumn<QString>("last");
    QTest::newRow("greeting") << QByteArray() << u"Waiting for the greeting of 127.0.0.1"_s << QString();
    QTest::newRow("EHLO") << QByteArray("EHLO") << u"Greeting 127.0.0.1 (EHLO)"_s << u"220 scripted.example ESMTP"_s;
    QTest::newRow("AUTH") << QByteArray("AUTH") << u"Logging in at 127.0.0.1 (AUTH PLAIN)"_s
                          << u"250 scripted.example"_s;
    QTest::newRow("MAIL") << QByteArray("MAIL") << u"Sending the sender (MAIL FROM)"_s << u"235 2.7.0 welcome"_s;
    QTest::newRow("RCPT") << QByteArray("RCPT") << u"Sending the recipient to@example.org (RCPT TO)"_s << u"250 ok"_s;
    QTest::newRow("DATA") << QByteArray("DATA") << u"Sending the message (DATA)"_s << u"250 ok"_s;
    QTest::newRow("end") << QByteArray(".") << u"Waiting for the message to be accepted"_s << u"354 go ahead"_s;
}

void TestSmtpSentences::aLossNamesTheStageAndTheLastAnswer()
{
    QFETCH(QByteArray, command);
    QFETCH(QString, stage);
    QFETCH(QString, last);
    ScriptedServer server;
    setReply(server, command, "");
    server.closeAt(command);
    Client client;
    QVERIFY(!runSession(client, server));
    const QString closed = u" failed: the server has closed the connection"_s;
    QCOMPARE(
        client.Errors,
        QStringList{stage + closed + (last.isEmpty() ? last : u" (its last answer was “"_s + last + u"”)"_s) + u'.'});
    QCOMPARE(client.Codes, QList<int>{0});
    QCOMPARE(client.Transport.State(), 0);
}

void TestSmtpSentences::onlyTheFirstLineOfTheLastAnswerIsNamed()
{
    ScriptedServer server;
    server.Greeting = "220-first\r\n220 second\r\n";
    server.closeAt("EHLO");
    server.answer("EHLO", "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 0);
    QVERIFY2(client.Errors.value(0).endsWith(u"(its last answer was “220 first”)."_s),
             qPrintable(client.Errors.join(u'\n')));
}

void TestSmtpSentences::aChallengeIsNoLastAnswer()
{
    ScriptedServer server;
    server.Offers = {"AUTH LOGIN"};
    server.answer("AUTH LOGIN", "334 VXNlcm5hbWU6\r\n");
    server.answer("dXNlcg==", "");
    server.closeAt("dXNlcg==");
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors, QStringList{u"Logging in at 127.0.0.1 (AUTH LOGIN) failed: the server has closed the "
                                        "connection."_s});
}

void TestSmtpSentences::anIdleSessionTellsWhatTheServerSaid()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    server.say("421 4.4.2 too long\r\n");
    QTRY_COMPARE(client.Transport.State(), 0);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors, QStringList{u"The server has ended the session: “421 4.4.2 too long”."_s});
    QCOMPARE(client.Codes, QList<int>{421});
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(!server.heard("QUIT"));
}

void TestSmtpSentences::everyAnswerOfTheSecondClassAccepts()
{
    // Any 2xx answer accepts (RFC 5321, 4.3.2): 251 for a recipient who is forwarded, 252 and others elsewhere.
    ScriptedServer server;
    server.answer("EHLO", "299 hello\r\n");
    server.answer("MAIL", "200 ok\r\n");
    server.answer("RCPT", "251 will forward\r\n");
    server.answer(".", "299 queued\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(client.Transport.State(), 2);
}

void TestSmtpSentences::anUntrustedServerIsNamedWithoutItsLastAnswer()
{
    QVERIFY2(m_certificates.isValid(), qPrintable(m_certificates.fault()));
    ScriptedServer server;
    server.Certificate = m_certificates.localhost();
    server.Key = m_certificates.localhostKey();
    server.Offers = {"STARTTLS"};
    Client client;
    client.Transport.Security = MailTransport::StartTls;
    QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 0);
    QVERIFY2(client.Errors.value(0).startsWith(u"Securing the connection to localhost (TLS) failed: the server's "
                                               "certificate is not accepted ("_s) &&
                 !client.Errors.first().contains(u"last answer"_s),
             qPrintable(client.Errors.join(u'\n')));
}

QTEST_GUILESS_MAIN(TestSmtpSentences)
#include "test_smtpsentences.moc"
