#include "quillon/smtp/dialogue.h"
#include "quillon/smtp/slowserver.h"

#include <QTcpServer>
#include <QTimer>

using namespace dialogue;

/// How long a peer may take. What is slow but not silent for too long goes on; each of these takes longer in all than
/// the silence that is allowed. The unit is long enough that a busy machine does not stretch one to several.
class TestSmtpTimes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(never, unit, never); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void theAnswerToTheEndOfAMailMayTakeTenTimesAsLong();
    void theTimeForTheEndOfAMailEndsWithIt();
    void theSilenceAllowedIsNamedInSeconds_data();
    void theSilenceAllowedIsNamedInSeconds();
    void theGraceCountsInTheSilenceThatIsTold_data();
    void theGraceCountsInTheSilenceThatIsTold();
    void anIdleSessionStandsForAnyTime();
    void everyPieceOfAnAnswerBeginsTheSilenceAnew();
    void everyAnswerBeginsTheSilenceAnew();
    void aReplyThatNeverEndsIsNotAwaitedForEver_data();
    void aReplyThatNeverEndsIsNotAwaitedForEver();
    void theReplyToTheEndOfAMailMayTakeTwiceAsLong();
    void everyReplyHasItsOwnTime();
    void theTimeOfAReplyIsNotThatOfAnIdleSession();
    void aMailMayGoOutSlowly();
    void theTimeThatTheProgramTakesIsNotThePeers_data();
    void theTimeThatTheProgramTakesIsNotThePeers();
    void aSilentPeerIsLostBetweenTwoCalls();
    void theTimeForConnectingIsItsOwn();
    void aPeerThatIgnoresQuitIsCutOff();
    void theGraceCountsFromTheConnectionOnly();
    void theGraceIsOnlyForAPeerThatSaidNothing_data();
    void theGraceIsOnlyForAPeerThatSaidNothing();

private:
    static constexpr int unit = 400;
    static constexpr int never = 60'000;

    testsupport::Certificates m_certificates;
};

namespace {

/// Lets the time pass while the event loop stands, as when the program itself is busy.
void standStill(int milliseconds)
{
    QTcpServer nobody;
    if (nobody.listen(QHostAddress::LocalHost)) {
        nobody.waitForNewConnection(milliseconds);
    }
}

} // namespace

void TestSmtpTimes::theAnswerToTheEndOfAMailMayTakeTenTimesAsLong()
{
    ScriptedServer server;
    server.Responder = [&server](const QByteArray &line) -> std::optional<QByteArray> {
        if (line != ".") {
            return std::nullopt;
        }
        QTimer::singleShot(unit * 5 / 2, &server, [&server] { server.say("250 looked through\r\n"); });
        return QByteArray();
    };
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(client.Transport.State(), 2);
}

void TestSmtpTimes::theTimeForTheEndOfAMailEndsWithIt()
{
    // Its first mail is answered late, so that the long time has begun; the next silence is a short one again.
    ScriptedServer server;
    bool muchLater = false;
    server.Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (line == ".") {
            QTimer::singleShot(unit * 3 / 2, &server, [&server] { server.say("250 looked through\r\n"); });
            return QByteArray();
        }
        if (line.startsWith("MAIL") && server.count("MAIL") == 2) {
            QTimer::singleShot(unit * 5, &server, [&muchLater] { muchLater = true; });
            return QByteArray();
        }
        return std::nullopt;
    };
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QVERIFY(!client.send(text));
    QVERIFY(!muchLater);
    QCOMPARE(client.Errors, QStringList{u"Sending the sender (MAIL FROM) failed: there was no answer for 1 s (its last "
                                        "answer was “250 looked through”)."_s});
}

void TestSmtpTimes::theSilenceAllowedIsNamedInSeconds_data()
{
    QTest::addColumn<int>("silence");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("seconds");
    QTest::newRow("a whole one") << 1000 << QByteArray("MAIL") << u"1 s"_s;
    QTest::newRow("more than one") << 1001 << QByteArray("MAIL") << u"2 s"_s;
    QTest::newRow("ten times") << 200 << QByteArray(".") << u"2 s"_s;
}

void TestSmtpTimes::theSilenceAllowedIsNamedInSeconds()
{
    QFETCH(int, silence);
    QFETCH(QByteArray, line);
    QFETCH(QString, seconds);
    MailTransport::setTimeouts(never, silence, never);
    ScriptedServer server;
    server.answer(line, "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"there was no answer for "_s + seconds),
             qPrintable(client.Errors.first()));
}

void TestSmtpTimes::theGraceCountsInTheSilenceThatIsTold_data()
{
    QTest::addColumn<bool>("sends");
    QTest::newRow("Send") << true;
    QTest::newRow("Accepted") << false;
}

void TestSmtpTimes::theGraceCountsInTheSilenceThatIsTold()
{
    // The peer has said nothing since it was reached: for the grace, and then for the time that it is given.
    QFETCH(const bool, sends);
    MailTransport::setTimeouts(never, 1000, 2000);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 0);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().endsWith(u"there was no answer for 1 s."), qPrintable(client.Errors.first()));
    MailTransport::setTimeouts(never, 2000, 1000);
    Client other;
    QCOMPARE(other.connectTo(server.port()), 2);
    QVERIFY(sends ? !other.send(text) : !other.accepted());
    QCOMPARE(other.Errors.size(), 1);
    QVERIFY2(other.Errors.first().endsWith(u"there was no answer for 3 s."), qPrintable(other.Errors.first()));
}

void TestSmtpTimes::anIdleSessionStandsForAnyTime()
{
    // As between two mails of which the second is packed: no answer is awaited, whatever was before.
    ScriptedServer server;
    server.answer("RCPT TO:<bad@b.c>", "550 no\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    waitFor(elapsed(unit * 2));
    QVERIFY(client.accepted());
    waitFor(elapsed(unit * 2));
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    waitFor(elapsed(unit * 2));
    QVERIFY(!client.send(text, {u"bad@b.c"_s}));
    waitFor(elapsed(unit * 2));
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(client.Errors.size(), 1);
    QCOMPARE(server.Connections, 1);
}

void TestSmtpTimes::everyPieceOfAnAnswerBeginsTheSilenceAnew()
{
    ScriptedServer server;
    server.Greeting = "220-one\r\n";
    int pieces = 0;
    QTimer teller;
    connect(&teller, &QTimer::timeout, &server, [&] {
        ++pieces; // half a line at a time
        server.say(pieces == 5 ? "220 five\r\n" : pieces % 2 == 1 ? "22" : "0-more\r\n");
        if (pieces == 5) {
            teller.stop();
        }
    });
    teller.start(unit / 2);
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(pieces, 5);
}

void TestSmtpTimes::everyAnswerBeginsTheSilenceAnew()
{
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    server.answer("RCPT", "");
    const QStringList to{u"1@b.c"_s, u"2@b.c"_s, u"3@b.c"_s, u"4@b.c"_s, u"5@b.c"_s};
    qsizetype answers = 0;
    QTimer teller;
    connect(&teller, &QTimer::timeout, &server, [&] {
        if (++answers == to.size()) {
            teller.stop();
        }
        server.say("250 one more\r\n");
    });
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    teller.start(unit / 2);
    QVERIFY2(client.send(text, to), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(server.Mails.size(), 1);
}

void TestSmtpTimes::aReplyThatNeverEndsIsNotAwaitedForEver_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QString>("error");
    QTest::newRow("greeting")
        << QByteArray() << u"Waiting for the greeting of 127.0.0.1 failed: its answer was not complete after 1 s."_s;
    QTest::newRow("EHLO") << QByteArray("EHLO")
                          << u"Greeting 127.0.0.1 (EHLO) failed: its answer was not complete after 1 s (its last "
                             "answer was “220 scripted.example ESMTP”)."_s;
    QTest::newRow("MAIL") << QByteArray("MAIL")
                          << u"Sending the sender (MAIL FROM) failed: its answer was not complete after 1 s (its last "
                             "answer was “250 scripted.example”)."_s;
    QTest::newRow("end") << QByteArray(".")
                         << u"Waiting for the message to be accepted failed: its answer was not complete after 2 s "
                            "(its last answer was “354 go ahead”)."_s;
}

void TestSmtpTimes::aReplyThatNeverEndsIsNotAwaitedForEver()
{
    QFETCH(QByteArray, command);
    QFETCH(QString, error);
    MailTransport::setTimeouts(never, unit, never, 1000);
    ScriptedServer server;
    QTimer dripper;
    bool tooLate = false;
    connect(&dripper, &QTimer::timeout, &server, [&server] { server.say("2"); });
    const auto drip = [&] {
        dripper.start(unit / 4);
        QTimer::singleShot(10'000, &server, [&] { tooLate = true; });
    };
    if (command.isEmpty()) {
        server.Greeting = "2";
        drip();
    } else {
        server.Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
            if (!line.startsWith(command)) {
                return std::nullopt;
            }
            drip();
            return QByteArray("250-more\r\n");
        };
    }
    Client client;
    client.connectTo(server.port());
    QVERIFY(!client.send(text));
    QVERIFY(!tooLate);
    QCOMPARE(client.Errors, QStringList{error});
}

void TestSmtpTimes::theReplyToTheEndOfAMailMayTakeTwiceAsLong()
{
    MailTransport::setTimeouts(never, unit, never, unit * 2);
    ScriptedServer server;
    server.answer(".", "250-looking through\r\n");
    int pieces = 0;
    QTimer teller;
    connect(&teller, &QTimer::timeout, &server, [&] {
        if (server.Mails.isEmpty()) {
            return;
        }
        server.say(++pieces == 6 ? "250 taken\r\n" : "250-more\r\n");
        if (pieces == 6) {
            teller.stop();
        }
    });
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    teller.start(unit / 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(pieces, 6);
}

void TestSmtpTimes::everyReplyHasItsOwnTime()
{
    MailTransport::setTimeouts(never, unit * 2, never, unit * 2);
    ScriptedServer server;
    server.Offers = {"PIPELINING"};
    server.answer("RCPT", "");
    server.answer("MAIL", "");
    const QStringList to{u"1@b.c"_s, u"2@b.c"_s};
    int answers = 0;
    QTimer teller;
    connect(&teller, &QTimer::timeout, &server, [&] {
        if (++answers == 3) {
            teller.stop();
        }
        server.say("250 one more\r\n");
    });
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    teller.start(unit);
    QVERIFY2(client.send(text, to), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(answers, 3);
}

void TestSmtpTimes::theTimeOfAReplyIsNotThatOfAnIdleSession()
{
    MailTransport::setTimeouts(never, unit, never, unit);
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    waitFor(elapsed(unit * 2));
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    waitFor(elapsed(unit * 2));
    QVERIFY(client.accepted());
}

void TestSmtpTimes::aMailMayGoOutSlowly()
{
    SlowServer server(4'000'000, unit / 2);
    Client client;
    QCOMPARE(client.connectTo(server.serverPort()), 2);
    QVERIFY2(client.send(largeText()), qPrintable(client.Errors.join(u'\n')));
    QVERIFY(server.Accepted);
    QCOMPARE(server.Taken, largeText().size() + 3);
    QVERIFY2(server.Rests > 8, qPrintable(QString::number(server.Rests)));
}

void TestSmtpTimes::theTimeThatTheProgramTakesIsNotThePeers_data()
{
    QTest::addColumn<bool>("sends");
    QTest::newRow("Send") << true;
    QTest::newRow("Accepted") << false;
}

void TestSmtpTimes::theTimeThatTheProgramTakesIsNotThePeers()
{
    QFETCH(bool, sends);
    MailTransport::setTimeouts(never, unit, shortGrace, unit);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    standStill(unit * 3 / 2);
    QTimer::singleShot(unit / 4, &server, [&server] { server.say("220 at last\r\n"); });
    QVERIFY2(sends ? client.send(text) : client.accepted(), qPrintable(client.Errors.join(u'\n')));
}

void TestSmtpTimes::aSilentPeerIsLostBetweenTwoCalls()
{
    MailTransport::setTimeouts(never, unit, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QTRY_COMPARE(client.Transport.State(), 0);
    QVERIFY(client.Errors.isEmpty());
    QVERIFY(!client.accepted());
    QCOMPARE(client.Errors,
             QStringList{u"Waiting for the greeting of 127.0.0.1 failed: there was no answer for 1 s."_s});
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpTimes::theTimeForConnectingIsItsOwn()
{
    // The proxy is there and says nothing: connecting ends neither with the time for silence nor with the grace.
    MailTransport::setTimeouts(unit * 2, unit / 4, unit / 4);
    ScriptedServer proxy;
    proxy.Greeting = "";
    bool later = false;
    Client client;
    client.Transport.ProxyServer = u"127.0.0.1"_s;
    client.Transport.ProxyPort = proxy.port();
    QTimer::singleShot(unit, &proxy, [&later] { later = true; });
    QCOMPARE(client.connectTo(25), 0);
    QVERIFY(later);
    QCOMPARE(client.Errors, QStringList{u"Connecting to 127.0.0.1, port 25, through the proxy 127.0.0.1, port %1, "
                                        "failed: there was no answer for 1 s."_s.arg(proxy.port())});
}

void TestSmtpTimes::aPeerThatIgnoresQuitIsCutOff()
{
    SlowServer server(1000, 0);
    Client client;
    QCOMPARE(client.connectTo(server.serverPort()), 2);
    client.Transport.Quit();
    QCOMPARE(client.Transport.State(), 0);
    QTRY_VERIFY(server.LastLine == "QUIT\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(server.Closed, 60'000);
}

void TestSmtpTimes::theGraceCountsFromTheConnectionOnly()
{
    // TLS comes about within the grace, and the peer says nothing then: that is no second grace.
    QVERIFY2(m_certificates.isValid(), qPrintable(m_certificates.fault()));
    SmtpTls::setAuthorities({m_certificates.authority()});
    MailTransport::setTimeouts(never, never, unit * 2);
    ScriptedServer server;
    server.Greeting = "";
    bool secondGrace = false;
    QTimer::singleShot(unit * 3, &server, [&secondGrace] { secondGrace = true; });
    server.ImplicitTls = true;
    server.Certificate = m_certificates.localhost();
    server.Key = m_certificates.localhostKey();
    server.pauseAccepting();
    QTimer::singleShot(unit * 3 / 2, &server, [&server] { server.resumeAccepting(); });
    Client client;
    client.Transport.Security = MailTransport::Ssl;
    QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2);
    QVERIFY(client.Progress.last().startsWith(u"Waiting for the greeting"_s));
    QVERIFY(!secondGrace);
}

void TestSmtpTimes::theGraceIsOnlyForAPeerThatSaidNothing_data()
{
    QTest::addColumn<QByteArray>("greeting");
    QTest::newRow("one octet") << QByteArray("2");
    QTest::newRow("a line end") << QByteArray("\r\n");
    QTest::newRow("a greeting") << QByteArray("220 x\r\n");
}

void TestSmtpTimes::theGraceIsOnlyForAPeerThatSaidNothing()
{
    QFETCH(QByteArray, greeting);
    MailTransport::setTimeouts(never, unit, shortGrace);
    ScriptedServer server;
    server.Greeting = greeting;
    server.answer("EHLO", "");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 0);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(client.Errors.first().contains(u"there was no answer"));
}

QTEST_GUILESS_MAIN(TestSmtpTimes)
#include "test_smtptimes.moc"
