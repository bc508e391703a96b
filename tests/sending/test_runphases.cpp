#include "sending/onebyonebench.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace corvane;

using Phase = RunState::Phase;
Q_DECLARE_METATYPE(Phase)

/// The phases of a run: when each is entered, what Cancel does in it, and what the status line is told.
class TestRunPhases : public QObject, private OneByOneBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void eachPhaseAnswersForItself();
    void eachPhaseAnswersForItself_data();
    void oneByOneRunGoesThroughItsPhases();
    void wholeListRunGoesThroughItsPhases();
    void failedCheckIsNotToldAndHidesTheProgress();
    void failedConnectionIsToldInClosing();
    void statusLineIsToldOfTheRunAsLongAsItSaysSo();
    void cancelInTheLastMailLeavesTheResult();
    void cancelBeforeAWholeListSendStopsNothing();
    void cancelAfterwardsDoesNotReachTheNextRun();

private:
    [[nodiscard]] const RunState &state() const { return m_bench->sender.state(); }
    [[nodiscard]] QStringList ends() const { return m_bench->log().filter(QRegularExpression(u"^End: "_s)); }
    void note() { m_phases.append(state().phase()); }
    /// Lets everything that the event loop has to do be done, as far as it goes without an answer to a box.
    static void settle()
    {
        for (int turn = 0; turn < 100; ++turn) {
            QCoreApplication::processEvents();
        }
    }
    /// Notes the phase at the first greeting, at each counter, and at the end of each mail.
    void watch()
    {
        m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
            if ((line.startsWith("EHLO") && m_server->Connections == 1) || line == ".") {
                note();
            }
            return std::nullopt;
        };
        m_bench->progress.afterCounter = [this](const QString &) { note(); };
    }
    QList<Phase> m_phases;
};

void TestRunPhases::eachPhaseAnswersForItself_data()
{
    QTest::addColumn<Phase>("phase");
    QTest::addColumn<bool>("sending");
    QTest::addColumn<bool>("told");
    QTest::addColumn<bool>("counting");
    QTest::addColumn<Phase>("afterCancel");
    QTest::newRow("resting") << Phase::Resting << false << false << false << Phase::Resting;
    QTest::newRow("checking") << Phase::Checking << true << false << false << Phase::Checking;
    QTest::newRow("preparing") << Phase::Preparing << true << true << false << Phase::Stopping;
    QTest::newRow("counting") << Phase::Counting << true << true << true << Phase::Stopping;
    QTest::newRow("stopping") << Phase::Stopping << true << true << false << Phase::Stopping;
    QTest::newRow("closing") << Phase::Closing << true << true << false << Phase::Closing;
}

void TestRunPhases::eachPhaseAnswersForItself()
{
    QFETCH(const Phase, phase);
    RunState state;
    QCOMPARE(state.phase(), Phase::Resting);
    state.enter(phase);
    QCOMPARE(state.phase(), phase);
    QTEST(state.Sending(), "sending");
    QTEST(state.isTold(), "told");
    QTEST(state.isCounting(), "counting");
    QCOMPARE(state.pblnStop(), phase == Phase::Stopping);
    state.requestStop();
    QTEST(state.phase(), "afterCancel");
}

void TestRunPhases::oneByOneRunGoesThroughItsPhases()
{
    watch();
    m_phases.clear();
    ExpectedPrompts asked;
    asked.expectBox(boxText(3), quillon::InformationBox, quillon::BoxAnswer::Ok, std::nullopt, [this] {
        note();
        m_bench->sender.requestStop(); // nothing is left to be stopped
        note();
        QCOMPARE(m_bench->progress.activity(), QString());
        QCOMPARE(m_bench->progress.steps.constLast(), FakeProgress::rest);
        settle();
        QCOMPARE(m_server->count("QUIT"), 3); // the last connection ends behind the box
    });
    m_bench->run();
    // A counter and the end of a mail, three times; the counter at rest before the box and at the end.
    QCOMPARE(m_phases, (QList<Phase>{Phase::Preparing, Phase::Counting, Phase::Counting, Phase::Counting,
                                     Phase::Counting, Phase::Counting, Phase::Counting, Phase::Closing, Phase::Closing,
                                     Phase::Closing, Phase::Closing}));
    QCOMPARE(state().phase(), Phase::Resting);
}

void TestRunPhases::wholeListRunGoesThroughItsPhases()
{
    m_bench->window.setOneByOne(false);
    watch();
    m_phases.clear();
    bool visibleWhileConnecting = false;
    const auto watching = m_server->Responder;
    m_server->Responder = [&](const QByteArray &line) {
        visibleWhileConnecting = visibleWhileConnecting || (line.startsWith("EHLO") && m_bench->progress.visible);
        return watching(line);
    };
    ExpectedPrompts asked;
    asked.expectBox(u"SENT_SUCC"_s, quillon::InformationBox, quillon::BoxAnswer::Ok, std::nullopt, [this] {
        note();
        QCOMPARE(m_bench->progress.steps.constLast(), FakeProgress::rest);
        settle();
        QVERIFY(!m_server->heard("QUIT"));
    });
    m_bench->run();
    QCOMPARE(m_phases, (QList<Phase>{Phase::Preparing, Phase::Counting, Phase::Counting, Phase::Closing, Phase::Closing,
                                     Phase::Closing}));
    QCOMPARE(m_bench->progress.steps,
             (QList<std::pair<int, int>>{{0, 0}, {0, 1}, {1, 1}, FakeProgress::rest, FakeProgress::rest}));
    QVERIFY(visibleWhileConnecting); // what the transport tells is shown at once
    QCOMPARE(state().phase(), Phase::Resting);
}

void TestRunPhases::failedCheckIsNotToldAndHidesTheProgress()
{
    m_bench->window.setText(Field::Account, QString());
    m_bench->progress.visible = true;
    ExpectedPrompts asked;
    asked
        .expectBox(u"NEED_SMTP_S"_s, quillon::PlainBox, quillon::BoxAnswer::Ok, std::nullopt,
                   [this] {
                       QCOMPARE(state().phase(), Phase::Checking);
                       m_bench->sender.requestStop();
                       QCOMPARE(state().phase(), Phase::Checking);
                       m_bench->sender.run(); // refused
                   })
        .expectBox(u"OTHER_RUN"_s, quillon::InformationBox)
        .expectForm(u"frmPubOptions"_s, 1, [this] { QVERIFY(state().Sending()); });
    m_bench->run();
    QVERIFY(!m_bench->progress.visible);
    QVERIFY(m_bench->window.statusTexts.isEmpty());
    QCOMPARE(state().phase(), Phase::Resting);
}

void TestRunPhases::failedConnectionIsToldInClosing()
{
    m_server->Greeting = "554 not today\r\n";
    m_bench->progress.setCounter(u"Sending 1/2 emails..."_s);
    ExpectedPrompts asked([](const QString &) {});
    m_bench->sender.run();
    QCOMPARE(state().phase(), Phase::Preparing);
    QCOMPARE(m_bench->progress.steps, (QList<std::pair<int, int>>{{0, 0}})); // it may be cancelled from now on
    m_bench->sender.requestStop();
    QCOMPARE(state().phase(), Phase::Stopping);
    while (state().Sending()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QVERIFY(asked.log().constLast().startsWith(u"box CONN_FAILED"_s)); // a Cancel does not silence it
    QCOMPARE(m_bench->progress.counter(), u"Sending emails..."_s);
    // Before the box and after it.
    QCOMPARE(m_bench->progress.steps, (QList<std::pair<int, int>>{{0, 0}, FakeProgress::rest, FakeProgress::rest}));
    QVERIFY(!m_bench->progress.visible);
    QCOMPARE(ends().size(), 1);
}

void TestRunPhases::statusLineIsToldOfTheRunAsLongAsItSaysSo()
{
    class StatusLine : public FakeWindow {
    public:
        void setStatusText(const QString &text) override
        {
            FakeWindow::setStatusText(text);
            told.append(run->state().isTold());
        }
        const SendRun *run = nullptr;
        QList<bool> told;
    } line;
    SendRun run({m_bench->tree.globals, m_bench->window, line, m_bench->progress, m_bench->prompts});
    line.run = &run;
    ExpectedPrompts asked;
    asked.expectBox(boxText(3), quillon::InformationBox);
    SendBench::run(run);
    QCOMPARE(line.statusTexts,
             (QStringList{u" Sending email, please click here to display the progress..."_s, u" Ready."_s}));
    QCOMPARE(line.told, (QList<bool>{true, true})); // no hint comes between the last text and the end of the run
    QVERIFY(!run.state().isTold());
}

void TestRunPhases::cancelInTheLastMailLeavesTheResult()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("RCPT TO:<bea@")) {
            m_bench->sender.requestStop();
        }
        return std::nullopt;
    };
    runAndExpect(3);
    QCOMPARE(m_server->Mails.size(), 3);
    QCOMPARE(result().constFirst(), u"text of SENT_SUCCA 3 text of SENT_SUCCB:"_s);
}

void TestRunPhases::cancelBeforeAWholeListSendStopsNothing()
{
    m_bench->window.setOneByOne(false);
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            m_bench->sender.requestStop();
        }
        return std::nullopt;
    };
    sendWell();
    QCOMPARE(m_server->Mails.size(), 1);
}

void TestRunPhases::cancelAfterwardsDoesNotReachTheNextRun()
{
    runAndExpect(3);
    m_bench->sender.requestStop(); // by a dialog that somebody left open
    runAndExpect(3);
    QCOMPARE(m_server->Mails.size(), 6);
}

QTEST_GUILESS_MAIN(TestRunPhases)
#include "test_runphases.moc"
