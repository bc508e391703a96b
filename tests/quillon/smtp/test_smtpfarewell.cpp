#include "quillon/smtp/dialogue.h"
#include "support/childserver.h"

#include <QTimer>

#include <array>
#include <sys/resource.h>

using namespace dialogue;

/// How a session ends, and how the next one waits for it: servers allow a host only so many connections at a time.
class TestSmtpFarewell : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_certificates.isValid(), qPrintable(m_certificates.fault())); }
    void init()
    {
        MailTransport::setTimeouts(60'000, 60'000, 60'000);
        SmtpTls::setAuthorities({m_certificates.authority()});
    }

    void sessionsAtAServerThatNeverClosesNeedFewDescriptors_data();
    void sessionsAtAServerThatNeverClosesNeedFewDescriptors();
    void overTlsTheEndIsTold_data();
    void overTlsTheEndIsTold();
    void theAnswerToACommandBeforeIsNotTheOneToQuit();
    void aServerThatEndsTheServiceIsLeftAtOnce();
    void aThirdConnectWaitsForTheFirstToBeCutOff();
    void anAnswerToQuitLetsTheNextGo();
    void oneThatIsBeingLeftIsNotWaitedFor();
    void aShortOneHasAMomentToEnd();
    void anotherServerIsNotWaitedFor();
    void connectionsInUseAreNotWaitedFor();
    void whoGivesUpWaitingDoesNotConnect();

private:
    /// Two sessions at the server that have said QUIT and are not answered.
    void leaveTwo(ScriptedServer &server)
    {
        server.StaysAfterQuit = true;
        server.answer("QUIT", "");
        std::array<Client, 2> clients;
        for (Client &client : clients) {
            QCOMPARE(client.connectTo(server.port()), 2);
        }
        for (Client &client : clients) {
            client.Transport.Quit();
        }
        QTRY_COMPARE(server.count("QUIT"), 2);
        QCOMPARE(server.Ended, 0);
    }

    testsupport::Certificates m_certificates;
};

namespace {

/// Lets the process open only so many files, sockets and the like for the time being.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t limit)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit lower{limit, m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &lower);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    DescriptorLimit(const DescriptorLimit &) = delete;
    DescriptorLimit &operator=(const DescriptorLimit &) = delete;

private:
    rlimit m_before{};
};

} // namespace

void TestSmtpFarewell::sessionsAtAServerThatNeverClosesNeedFewDescriptors_data()
{
    QTest::addColumn<int>("security");
    QTest::newRow("plain") << int(MailTransport::NoSecurity);
    QTest::newRow("STARTTLS") << int(MailTransport::StartTls);
    QTest::newRow("implicit TLS") << int(MailTransport::Ssl);
}

void TestSmtpFarewell::sessionsAtAServerThatNeverClosesNeedFewDescriptors()
{
    QFETCH(int, security);
    ScriptedServer server;
    server.StaysAfterQuit = true;
    server.Certificate = m_certificates.localhost();
    server.Key = m_certificates.localhostKey();
    server.ImplicitTls = security == MailTransport::Ssl;
    server.Offers = {"STARTTLS"};
    const DescriptorLimit limit(64); // both ends of each connection are of this process
    for (int i = 0; i < 150; ++i) {
        Client client;
        client.Transport.Security = security;
        client.connectTo(server.port(), u"localhost"_s);
        QVERIFY2(client.send(text), qPrintable(QString::number(i) + u": "_s + client.Errors.join(u'\n')));
    }
    QCOMPARE(server.Mails.size(), 150);
}

void TestSmtpFarewell::overTlsTheEndIsTold_data()
{
    QTest::addColumn<int>("security");
    QTest::newRow("STARTTLS") << int(MailTransport::StartTls);
    QTest::newRow("implicit TLS") << int(MailTransport::Ssl);
}

void TestSmtpFarewell::overTlsTheEndIsTold()
{
    QFETCH(int, security);
    testsupport::ChildServer server;
    QStringList arguments = {u"--stay"_s, u"--certificate"_s, m_certificates.localhostFile(), u"--key"_s,
                             m_certificates.localhostKeyFile()};
    if (security == MailTransport::StartTls) {
        arguments += u"--starttls"_s;
    }
    QVERIFY2(server.startPython(u"sink_server.py"_s, arguments), qPrintable(server.fault()));
    Client client;
    client.Transport.Security = security;
    QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    client.Transport.Quit();
    QCOMPARE(server.waitForLine("END "), "clean");
}

void TestSmtpFarewell::theAnswerToACommandBeforeIsNotTheOneToQuit()
{
    // A recipient is refused; the taking back is not answered before QUIT comes behind it.
    ScriptedServer server;
    server.StaysAfterQuit = true;
    server.answer("RCPT", "550 no\r\n");
    server.answer("RSET", "");
    server.answer("QUIT", "250 taken back\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    client.Transport.Quit();
    QTRY_COMPARE(server.count("QUIT"), 1);
    waitFor(elapsed(200));
    QCOMPARE(server.Ended, 0);
    server.say("250 whatever it calls its farewell\r\n");
    bool cutOff = false;
    QTimer::singleShot(2500, &server, [&cutOff] { cutOff = true; });
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(!cutOff);
}

void TestSmtpFarewell::aServerThatEndsTheServiceIsLeftAtOnce()
{
    for (const QByteArray &answer : {QByteArray("421 4.3.2 going down\r\n"), QByteArray("221 bye\r\n")}) {
        ScriptedServer server;
        server.StaysAfterQuit = true;
        server.answer("RCPT", "550 no\r\n");
        server.answer("RSET", "");
        server.answer("QUIT", answer); // and no word about RSET
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QVERIFY(!client.send(text));
        client.Transport.Quit();
        bool cutOff = false;
        QTimer::singleShot(2500, &server, [&cutOff] { cutOff = true; });
        QTRY_COMPARE(server.Ended, 1);
        QVERIFY(!cutOff);
    }
}

void TestSmtpFarewell::aThirdConnectWaitsForTheFirstToBeCutOff()
{
    ScriptedServer server;
    leaveTwo(server);
    int ticks = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, &server, [&] {
        ++ticks;
        if (ticks <= 10) {
            QCOMPARE(server.Connections, 2);
        }
    });
    ticker.start(100);
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(ticks > 10, qPrintable(QString::number(ticks)));
    QTRY_VERIFY(server.Ended >= 1);
    QVERIFY(client.Errors.isEmpty());
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
}

void TestSmtpFarewell::anAnswerToQuitLetsTheNextGo()
{
    ScriptedServer server;
    leaveTwo(server);
    QTimer::singleShot(200, &server, [&server] { server.say("221 bye\r\n"); }); // to one of them
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(server.Ended <= 1);
    QTRY_VERIFY(server.Ended >= 1);
    QCOMPARE(server.Connections, 3);
}

void TestSmtpFarewell::oneThatIsBeingLeftIsNotWaitedFor()
{
    // The time of an answer on a slow line would otherwise be lost with each mail.
    ScriptedServer server;
    server.StaysAfterQuit = true;
    server.answer("QUIT", "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    client.Transport.Quit();
    QCOMPARE(client.connectTo(server.port()), 2);
    QCOMPARE(server.Ended, 0);
}

void TestSmtpFarewell::aShortOneHasAMomentToEnd()
{
    // A server on a fast line has not yet forgotten the session before: it would count three.
    ScriptedServer server;
    server.StaysAfterQuit = true;
    server.answer("QUIT", "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    client.Transport.Quit();
    QElapsedTimer since;
    since.start();
    QCOMPARE(client.connectTo(server.port()), 2);
    const qint64 waited = since.elapsed();
    QVERIFY2(waited >= 95, qPrintable(QString::number(waited))); // no limit upwards: the machine may be busy
    QCOMPARE(server.Ended, 0);
}

void TestSmtpFarewell::anotherServerIsNotWaitedFor()
{
    ScriptedServer server;
    ScriptedServer another;
    leaveTwo(server);
    Client client;
    QCOMPARE(client.connectTo(another.port()), 2);
    QCOMPARE(server.Ended, 0);
    QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2); // a name of its own may be another machine
    QCOMPARE(server.Ended, 0);
}

void TestSmtpFarewell::connectionsInUseAreNotWaitedFor()
{
    ScriptedServer server;
    std::array<Client, 3> clients;
    for (Client &client : clients) {
        QCOMPARE(client.connectTo(server.port()), 2);
    }
    QCOMPARE(server.Connections - server.Ended, 3);
}

void TestSmtpFarewell::whoGivesUpWaitingDoesNotConnect()
{
    ScriptedServer server;
    leaveTwo(server);
    Client client;
    auto pending = client.Transport.Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    QCOMPARE(client.Transport.State(), 1);
    client.Transport.Quit();
    waitFor(std::move(pending));
    QCOMPARE(client.Transport.State(), 0);
    {
        const auto gone = std::make_unique<Client>();
        const auto never = gone->Transport.Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    }
    QTRY_COMPARE_WITH_TIMEOUT(server.Ended, 2, 60'000);
    QCOMPARE(client.connectTo(server.port()), 2);
    QCOMPARE(server.Connections, 3);
    QVERIFY(client.Errors.isEmpty());
}

QTEST_GUILESS_MAIN(TestSmtpFarewell)
#include "test_smtpfarewell.moc"
