#include "quillon/smtp/dialogue.h"

using namespace dialogue;

/// TLS and the login in the dialogue: what is not safe is not begun, and no secret is told.
class TestSmtpLogin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void withoutStartTlsOfferedNothingGoesInTheClear();
    void startTlsRefusedIsAnError();
    void octetsBehindTheStartTlsReplyAreAnError();
    void whatWasOfferedBeforeTlsIsForgotten();

    void aUserWithoutAuthOfferedIsAnError();
    void aUserWithOnlyUnknownMechanismsIsAnError();
    void aRefusedLoginTriesNoOtherMechanism();
    void aLoginGoesWithoutShowingItsWords();
    void aServerThatEchoesTheSecretsIsCensored();
    void noAnswerAfterTheLoginShowsTheSecrets_data();
    void noAnswerAfterTheLoginShowsTheSecrets();
    void aPasswordThatIsAWordOfOursIsNotTold();
    void aLoginThatEndsEarlyIsNotBelieved();
    void anAnswerBehindAChallengeIsOutOfTurn();
    void withoutAUserNobodyLogsIn();
    void allButTheGreetingGoesInTls_data();
    void allButTheGreetingGoesInTls();
    void theLastWordsInTlsAreHeard();

private:
    void secure(ScriptedServer &server)
    {
        SmtpTls::setAuthorities({m_certificates.authority()});
        server.Certificate = m_certificates.localhost();
        server.Key = m_certificates.localhostKey();
    }

    testsupport::Certificates m_certificates;
};

void TestSmtpLogin::withoutStartTlsOfferedNothingGoesInTheClear()
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

void TestSmtpLogin::startTlsRefusedIsAnError()
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

void TestSmtpLogin::octetsBehindTheStartTlsReplyAreAnError()
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

void TestSmtpLogin::whatWasOfferedBeforeTlsIsForgotten()
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

void TestSmtpLogin::aUserWithoutAuthOfferedIsAnError()
{
    ScriptedServer server;
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"does not offer AUTH"), qPrintable(client.Errors.first()));
    QVERIFY(!server.heard("MAIL"));
}

void TestSmtpLogin::aUserWithOnlyUnknownMechanismsIsAnError()
{
    ScriptedServer server;
    server.Offers = {"AUTH XOAUTH2 NTLM"};
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"XOAUTH2 NTLM"), qPrintable(client.Errors.first()));
    QVERIFY2(!client.Errors.first().contains(u"AUTH )"), qPrintable(client.Errors.first()));
}

void TestSmtpLogin::aRefusedLoginTriesNoOtherMechanism()
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

void TestSmtpLogin::aLoginGoesWithoutShowingItsWords()
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

void TestSmtpLogin::aServerThatEchoesTheSecretsIsCensored()
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

void TestSmtpLogin::noAnswerAfterTheLoginShowsTheSecrets_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("refusal of the sender") << QByteArray("MAIL") << QByteArray("550 no ëheim") << false
                                           << u"The server refused the sender (MAIL FROM): “550 no ***”."_s;
    QTest::newRow("in Latin-1") << QByteArray("MAIL") << QByteArray("550 no \xebheim") << false
                                << u"The server refused the sender (MAIL FROM): “550 no ***”."_s;
    QTest::newRow("the word sent") << QByteArray("MAIL") << "550 no " + (QByteArray("\0user\0", 6) + "ëheim").toBase64()
                                   << false << u"The server refused the sender (MAIL FROM): “550 no ***”."_s;
    QTest::newRow("second line") << QByteArray("RCPT") << QByteArray("550-no\r\n550 ëheim") << false
                                 << u"The server refused the recipient to@example.org (RCPT TO): “550 no ***”."_s;
    QTest::newRow("a challenge where none belongs") << QByteArray("MAIL") << QByteArray("334 ëheim") << false
                                                    << u"The server refused the sender (MAIL FROM): “334 ***”."_s;
    QTest::newRow("refusal at the end") << QByteArray(".") << QByteArray("554 ëheim") << false
                                        << u"The server refused the message after its end: “554 ***”."_s;
    QTest::newRow("last answer") << QByteArray("MAIL") << QByteArray("250 ëheim") << true
                                 << u"Sending the recipient to@example.org (RCPT TO) failed: the server has closed "
                                    "the connection (its last answer was “250 ***”)."_s;
    QTest::newRow("answer to the login") << QByteArray("AUTH") << QByteArray("235 ëheim") << true
                                         << u"Sending the sender (MAIL FROM) failed: the server has closed the "
                                            "connection (its last answer was “235 ***”)."_s;
    QTest::newRow("garbage") << QByteArray("MAIL") << QByteArray("ëheim") << false
                             << u"Sending the sender (MAIL FROM) failed: its answer is not SMTP, “***”."_s;
}

void TestSmtpLogin::noAnswerAfterTheLoginShowsTheSecrets()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, reply);
    QFETCH(bool, closes);
    QFETCH(QString, sentence);
    ScriptedServer server;
    setReply(server, command, reply + "\r\n");
    if (closes) {
        const QByteArray next = command == "AUTH" ? "MAIL" : "RCPT";
        server.answer(next, "");
        server.closeAt(next);
    }
    Client client;
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"ëheim"_s;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors, QStringList{sentence});
}

void TestSmtpLogin::aPasswordThatIsAWordOfOursIsNotTold()
{
    // Taken out of our own sentence it would be read from the gap.
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    server.answer("AUTH", "535 this server says no\r\n");
    Client client;
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"server"_s;
    QCOMPARE(client.connectTo(server.port()), 0);
    QCOMPARE(client.Errors, QStringList{u"Logging in at 127.0.0.1 (AUTH PLAIN) failed: the server answered “535 this "
                                        "*** says no”."_s});
}

void TestSmtpLogin::aLoginThatEndsEarlyIsNotBelieved()
{
    for (const char *mechanism : {"LOGIN", "CRAM-MD5", "SCRAM-SHA-256"}) {
        ScriptedServer server;
        server.Offers = {QByteArray("AUTH ") + mechanism};
        Client client;
        QVERIFY(!runSession(client, server));
        QCOMPARE(client.Errors, QStringList{u"Logging in at 127.0.0.1 (AUTH %1) failed: the server ended the login "
                                            "before it had proved itself."_s.arg(QLatin1StringView(mechanism))});
        QCOMPARE(client.Transport.State(), 0);
        QTRY_COMPARE(server.Ended, 1);
        QVERIFY(!server.heard("QUIT") && !server.heard("MAIL"));
    }
}

void TestSmtpLogin::anAnswerBehindAChallengeIsOutOfTurn()
{
    ScriptedServer server;
    server.Offers = {"AUTH LOGIN"};
    server.answer("AUTH LOGIN", "334 VXNlcm5hbWU6\r\n235 welcome\r\n");
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors,
             QStringList{u"Logging in at 127.0.0.1 (AUTH LOGIN) failed: the server talks out of turn."_s});
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(!server.heard("dXNlcg=="));
}

void TestSmtpLogin::withoutAUserNobodyLogsIn()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    Client client;
    client.Transport.Password = u"geheim"_s;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!server.heard("AUTH"));
}

void TestSmtpLogin::allButTheGreetingGoesInTls_data()
{
    QTest::addColumn<int>("security");
    QTest::newRow("implicit TLS") << int(MailTransport::Ssl);
    QTest::newRow("STARTTLS") << int(MailTransport::StartTls);
}

void TestSmtpLogin::allButTheGreetingGoesInTls()
{
    QFETCH(int, security);
    ScriptedServer server;
    secure(server);
    server.Offers = {"STARTTLS", "AUTH CRAM-MD5 PLAIN"};
    server.ImplicitTls = security == MailTransport::Ssl;
    Client client;
    client.Transport.Security = security;
    QVERIFY2(runSession(client, server), qPrintable(client.Errors.join(u'\n')));
    client.Transport.Quit();
    QTRY_COMPARE(server.Ended, 1);
    QList<QByteArray> words;
    for (const QByteArray &line : std::as_const(server.Lines)) {
        words += line.split(' ').first();
    }
    // In TLS the password may go as it is, so that the server need not keep it.
    QCOMPARE(words.mid(security == MailTransport::Ssl ? 0 : 2),
             (QList<QByteArray>{"EHLO", "AUTH", "MAIL", "RCPT", "DATA", "QUIT"}));
    QCOMPARE(server.count("AUTH PLAIN "), 1);
    QCOMPARE(server.Mails, QList<QByteArray>{textOnWire});
}

void TestSmtpLogin::theLastWordsInTlsAreHeard()
{
    for (const char *words : {"", "421 bye\r\n"}) {
        ScriptedServer server;
        secure(server);
        server.ImplicitTls = true;
        server.answer("MAIL", words);
        server.closeAt("MAIL");
        Client client;
        client.Transport.Security = MailTransport::Ssl;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(!client.send(text));
        const QString start = u"Sending the sender (MAIL FROM) failed: the server has "_s;
        QCOMPARE(client.Errors, QStringList{start + (*words == 0 ? u"closed the connection (its last answer was “250 "
                                                                   "scripted.example”)."_s
                                                                 : u"ended the session, “421 bye”."_s)});
    }
}

QTEST_GUILESS_MAIN(TestSmtpLogin)
#include "test_smtplogin.moc"
