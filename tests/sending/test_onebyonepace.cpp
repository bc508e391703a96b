#include "sending/onebyonebench.h"
#include "support/testclock.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;

/// The wait in front of each mail, and what ends a run before its last one: Cancel and the exit.
class TestOneByOnePace : public QObject, private OneByOneBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void intervalZeroNeitherWaitsNorSaysSo();
    void intervalStandsInFrontOfEveryMail();
    void intervalThatIsNoNumberDoesNotWait();
    void fractionsAreWaitedAndHugeIntervalsAreBounded();
    void windowIsAliveBeforeTheWait();
    void windowIsAliveBetweenTheWaitsNoticeAndTheWait();
    void connectionIsEndedBeforeTheWait();
    void intervalIsShownAsItIsWritten();
    void intervalThatIsNoNumberIsAFaultOfEachMail();
    void whatTheUserDoesAsAMailBeginsReachesItsMacrosAndNotItsText();

    void cancelInTheWaitStillSendsThatMail();
    void cancelInAMailUnderWayLetsItEnd();
    void cancelBeforeTheFirstPassSendsNothing();
    void cancelledRunHasNoResultEntryAndNoBox();
    void cancelWhileTheMessageIsFilledStopsBeforeTheFirstMail();
    void exitUnwindsWithoutAFurtherWord();
    void exitUnwindsWithoutAFurtherWord_data();
};

void TestOneByOnePace::intervalZeroNeitherWaitsNorSaysSo()
{
    const TestClock clock(QDateTime::currentDateTime());
    runAndExpect(3);
    QCOMPARE(clock.waits, QList<qint64>());
    QVERIFY(m_bench->progress.activities.filter(u"interval"_s).isEmpty());
}

void TestOneByOnePace::intervalStandsInFrontOfEveryMail()
{
    TestClock clock(QDateTime::currentDateTime());
    QList<qsizetype> mailsBefore;
    clock.whileWaiting = [&] { mailsBefore.append(m_server->Mails.size()); };
    m_bench->tree.globals.settings.set(Setting::OboInterval, u"5"_s);
    runAndExpect(3);
    QCOMPARE(clock.waits, (QList<qint64>{5000, 5000, 5000}));
    QCOMPARE(mailsBefore, (QList<qsizetype>{0, 1, 2}));
    QCOMPARE(m_bench->progress.activities.count(u"Making OBO sending interval: 5 seconds..."_s), 3);
}

void TestOneByOnePace::intervalThatIsNoNumberDoesNotWait()
{
    const TestClock clock(QDateTime::currentDateTime());
    for (const QString &text : {QString(), u"soon"_s, u"inf"_s, u"nan"_s}) {
        m_bench->tree.globals.settings.set(Setting::OboInterval, text);
        runAndExpect(3);
    }
    QCOMPARE(clock.waits, QList<qint64>());
}

void TestOneByOnePace::cancelInTheWaitStillSendsThatMail()
{
    TestClock clock(QDateTime::currentDateTime());
    clock.whileWaiting = [this] { m_bench->sender.requestStop(); };
    m_bench->tree.globals.settings.set(Setting::OboInterval, u"2"_s);
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 1);
    QCOMPARE(clock.waits.size(), 1);
}

void TestOneByOnePace::cancelInAMailUnderWayLetsItEnd()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("RCPT TO:<cy@")) {
            m_bench->sender.requestStop();
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 2);
    QVERIFY(!m_bench->sender.state().pblnStop());
}

void TestOneByOnePace::cancelBeforeTheFirstPassSendsNothing()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            m_bench->sender.requestStop(); // while the account is being proved
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 0);
    QCOMPARE(m_server->Connections, 1);
}

void TestOneByOnePace::cancelledRunHasNoResultEntryAndNoBox()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text.startsWith(u"Sending 1/"_s)) {
            m_bench->sender.requestStop();
        }
    };
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(result(), QStringList{u"End: (moment)"_s});
    QVERIFY(!m_bench->progress.visible);
    QVERIFY(!m_bench->sender.state().Sending());
    QCOMPARE(m_bench->window.statusText(), u" Ready."_s);
}

void TestOneByOnePace::exitUnwindsWithoutAFurtherWord_data()
{
    QTest::addColumn<QString>("stage");
    QTest::addColumn<qsizetype>("mails");
    QTest::newRow("in the yield") << u"yield"_s << qsizetype(0);
    QTest::newRow("in the wait") << u"wait"_s << qsizetype(0);
    QTest::newRow("while connecting") << u"EHLO"_s << qsizetype(0);
    QTest::newRow("while sending") << u"RCPT"_s << qsizetype(1);
}

void TestOneByOnePace::exitUnwindsWithoutAFurtherWord()
{
    QFETCH(const QString, stage);
    QFETCH(const qsizetype, mails);
    TestClock clock(QDateTime::currentDateTime());
    m_bench->tree.globals.settings.set(Setting::OboInterval, u"1"_s);
    qsizetype shown = 0;
    const auto exit = [this, &shown] {
        shown = m_bench->progress.activities.size();
        m_bench->sender.end();
    };
    m_bench->progress.afterCounter = [&](const QString &text) {
        if (stage == u"yield" && text.startsWith(u"Sending 1/"_s)) {
            QMetaObject::invokeMethod(this, exit, Qt::QueuedConnection);
        }
    };
    clock.whileWaiting = [&] {
        if (stage == u"wait") {
            exit();
        }
    };
    m_server->Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (m_server->Connections == 2 && line.startsWith(stage.toLatin1())) {
            exit();
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked; // none may come
    m_bench->run();
    QTRY_COMPARE(m_server->Ended, m_server->Connections);
    QVERIFY(m_server->Mails.size() <= mails);
    QCOMPARE(m_bench->progress.activities.size(), shown); // the forms are not touched any more
    QVERIFY(m_bench->log().contains(u"Subject: Hello"_s));
    QVERIFY(m_bench->log().filter(QRegularExpression(u"^(Error|End|text)"_s)).isEmpty());
}

void TestOneByOnePace::windowIsAliveBeforeTheWait()
{
    TestClock clock(QDateTime::currentDateTime());
    m_bench->tree.globals.settings.set(Setting::OboInterval, u"1"_s);
    int handled = 0;
    QList<int> handledBefore;
    m_bench->progress.afterCounter = [&](const QString &text) {
        if (text.startsWith(u"Sending "_s) && text.contains(u'/')) {
            QMetaObject::invokeMethod(
                this, [&] { ++handled; }, Qt::QueuedConnection);
        }
    };
    clock.whileWaiting = [&] { handledBefore.append(handled); };
    runAndExpect(3);
    QCOMPARE(handledBefore, (QList<int>{1, 2, 3}));
}

void TestOneByOnePace::windowIsAliveBetweenTheWaitsNoticeAndTheWait()
{
    /// Tells when a wait is asked for, before any turn of the event loop that it takes.
    class AskedClock : public TestClock {
    public:
        using TestClock::TestClock;
        quillon::Pending<> wait(qint64 milliseconds) override
        {
            asked();
            return TestClock::wait(milliseconds);
        }
        std::function<void()> asked;
    } clock(QDateTime::currentDateTime());
    m_bench->tree.globals.settings.set(Setting::OboInterval, u"1"_s);
    QStringList order;
    m_bench->progress.afterActivity = [&](const QString &text) {
        if (text.startsWith(u"Making OBO"_s)) {
            order.append(u"notice"_s);
            QTimer::singleShot(0, this, [&] { order.append(u"window"_s); });
        }
    };
    clock.asked = [&] { order.append(u"wait"_s); };
    runAndExpect(3);
    const QStringList once{u"notice"_s, u"window"_s, u"wait"_s};
    QCOMPARE(order, once + once + once);
}

void TestOneByOnePace::connectionIsEndedBeforeTheWait()
{
    TestClock clock(QDateTime::currentDateTime());
    m_bench->tree.globals.settings.set(Setting::OboInterval, u"60"_s);
    QList<int> connections;
    clock.whileWaiting = [&] {
        // No server has to hold a connection open for the length of an interval.
        QTRY_COMPARE(m_server->count("QUIT"), clock.waits.size());
        QTRY_COMPARE(m_server->Ended, m_server->Connections);
        connections.append(m_server->Connections);
    };
    runAndExpect(3);
    QCOMPARE(connections, (QList<int>{1, 2, 3}));
}

void TestOneByOnePace::intervalIsShownAsItIsWritten()
{
    const TestClock clock(QDateTime::currentDateTime());
    for (const QString &text : {u"007"_s, u"1.50"_s, u"-1"_s}) {
        m_bench->progress.activities.clear();
        m_bench->tree.globals.settings.set(Setting::OboInterval, text);
        runAndExpect(3);
        QCOMPARE(m_bench->progress.activities.count(u"Making OBO sending interval: "_s + text + u" seconds..."_s), 3);
    }
    for (const QString &text : {QString(), u"0.0"_s, u"-0"_s, u"soon"_s}) {
        m_bench->progress.activities.clear();
        m_bench->tree.globals.settings.set(Setting::OboInterval, text);
        runAndExpect(3);
        QVERIFY(m_bench->progress.activities.filter(u"interval"_s).isEmpty());
    }
}

void TestOneByOnePace::intervalThatIsNoNumberIsAFaultOfEachMail()
{
    const TestClock clock(QDateTime::currentDateTime());
    for (const auto &[text, faults] : {std::pair(QString(), 0), std::pair(u"0"_s, 0), std::pair(u"2"_s, 0),
                                       std::pair(u"soon"_s, 3), std::pair(u"inf"_s, 3), std::pair(u"nan"_s, 3)}) {
        const int before = quillon::faultCount();
        m_bench->tree.globals.settings.set(Setting::OboInterval, text);
        runAndExpect(3);
        QCOMPARE(quillon::faultCount() - before, faults);
    }
}

void TestOneByOnePace::whatTheUserDoesAsAMailBeginsReachesItsMacrosAndNotItsText()
{
    m_bench->window.setText(Field::PlainContent, u"old {club}"_s);
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text.startsWith(u"Sending 2/"_s)) {
            QTimer::singleShot(0, this, [this] {
                m_bench->window.setText(Field::PlainContent, u"new {club}"_s);
                m_bench->tree.globals.lines.AppendLine(m_bench->tree.globals.paths.macrosFile,
                                                       u"{club}\tChess\tOther Information\tU"_s);
            });
        }
    };
    runAndExpect(3);
    QVERIFY(m_server->Mails.at(0).contains("old {club}"));
    QVERIFY(m_server->Mails.at(1).contains("old Chess"));
    QVERIFY(m_server->Mails.at(2).contains("new Chess"));
}

void TestOneByOnePace::fractionsAreWaitedAndHugeIntervalsAreBounded()
{
    TestClock clock(QDateTime::currentDateTime());
    for (const auto &[text, milliseconds] :
         {std::pair(u"1.5"_s, 1500LL), std::pair(u"1e30"_s, 1'000'000'000LL), std::pair(u"-4"_s, 0LL),
          std::pair(u"0.0019"_s, 1LL), std::pair(u"999999"_s, 999'999'000LL), std::pair(u"1000000"_s, 1'000'000'000LL),
          std::pair(u"1000001"_s, 1'000'000'000LL)}) {
        clock.waits.clear();
        m_bench->tree.globals.settings.set(Setting::OboInterval, text);
        runAndExpect(3);
        QCOMPARE(clock.waits, (QList<qint64>{milliseconds, milliseconds, milliseconds}));
    }
}

void TestOneByOnePace::cancelWhileTheMessageIsFilledStopsBeforeTheFirstMail()
{
    /// Lets the user press Cancel at the moment that the message's date is filled in.
    class CancellingClock : public TestClock {
    public:
        using TestClock::TestClock;
        [[nodiscard]] QDateTime now() const override
        {
            if (++calls == 3) {
                QMetaObject::invokeMethod(qApp, cancel, Qt::QueuedConnection);
            }
            return TestClock::now();
        }
        mutable int calls = 0;
        std::function<void()> cancel;
    } clock(QDateTime::currentDateTime());
    clock.cancel = [this] { m_bench->sender.requestStop(); };
    const ExpectedPrompts asked;
    m_bench->run();
    QVERIFY(clock.calls > 3);
    QCOMPARE(m_server->Mails.size(), 0);
    QCOMPARE(result(), QStringList{u"End: (moment)"_s});
}

QTEST_GUILESS_MAIN(TestOneByOnePace)
#include "test_onebyonepace.moc"
