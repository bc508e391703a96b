#include "connectionbench.h"
#include "quillon/mail/smtptls.h"
#include "support/certificates.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;
using testsupport::ChildServer;
using testsupport::ScriptedServer;

/// Accounts against servers that accept, refuse, or stay silent.
class TestConnectionTest : public ConnectionBench {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_certificates = std::make_unique<testsupport::Certificates>();
        QVERIFY2(m_certificates->isValid(), qPrintable(m_certificates->fault()));
    }
    void init()
    {
        MailTransport::setTimeouts(longTime, longTime, longTime);
        quillon::SmtpTls::setAuthorities({m_certificates->authority()});
        m_reason = u"left from before"_s;
    }

    void securityLettersAgainstARealServer();
    void securityLettersAgainstARealServer_data();
    void securityThatIsMissingAtTheServerFails();
    void unknownSecurityLetterIsNoSecurity();
    void userIsSentOnlyWithAuthenticationY();
    void refusedLoginGivesTheServersSentenceWithoutThePassword();
    void refusalGivesTheServersSentence();
    void refusalGivesTheServersSentence_data();
    void serverThatStaysSilentFailsWhileTheEventLoopLives();
    void lateGreetingIsWaitedFor();
    void lateRefusalFails();
    void reasonIsEmptyWhenItWorked();
    void connectionIsEndedInEachCase();
    void secondTestWithinTheFirstIsRefused();
    void aTestEndsWithItsOwner();

private:
    /// Starts aiosmtpd with a certificate for "localhost", if @p tls is not "none", and a login.
    bool startReal(ChildServer &server, const QString &tls)
    {
        QStringList arguments{u"--out"_s, m_folder.path(), u"--tls"_s, tls, u"--user"_s, u"ada"_s};
        arguments += {u"--password"_s, password};
        if (tls != "none"_L1) {
            arguments += {u"--auth"_s,        u"PLAIN"_s,
                          u"--certificate"_s, m_certificates->localhostFile(),
                          u"--key"_s,         m_certificates->localhostKeyFile()};
        }
        return server.startPython(u"smtp_server.py"_s, arguments);
    }
    std::unique_ptr<testsupport::Certificates> m_certificates;
    QTemporaryDir m_folder;
};

void TestConnectionTest::securityLettersAgainstARealServer_data()
{
    QTest::addColumn<QString>("letter");
    QTest::addColumn<QString>("tls");
    QTest::addColumn<QString>("authentication");
    QTest::newRow("N") << u"N"_s << u"none"_s << noLogin;
    QTest::newRow("S") << u"S"_s << u"implicit"_s << login;
    QTest::newRow("Y") << u"Y"_s << u"implicit"_s << login;
    QTest::newRow("T") << u"T"_s << u"starttls"_s << login;
}

void TestConnectionTest::securityLettersAgainstARealServer()
{
    QFETCH(const QString, letter);
    QFETCH(const QString, tls);
    QFETCH(const QString, authentication);
    ChildServer server;
    QVERIFY2(startReal(server, tls), qPrintable(server.fault()));
    const QString account = accountLine(u"localhost"_s, QString::number(server.port()), letter, authentication);
    QVERIFY2(smtp(account), qPrintable(m_reason));
    QCOMPARE(m_reason, QString());
    if (authentication == login) {
        QCOMPARE(server.waitForLine("AUTH "), "PLAIN");
        QVERIFY(!smtp(QString(account).replace(password, u"not-"_s + password)));
        verifyReason(u"535"_s);
        quillon::SmtpTls::setAuthorities({});
        QVERIFY(!smtp(account));
        verifyReason(u"certificate"_s);
    }
}

void TestConnectionTest::securityThatIsMissingAtTheServerFails()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    QVERIFY(!smtp(accountLine(server.port(), u"T"_s, login)));
    verifyReason(u"STARTTLS"_s);
    QVERIFY(!server.heard("AUTH"));
}

void TestConnectionTest::unknownSecurityLetterIsNoSecurity()
{
    ScriptedServer server;
    server.Offers = {"STARTTLS"};
    QVERIFY2(smtp(accountLine(server.port(), u"X"_s, noLogin)), qPrintable(m_reason));
    QVERIFY(!server.heard("STARTTLS"));
}

void TestConnectionTest::userIsSentOnlyWithAuthenticationY()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    QVERIFY2(smtp(accountLine(server.port(), u"N"_s, u"N\tada\t"_s + password)), qPrintable(m_reason));
    QVERIFY(!server.heard("AUTH"));
    QVERIFY2(smtp(accountLine(server.port(), u"N"_s, u"Y\tada\t"_s + password)), qPrintable(m_reason));
    QCOMPARE(server.count("AUTH PLAIN"), 1);
}

void TestConnectionTest::refusedLoginGivesTheServersSentenceWithoutThePassword()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    server.answer("AUTH", "535 5.7.8 ada with " + password.toUtf8() + " is unknown here\r\n");
    QVERIFY(!smtp(accountLine(server.port(), u"N"_s, login)));
    verifyReason(u"535 5.7.8 ada with *** is unknown here"_s);
}

void TestConnectionTest::refusalGivesTheServersSentence_data()
{
    QTest::addColumn<QByteArray>("greeting");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("words");
    QTest::newRow("greeting") << QByteArray("554 no service for you\r\n") << QByteArray()
                              << u"554 no service for you"_s;
    QTest::newRow("EHLO") << QByteArray("220 hello\r\n") << QByteArray("554 go away\r\n") << u"554 go away"_s;
    QTest::newRow("EHLO, later") << QByteArray("220 hello\r\n") << QByteArray("421 too busy\r\n") << u"421 too busy"_s;
    QTest::newRow("no mail server") << QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n") << QByteArray() << u"greeting"_s;
}

void TestConnectionTest::refusalGivesTheServersSentence()
{
    QFETCH(const QByteArray, greeting);
    QFETCH(const QByteArray, answer);
    QFETCH(const QString, words);
    ScriptedServer server;
    server.Greeting = greeting;
    server.answer("EHLO", answer);
    server.answer("HELO", answer);
    QVERIFY(!smtp(accountLine(server.port(), u"N"_s, login)));
    verifyReason(words);
    QTRY_COMPARE(server.Ended, 1);
}

void TestConnectionTest::serverThatStaysSilentFailsWhileTheEventLoopLives()
{
    MailTransport::setTimeouts(longTime, shortTime, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    verifyLoopLives([&] { return smtp(accountLine(server.port(), u"N"_s, noLogin)); });
    verifyReason(u"there was no answer"_s);
    QCOMPARE(server.Connections, 1);
}

void TestConnectionTest::lateGreetingIsWaitedFor()
{
    MailTransport::setTimeouts(longTime, longTime, 1);
    ScriptedServer server;
    server.Greeting = "";
    QTimer::singleShot(shortGrace, &server, [&server] { server.say("220 here at last\r\n"); });
    QVERIFY2(smtp(accountLine(server.port(), u"N"_s, noLogin)), qPrintable(m_reason));
    QVERIFY(server.heard("EHLO"));
}

void TestConnectionTest::lateRefusalFails()
{
    MailTransport::setTimeouts(longTime, longTime, 1);
    ScriptedServer server;
    server.Greeting = "";
    QTimer::singleShot(shortGrace, &server, [&server] { server.say("554 not today\r\n"); });
    QVERIFY(!smtp(accountLine(server.port(), u"N"_s, noLogin)));
    verifyReason(u"554 not today"_s);
}

void TestConnectionTest::reasonIsEmptyWhenItWorked()
{
    ScriptedServer server;
    const QString account = accountLine(server.port(), u"N"_s, noLogin);
    QVERIFY(smtp(account));
    QCOMPARE(m_reason, QString());
    QVERIFY(!smtp(account + u'\t'));
    QVERIFY(!m_reason.isEmpty());
}

void TestConnectionTest::connectionIsEndedInEachCase()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    QVERIFY(smtp(accountLine(server.port(), u"N"_s, noLogin)));
    QTRY_COMPARE(server.Ended, 1);
    QCOMPARE(server.Lines.last(), "QUIT");
    server.answer("AUTH", "535 no\r\n");
    QVERIFY(!smtp(accountLine(server.port(), u"N"_s, login)));
    QTRY_COMPARE(server.Ended, 2);
    QCOMPARE(server.Lines.last(), "QUIT");
}

void TestConnectionTest::secondTestWithinTheFirstIsRefused()
{
    ScriptedServer server;
    const QString account = accountLine(server.port(), u"N"_s, noLogin);
    QString second;
    QString third;
    bool isFirst = true;
    server.Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO") && std::exchange(isFirst, false)) {
            second = waitFor(TestSmtpConnection(account, QString())).reason;
            third = waitFor(TestProxyConnection(proxyLine(server.port()), readSite(m_folder.path()))).reason;
        }
        return std::nullopt;
    };
    QVERIFY2(smtp(account), qPrintable(m_reason));
    QCOMPARE(second, u"Another connection is being tested."_s);
    QCOMPARE(third, second);
    QCOMPARE(server.Connections, 1);
    server.Responder = nullptr;
    QVERIFY2(smtp(account), qPrintable(m_reason));
}

namespace {
quillon::Task<> runTest(QString account, bool *over)
{
    co_await TestSmtpConnection(account, QString());
    *over = true;
}
} // namespace

void TestConnectionTest::aTestEndsWithItsOwner()
{
    ScriptedServer server;
    server.Responder = [](const QByteArray &) { return QByteArray(); };
    bool over = false;
    quillon::Sequence owner;
    owner.start(runTest(accountLine(server.port(), u"N"_s, noLogin), &over));
    QTRY_VERIFY(server.heard("EHLO"));
    owner.end();
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(!over);
    server.Responder = nullptr;
    QVERIFY2(smtp(accountLine(server.port(), u"N"_s, noLogin)), qPrintable(m_reason)); // no test is under way any more
}

QTEST_GUILESS_MAIN(TestConnectionTest)
#include "test_connectiontest.moc"
