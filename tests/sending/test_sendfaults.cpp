#include "sending/servedbench.h"
#include "support/testclock.h"

#include <QRegularExpression>
#include <QScopeGuard>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;

/// Runs that fail or are cut short: what is told, what is logged, and what is never said.
class TestSendFaults : public QObject, private ServedBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void refusedMessageIsReportedByTheTransportFirst();
    void failedConnectionLogsDividerBeginErrorAndEndOnly();
    void lateRefusalTellsTheFailedConnectionAsAnEarlyOne_data();
    void lateRefusalTellsTheFailedConnectionAsAnEarlyOne();
    void lateGreetingIsNoFailure();
    void connectionThatIsLostAfterItStoodIsNoFailedConnection();
    void vanishedAccountEndsInAnEmptyServerAndPort();
    void accountOfBlanksFailsAsAVanishedOneDoes();
    void blankTransportErrorIsNeitherLoggedNorShown();
    void automaticRunLogsTheErrorAndShowsNoneOfIt();
    void errorsGoToTheMonthOfTheirMoment();
    void passwordIsNeverLogged();

    void exitDuringARunUnwindsWithoutAFurtherWord();
    void exitWhileConnectingUnwindsWithoutAFurtherWord();
    void exitInACheckSendsNothing();
};

void TestSendFaults::refusedMessageIsReportedByTheTransportFirst()
{
    m_server->answer("RCPT", "550 nobody of that name\r\n");
    ExpectedPrompts asked([](const QString &) {}); // the transport's own text is looked at below
    m_bench->run();
    QCOMPARE(asked.log().size(), 2);
    QVERIFY2(asked.log().at(0).contains(u"style 16"_s) && asked.log().at(0).contains(u"bob@y.org"_s) &&
                 asked.log().at(0).contains(u"550 nobody of that name"_s),
             qPrintable(asked.log().at(0)));
    QVERIFY(asked.log().at(1).startsWith(u"box SENT_UNSUCC style 48"_s));
    const QStringList log = m_bench->log();
    QVERIFY(log.at(log.size() - 3).startsWith(u"Error: "_s));
    QCOMPARE(log.at(log.size() - 2), u"text of SENT_UNSUCC"_s);
    QCOMPARE(log.last(), u"End: (moment)"_s);
    QVERIFY(m_server->Mails.isEmpty());
    QVERIFY(!m_bench->sender.state().Sending());
}

void TestSendFaults::failedConnectionLogsDividerBeginErrorAndEndOnly()
{
    m_server->Greeting = "554 not today\r\n";
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    const QString connection = u"text of CONN_FAILED 127.0.0.1:"_s + QString::number(m_server->port());
    QStringList log = m_bench->log();
    QCOMPARE(log.size(), 5);
    QVERIFY(log.at(2).startsWith(u"Error: "_s) && log.at(2).contains(u"554 not today"_s));
    log.removeAt(2);
    QCOMPARE(log, (QStringList{divider, u"Begin: (moment)"_s, u"Error: "_s + connection, u"End: (moment)"_s}));
    QCOMPARE(asked.log().size(), 2);
    QVERIFY(asked.log().at(0).contains(u"style 16"_s));
    QCOMPARE(asked.log().at(1), u"box CONN_FAILED style 48: "_s + connection);
    QCOMPARE(m_bench->window.statusText(), u" Ready."_s);
}

void TestSendFaults::lateRefusalTellsTheFailedConnectionAsAnEarlyOne_data()
{
    QTest::addColumn<bool>("oneByOne");
    QTest::addColumn<bool>("greets");
    QTest::newRow("to all, wrong password") << false << true;
    QTest::newRow("one by one, wrong password") << true << true;
    QTest::newRow("to all, lost") << false << false;
    QTest::newRow("one by one, lost") << true << false;
}

void TestSendFaults::lateRefusalTellsTheFailedConnectionAsAnEarlyOne()
{
    QFETCH(const bool, oneByOne);
    QFETCH(const bool, greets);
    const auto restore = qScopeGuard([] { quillon::MailTransport::setTimeouts(30'000, 60'000, 3'000); });
    quillon::MailTransport::setTimeouts(30'000, 30'000, 20);
    m_server->Greeting = "";
    m_server->Offers = {"AUTH PLAIN"};
    m_server->answer("AUTH", "535 wrong password\r\n");
    m_bench->useServer(u"127.0.0.1"_s, m_server->port(), u"N"_s, u"Y\tada\tsecret-word"_s);
    m_bench->window.setOneByOne(oneByOne);
    QTimer::singleShot(300, m_server.get(), [&] { greets ? m_server->say("220 at last\r\n") : m_server->hangUp(); });
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    const QString connection = u"text of CONN_FAILED 127.0.0.1:"_s + QString::number(m_server->port());
    QCOMPARE(asked.log().size(), 2);
    QVERIFY(asked.log().at(0).contains(u"style 16"_s));
    QCOMPARE(asked.log().at(1), u"box CONN_FAILED style 48: "_s + connection);
    const QStringList log = m_bench->log();
    QVERIFY2(log.at(log.size() - 3).startsWith(u"Error: "_s), qPrintable(log.join(u'\n')));
    QCOMPARE(log.at(log.size() - 3).contains(u"535 wrong password"_s), greets);
    QCOMPARE(log.mid(log.size() - 2), (QStringList{u"Error: "_s + connection, u"End: (moment)"_s}));
    QVERIFY(log.filter(u"text of SENT"_s).isEmpty());
    QCOMPARE(m_server->Connections, 1);
}

void TestSendFaults::lateGreetingIsNoFailure()
{
    const auto restore = qScopeGuard([] { quillon::MailTransport::setTimeouts(30'000, 60'000, 3'000); });
    quillon::MailTransport::setTimeouts(30'000, 30'000, 20);
    m_server->Greeting = "";
    QTimer::singleShot(300, m_server.get(), [&] { m_server->say("220 at last\r\n"); });
    sendWell();
    QCOMPARE(m_server->Mails.size(), 1);
    QCOMPARE(m_server->Connections, 1);
}

void TestSendFaults::connectionThatIsLostAfterItStoodIsNoFailedConnection()
{
    /// Lets the server end the session while the message is filled.
    class LosingClock : public TestClock {
    public:
        using TestClock::TestClock;
        [[nodiscard]] QDateTime now() const override
        {
            if (++calls == 3) {
                server->say("421 idle for too long\r\n");
                while (server->Ended == 0) {
                    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                }
            }
            return TestClock::now();
        }
        mutable int calls = 0;
        testsupport::ScriptedServer *server = nullptr;
    } clock(QDateTime::currentDateTime());
    clock.server = m_server.get();
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(asked.log().size(), 2);
    QVERIFY2(asked.log().at(0).contains(u"421 idle for too long"_s), qPrintable(asked.log().at(0)));
    QVERIFY2(asked.log().at(1).startsWith(u"box SENT_UNSUCC style 48"_s), qPrintable(asked.log().at(1)));
}

void TestSendFaults::vanishedAccountEndsInAnEmptyServerAndPort()
{
    writeFile(m_bench->tree.globals.paths.smtpFile, "");
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(asked.log().last(), u"box CONN_FAILED style 48: text of CONN_FAILED :"_s);
    QVERIFY(m_bench->log().contains(u"Error: text of CONN_FAILED :"_s));
}

void TestSendFaults::accountOfBlanksFailsAsAVanishedOneDoes()
{
    // The account in the file has empty fields, which such a text must not be taken for.
    m_bench->window.setText(Field::Account, u"  "_s);
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(asked.log().last(), u"box CONN_FAILED style 48: text of CONN_FAILED :"_s);
    QVERIFY(m_bench->log().contains(u"Error: text of CONN_FAILED :"_s));
    QCOMPARE(m_server->Connections, 0);
}

void TestSendFaults::blankTransportErrorIsNeitherLoggedNorShown()
{
    const ExpectedPrompts asked; // none may come
    const TransportEvents events = m_bench->sender.events();
    events.error(u" \r\n "_s);
    events.error(QString());
    QVERIFY(!QFile::exists(m_bench->logPath()));
}

void TestSendFaults::automaticRunLogsTheErrorAndShowsNoneOfIt()
{
    m_server->answer("RCPT", "550 nobody of that name\r\n");
    SendRun automatic(m_bench->rooms(), RunMode::Automatic);
    ExpectedPrompts asked;
    asked.expectBox(u"SENT_UNSUCC"_s, quillon::WarningBox);
    SendBench::run(automatic);
    QCOMPARE(m_bench->log().filter(QRegularExpression(u"^Error: .*550 nobody of that name"_s)).size(), 1);
}

void TestSendFaults::exitDuringARunUnwindsWithoutAFurtherWord()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("MAIL")) {
            QTimer::singleShot(0, this, [this] {
                m_bench->sender.end();
                m_server->say("250 ok\r\n"); // which comes too late to be heard
            });
            return QByteArray();
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked; // none may come
    m_bench->run();
    QTRY_COMPARE(m_server->Ended, 1);
    QVERIFY(!m_bench->sender.state().Sending());
    QVERIFY(!m_server->heard("RCPT"));
    QVERIFY(m_bench->log().contains(u"Subject: Hello"_s));
    QVERIFY(m_bench->log().filter(QRegularExpression(u"^(Error|End|text)"_s)).isEmpty());
}

void TestSendFaults::exitWhileConnectingUnwindsWithoutAFurtherWord()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            m_bench->sender.end(); // the answer goes out as if nothing were
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked; // none may come
    m_bench->run();
    QTRY_COMPARE(m_server->Ended, 1);
    QVERIFY(m_server->Mails.isEmpty());
    QCOMPARE(m_bench->log(), (QStringList{divider, u"Begin: (moment)"_s}));
}

void TestSendFaults::exitInACheckSendsNothing()
{
    m_bench->tree.useProxy(QString());
    ExpectedPrompts asked; // the options are not opened any more
    asked.expectBox(u"PROXY_ADDRESS"_s, quillon::InformationBox, quillon::BoxAnswer::Ok, std::nullopt,
                    [this] { m_bench->sender.end(); });
    m_bench->progress.makeVisible();
    m_bench->run();
    QVERIFY(m_bench->progress.visible); // the forms are not touched any more
    QCOMPARE(m_server->Connections, 0);
}

void TestSendFaults::errorsGoToTheMonthOfTheirMoment()
{
    TestClock clock(QDateTime(QDate(2026, 11, 30), QTime(23, 59, 59)));
    const QString november = m_bench->logPath();
    m_server->answer("RCPT", "550 nobody of that name\r\n");
    m_bench->progress.afterCounter = [&](const QString &) {
        clock.present = QDateTime(QDate(2026, 12, 1), QTime(0, 0));
    };
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QVERIFY(m_bench->log().filter(u"550 nobody"_s).size() == 1 && m_bench->log().size() == 1);
    const QByteArray first = contentOf(november);
    QVERIFY(first.contains("text of SENT_UNSUCC") && first.contains("End: ") && !first.contains("Error: "));
}

void TestSendFaults::passwordIsNeverLogged()
{
    m_server->Offers = {"AUTH PLAIN LOGIN"};
    m_server->answer("AUTH", "535 wrong: c2VjcmV0LXdvcmQ=\r\n");
    m_bench->useServer(u"127.0.0.1"_s, m_server->port(), u"N"_s, u"Y\tada\tsecret-word"_s);
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    const QString everything = m_bench->log().join(u'\n') + asked.log().join(u'\n');
    QVERIFY(!everything.contains(u"secret-word"_s));
    QVERIFY(!everything.contains(QString::fromLatin1(QByteArray("\0ada\0secret-word", 16).toBase64())));
}

QTEST_GUILESS_MAIN(TestSendFaults)
#include "test_sendfaults.moc"
