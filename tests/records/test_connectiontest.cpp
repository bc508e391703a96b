#include "quillon/mail/mailtransport.h"
#include "quillon/mail/smtptls.h"
#include "records/connectiontest.h"
#include "support/certificates.h"
#include "support/childserver.h"
#include "support/scriptedserver.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;
using testsupport::ChildServer;
using testsupport::ScriptedServer;

namespace {

constexpr int longTime = 60'000;
constexpr int shortSilence = 150;
constexpr int shortGrace = 30;

const QString password = u"geheim-hunter2"_s;
const QString noLogin = u"N\t\t"_s;
const QString login = u"Y\tada\t"_s + password;

QString accountLine(quint16 port, const QString &securityAndLogin, const QString &host = u"127.0.0.1"_s)
{
    return host + u'\t' + QString::number(port) + u'\t' + securityAndLogin + u"\tAda\tada@x.org\t\t\t/SAEND"_s;
}

QString proxyLine(quint16 port, const QString &authentication = noLogin)
{
    return u"Socks5\t127.0.0.1\t"_s + QString::number(port) + u'\t' + authentication + u"\t/PSEND"_s;
}

quint16 portOfNobody()
{
    QTcpServer gone;
    return gone.listen(QHostAddress::LocalHost) ? gone.serverPort() : 0;
}

/// The site of a test: its web server is on loopback.
Site siteAt(quint16 port)
{
    return {u"http://127.0.0.1/"_s, u"127.0.0.1"_s, port};
}

} // namespace

class TestConnectionTest : public QObject {
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

    void accountWithoutElevenFieldsFailsWithoutAConnection();
    void accountWithoutElevenFieldsFailsWithoutAConnection_data();
    void proxyWithoutSevenFieldsFailsWithoutAConnection();
    void proxyWithoutSevenFieldsFailsWithoutAConnection_data();
    void proxyWithoutAnAddressFailsWithoutAConnection();
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
    void reasonIsEmptyWhenItWorkedAndNobodyNeedsToAskForIt();
    void connectionIsEndedInEachCase();
    void hostAndPortAreTakenWithoutBlanksAtTheirEnds();
    void portThatIsNoneFails();
    void portThatIsNoneFails_data();
    void oddHostFailsWithAReason();
    void oddHostFailsWithAReason_data();
    void refusedPortFails();
    void emptyProxyLineConnectsDirectly();
    void accountIsReachedThroughTheProxyByName();
    void accountsProxyGetsUserAndPassword();
    void secondTestWithinTheFirstIsRefused();
    void exitOfTheProgramEndsTheTest();

private:
    bool smtp(const QString &account, const QString &proxy = QString())
    {
        return TestSmtpConnection(account, proxy, &m_reason);
    }
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
    void verifyReason(const QString &words) const
    {
        QVERIFY2(m_reason.contains(words, Qt::CaseInsensitive), qPrintable(m_reason));
        QVERIFY2(!m_reason.contains(password), qPrintable(m_reason));
    }

    std::unique_ptr<testsupport::Certificates> m_certificates;
    QTemporaryDir m_folder;
    QString m_reason;
};

void TestConnectionTest::accountWithoutElevenFieldsFailsWithoutAConnection_data()
{
    QTest::addColumn<int>("fields");
    for (const int fields : {1, 2, 10, 12, 22}) {
        QTest::addRow("%d fields", fields) << fields;
    }
}

void TestConnectionTest::accountWithoutElevenFieldsFailsWithoutAConnection()
{
    QFETCH(const int, fields);
    ScriptedServer server;
    const QString usable = accountLine(server.port(), u"N\t"_s + noLogin);
    QVERIFY2(smtp(usable), qPrintable(m_reason));
    QCOMPARE(server.Connections, 1);
    QVERIFY(!smtp((usable.split(u'\t') + QStringList(11, password)).mid(0, fields).join(u'\t')));
    verifyReason(u"fields, not 11"_s);
    QCOMPARE(server.Connections, 1);
}

void TestConnectionTest::proxyWithoutSevenFieldsFailsWithoutAConnection_data()
{
    QTest::addColumn<QString>("proxy");
    QTest::newRow("6 fields") << u"Socks5\t127.0.0.1\t%1\tY\tpat\tgeheim-hunter2"_s;
    QTest::newRow("8 fields") << u"Socks5\t127.0.0.1\t%1\tY\tpat\tgeheim-hunter2\t\t/PSEND"_s;
    QTest::newRow("a blank") << u" "_s;
}

void TestConnectionTest::proxyWithoutSevenFieldsFailsWithoutAConnection()
{
    QFETCH(QString, proxy);
    ScriptedServer server;
    ScriptedServer proxyServer;
    proxy.replace(u"%1"_s, QString::number(proxyServer.port()));
    QVERIFY(!smtp(accountLine(server.port(), u"N\t"_s + noLogin), proxy));
    verifyReason(u"fields, not 7"_s);
    QCOMPARE(server.Connections + proxyServer.Connections, 0);
}

void TestConnectionTest::proxyWithoutAnAddressFailsWithoutAConnection()
{
    ScriptedServer server;
    QVERIFY(!smtp(accountLine(server.port(), u"N\t"_s + noLogin), u"Socks5\t \t1080\tN\t\t\t/PSEND"_s));
    verifyReason(u"no address"_s);
    QCOMPARE(server.Connections, 0);
}

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
    const QString account = accountLine(server.port(), letter + u'\t' + authentication, u"localhost"_s);
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
    QVERIFY(!smtp(accountLine(server.port(), u"T\t"_s + login)));
    verifyReason(u"STARTTLS"_s);
    QVERIFY(!server.heard("AUTH"));
}

void TestConnectionTest::unknownSecurityLetterIsNoSecurity()
{
    ScriptedServer server;
    server.Offers = {"STARTTLS"};
    QVERIFY2(smtp(accountLine(server.port(), u"X\t"_s + noLogin)), qPrintable(m_reason));
    QVERIFY(!server.heard("STARTTLS"));
}

void TestConnectionTest::userIsSentOnlyWithAuthenticationY()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    QVERIFY2(smtp(accountLine(server.port(), u"N\tN\tada\t"_s + password)), qPrintable(m_reason));
    QVERIFY(!server.heard("AUTH"));
    QVERIFY2(smtp(accountLine(server.port(), u"N\tY\tada\t"_s + password)), qPrintable(m_reason));
    QCOMPARE(server.count("AUTH PLAIN"), 1);
}

void TestConnectionTest::refusedLoginGivesTheServersSentenceWithoutThePassword()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    server.answer("AUTH", "535 5.7.8 ada with " + password.toUtf8() + " is unknown here\r\n");
    QVERIFY(!smtp(accountLine(server.port(), u"N\t"_s + login)));
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
    QVERIFY(!smtp(accountLine(server.port(), u"N\t"_s + login)));
    verifyReason(words);
    QTRY_COMPARE(server.Ended, 1);
}

void TestConnectionTest::serverThatStaysSilentFailsWhileTheEventLoopLives()
{
    MailTransport::setTimeouts(longTime, shortSilence, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&ticks] { ++ticks; });
    timer.start(1);
    QVERIFY(!smtp(accountLine(server.port(), u"N\t"_s + noLogin)));
    verifyReason(u"there was no answer"_s);
    QCOMPARE(server.Connections, 1);
    QCOMPARE_GT(ticks, 1);
}

void TestConnectionTest::lateGreetingIsWaitedFor()
{
    MailTransport::setTimeouts(longTime, longTime, 1);
    ScriptedServer server;
    server.Greeting = "";
    QTimer::singleShot(shortGrace, &server, [&server] { server.say("220 here at last\r\n"); });
    QVERIFY2(smtp(accountLine(server.port(), u"N\t"_s + noLogin)), qPrintable(m_reason));
    QVERIFY(server.heard("EHLO"));
}

void TestConnectionTest::lateRefusalFails()
{
    MailTransport::setTimeouts(longTime, longTime, 1);
    ScriptedServer server;
    server.Greeting = "";
    QTimer::singleShot(shortGrace, &server, [&server] { server.say("554 not today\r\n"); });
    QVERIFY(!smtp(accountLine(server.port(), u"N\t"_s + noLogin)));
    verifyReason(u"554 not today"_s);
}

void TestConnectionTest::reasonIsEmptyWhenItWorkedAndNobodyNeedsToAskForIt()
{
    ScriptedServer server;
    const QString account = accountLine(server.port(), u"N\t"_s + noLogin);
    QVERIFY(smtp(account));
    QCOMPARE(m_reason, QString());
    QVERIFY(TestSmtpConnection(account, QString()));
    QVERIFY(!TestSmtpConnection(account + u'\t', QString()));
    QVERIFY(!TestProxyConnection(QString(), siteAt(server.port())));
}

void TestConnectionTest::connectionIsEndedInEachCase()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    QVERIFY(smtp(accountLine(server.port(), u"N\t"_s + noLogin)));
    QTRY_COMPARE(server.Ended, 1);
    QCOMPARE(server.Lines.last(), "QUIT");
    server.answer("AUTH", "535 no\r\n");
    QVERIFY(!smtp(accountLine(server.port(), u"N\t"_s + login)));
    QTRY_COMPARE(server.Ended, 2);
    QCOMPARE(server.Lines.last(), "QUIT");
}

void TestConnectionTest::hostAndPortAreTakenWithoutBlanksAtTheirEnds()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    QVERIFY2(smtp(u" 127.0.0.1 \t %1 \tN\tN\t\t\t\ta@x.org\t\t\t/SAEND"_s.arg(server.port()),
                  u"Socks5\t 127.0.0.1 \t %1 \tN\t\t\t/PSEND"_s.arg(proxy.port())),
             qPrintable(m_reason));
    QCOMPARE(server.Connections, 1);
}

void TestConnectionTest::portThatIsNoneFails_data()
{
    QTest::addColumn<QString>("port");
    for (const char *port : {"", "0", "-1", "65536", "smtp", "25x", "99999999999", "99999999999999999999"}) {
        QTest::newRow(port) << QString::fromLatin1(port);
    }
}

void TestConnectionTest::portThatIsNoneFails()
{
    QFETCH(const QString, port);
    QVERIFY(!smtp(u"127.0.0.1\t"_s + port + u"\tN\tN\t\t\t\ta@x.org\t\t\t/SAEND"_s));
    verifyReason(u"is not a port"_s);
    ScriptedServer server;
    QVERIFY(
        !smtp(accountLine(server.port(), u"N\t"_s + noLogin), u"Socks5\t127.0.0.1\t"_s + port + u"\tN\t\t\t/PSEND"_s));
    verifyReason(u"is not a port of the proxy"_s);
    QCOMPARE(server.Connections, 0);
}

void TestConnectionTest::oddHostFailsWithAReason_data()
{
    QTest::addColumn<QString>("host");
    // A label of more than 63 octets is known to be no name without asking anybody.
    QTest::newRow("unresolvable") << QString(64, u'x') + u".invalid"_s;
    QTest::newRow("unresolvable, not Latin") << QString(64, u'ж') + u".invalid"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << u"  "_s;
    QTest::newRow("blank within") << u"mail x.org"_s;
    QTest::newRow("300 characters") << QString(300, u'x');
    QTest::newRow("path") << u"mail.x.org/inbox"_s;
    QTest::newRow("address") << u"ada@x.org"_s;
    QTest::newRow("brackets") << u"[]"_s;
    QTest::newRow("line end") << u"x.org\r\nQUIT"_s;
    QTest::newRow("zero") << u"x"_s + QChar::Null + u"y"_s;
    QTest::newRow("lone surrogate") << QString(QChar(0xd800));
    QTest::newRow("direction mark") << u"\u202email.x.org"_s;
}

void TestConnectionTest::oddHostFailsWithAReason()
{
    QFETCH(const QString, host);
    QVERIFY(!smtp(accountLine(25, u"N\t"_s + login, host)));
    verifyReason(u"failed"_s);
    QVERIFY(!smtp(accountLine(portOfNobody(), u"N\t"_s + login),
                  u"Socks5\t"_s + host + u"\t1080\tY\tpat\t"_s + password + u"\t/PSEND"_s));
    verifyReason(u"proxy"_s);
}

void TestConnectionTest::refusedPortFails()
{
    const quint16 port = portOfNobody();
    QVERIFY(!smtp(accountLine(port, u"N\t"_s + login)));
    verifyReason(u"Connecting to 127.0.0.1, port %1, failed"_s.arg(port));
}

void TestConnectionTest::emptyProxyLineConnectsDirectly()
{
    ScriptedServer server;
    QVERIFY2(smtp(accountLine(server.port(), u"N\t"_s + noLogin), QString()), qPrintable(m_reason));
    QCOMPARE(server.Connections, 1);
}

void TestConnectionTest::accountIsReachedThroughTheProxyByName()
{
    ScriptedServer server;
    for (const auto &[host, asked] : {std::pair(u"mail.only-the-proxy.invalid"_s, "mail.only-the-proxy.invalid"),
                                      std::pair(u"bücher.invalid"_s, "xn--bcher-kva.invalid")}) {
        ChildServer proxy;
        QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--target"_s, QString::number(server.port())}),
                 qPrintable(proxy.fault()));
        QVERIFY2(smtp(accountLine(2525, u"N\t"_s + noLogin, host), proxyLine(proxy.port())), qPrintable(m_reason));
        QCOMPARE(proxy.waitForLine("ASKED "), QByteArray("name ") + asked + " 2525");
    }
    QCOMPARE(server.Connections, 2);
}

void TestConnectionTest::accountsProxyGetsUserAndPassword()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(u"pat"_s, password), qPrintable(proxy.fault()));
    const QString account = accountLine(server.port(), u"N\t"_s + noLogin);
    QVERIFY2(smtp(account, proxyLine(proxy.port(), u"Y\tpat\t"_s + password)), qPrintable(m_reason));
    QVERIFY(!smtp(account, proxyLine(proxy.port(), u"N\tpat\t"_s + password)));
    verifyReason(u"proxy"_s);
    QCOMPARE(server.Connections, 1);
}

void TestConnectionTest::secondTestWithinTheFirstIsRefused()
{
    ScriptedServer server;
    const QString account = accountLine(server.port(), u"N\t"_s + noLogin);
    QString second;
    QString third;
    server.Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            TestSmtpConnection(account, QString(), &second);
            TestProxyConnection(proxyLine(server.port()), siteAt(server.port()), &third);
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

void TestConnectionTest::exitOfTheProgramEndsTheTest()
{
    ScriptedServer server;
    server.Responder = [](const QByteArray &) {
        QCoreApplication::quit();
        return QByteArray();
    };
    bool works = true;
    QTimer::singleShot(0, this, [&] { works = smtp(accountLine(server.port(), u"N\t"_s + noLogin)); });
    QCoreApplication::exec();
    QVERIFY(!works);
    QCOMPARE(m_reason, QString());
    QVERIFY(server.heard("EHLO"));
    server.Responder = nullptr;
    QVERIFY2(smtp(accountLine(server.port(), u"N\t"_s + noLogin)), qPrintable(m_reason));
}

QTEST_GUILESS_MAIN(TestConnectionTest)
#include "test_connectiontest.moc"
