#include "quillon/sequence/sequence.h"
#include "support/waitfor.h"

#include <QStringList>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using quillon::Pending;
using quillon::Sequence;
using quillon::Task;

namespace {

/// Tells the moment of its end.
struct Local {
    Local(QStringList &told, const QString &name) : m_told(told), m_name(name) {}
    ~Local() { m_told += u"end of "_s + m_name; }
    Local(const Local &) = delete;
    Local &operator=(const Local &) = delete;

    QStringList &m_told;
    QString m_name;
};

Task<int> inner(QStringList *told, Pending<int> awaited)
{
    const Local local(*told, u"inner"_s);
    const int value = co_await awaited;
    *told += u"awaited %1"_s.arg(value);
    co_return value + 1;
}

Task<> outer(QStringList *told, Pending<int> awaited)
{
    const Local local(*told, u"outer"_s);
    *told += u"begin"_s;
    const int value = co_await inner(told, std::move(awaited));
    *told += u"result %1"_s.arg(value);
}

Task<> endItself(QStringList *told, Sequence *sequence)
{
    const Local local(*told, u"frame"_s);
    sequence->end();
    *told += u"rest of the step"_s;
    co_await quillon::nextTurn();
    *told += u"never"_s;
}

Task<> askTwice(QStringList *told, std::function<int()> box)
{
    const Local local(*told, u"frame"_s);
    const int first = co_await quillon::fromEventLoop(box);
    *told += u"answer %1"_s.arg(first);
    const int second = co_await quillon::fromEventLoop(box);
    *told += u"answer %1"_s.arg(second);
}

Task<> manyTurns(int *turns, int count)
{
    for (int i = 0; i < count; ++i) {
        co_await quillon::nextTurn();
        ++*turns;
    }
}

Task<int> immediate()
{
    co_return 7;
}

Task<int> sumOfImmediates(int count)
{
    int sum = 0;
    for (int i = 0; i < count; ++i) {
        sum += co_await immediate();
    }
    co_return sum;
}

} // namespace

class TestSequence : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void beginsAtOnceAndReturnsWhereItFirstWaits();
    void goesOnFromTheEventLoopAndNotFromWhatSettledIt();
    void destructionEndsItWhereItRestsInsideOut();
    void whatIsSettledAfterTheEndResumesNothing();
    void aResumptionThatIsQueuedAtTheEndIsDropped();
    void whatWasSettledBeforeIsNotWaitedFor();
    void onlyTheFirstSettlingCounts();
    void endedFromWithinItFinishesItsStepAndNoMore();
    void aBoxRunsWhileTheSequenceRests();
    void endedInItsOwnBoxNothingHappensAfterwards();
    void aBoxThatNobodyAwaitsAnyMoreIsNotShown();
    void startingAnewEndsWhatWasUnderWay();
    void isUnderWayUntilItsLastStep();
    void goesOnWithinANestedLoopOfSomebodyElse();
    void timePassesWhileTheEventLoopRuns();
    void noTimeIsOverAtOnce();
    void theTurnComesBehindWhatWaitsAlready();
    void manyTurnsAndManyTasks();
};

void TestSequence::beginsAtOnceAndReturnsWhereItFirstWaits()
{
    QStringList told;
    Sequence sequence;
    sequence.start(outer(&told, Pending<int>()));
    QCOMPARE(told, QStringList{u"begin"_s});
    QVERIFY(sequence.isUnderWay());
}

void TestSequence::goesOnFromTheEventLoopAndNotFromWhatSettledIt()
{
    QStringList told;
    Pending<int> pending;
    const auto settler = pending.settler();
    Sequence sequence;
    sequence.start(outer(&told, std::move(pending)));
    settler.settle(4);
    QCOMPARE(told, QStringList{u"begin"_s});
    QTRY_VERIFY(!sequence.isUnderWay());
    QCOMPARE(told, (QStringList{u"begin"_s, u"awaited 4"_s, u"end of inner"_s, u"result 5"_s, u"end of outer"_s}));
}

void TestSequence::destructionEndsItWhereItRestsInsideOut()
{
    QStringList told;
    {
        Sequence sequence;
        sequence.start(outer(&told, Pending<int>()));
    }
    QCOMPARE(told, (QStringList{u"begin"_s, u"end of inner"_s, u"end of outer"_s}));
}

void TestSequence::whatIsSettledAfterTheEndResumesNothing()
{
    QStringList told;
    Pending<int> pending;
    const auto settler = pending.settler();
    Sequence sequence;
    sequence.start(outer(&told, std::move(pending)));
    QVERIFY(settler.isWanted());
    sequence.end();
    QVERIFY(!settler.isWanted());
    told.clear();
    settler.settle(4);
    QCoreApplication::processEvents();
    QCOMPARE(told, QStringList());
}

void TestSequence::aResumptionThatIsQueuedAtTheEndIsDropped()
{
    QStringList told;
    Pending<int> pending;
    const auto settler = pending.settler();
    Sequence sequence;
    sequence.start(outer(&told, std::move(pending)));
    settler.settle(4);
    sequence.end();
    QCoreApplication::processEvents();
    QCOMPARE(told, (QStringList{u"begin"_s, u"end of inner"_s, u"end of outer"_s}));
}

void TestSequence::whatWasSettledBeforeIsNotWaitedFor()
{
    QStringList told;
    Sequence sequence;
    sequence.start(outer(&told, Pending<int>::settled(1)));
    QVERIFY(!sequence.isUnderWay());
    QVERIFY(told.contains(u"result 2"_s));
}

void TestSequence::onlyTheFirstSettlingCounts()
{
    Pending<int> pending;
    pending.settler().settle(1);
    pending.settler().settle(2);
    QCOMPARE(waitFor(std::move(pending)), 1);
}

void TestSequence::endedFromWithinItFinishesItsStepAndNoMore()
{
    QStringList told;
    Sequence sequence;
    sequence.start(endItself(&told, &sequence));
    QVERIFY(!sequence.isUnderWay());
    const QStringList expected{u"rest of the step"_s, u"end of frame"_s};
    QCOMPARE(told, expected);
    QCoreApplication::processEvents();
    QCOMPARE(told, expected);
}

void TestSequence::aBoxRunsWhileTheSequenceRests()
{
    QStringList told;
    int shown = 0;
    Sequence sequence;
    sequence.start(askTwice(&told, [&] {
        told += u"box"_s;
        return ++shown;
    }));
    QCOMPARE(told, QStringList());
    QTRY_VERIFY(!sequence.isUnderWay());
    QCOMPARE(told, (QStringList{u"box"_s, u"answer 1"_s, u"box"_s, u"answer 2"_s, u"end of frame"_s}));
}

void TestSequence::endedInItsOwnBoxNothingHappensAfterwards()
{
    QStringList told;
    Sequence sequence;
    sequence.start(askTwice(&told, [&] {
        sequence.end();
        told += u"still in the box"_s;
        return 1;
    }));
    QTRY_VERIFY(told.contains(u"still in the box"_s));
    QCoreApplication::processEvents();
    QCOMPARE(told, (QStringList{u"end of frame"_s, u"still in the box"_s}));
}

void TestSequence::aBoxThatNobodyAwaitsAnyMoreIsNotShown()
{
    QStringList told;
    Sequence sequence;
    sequence.start(askTwice(&told, [&] {
        told += u"box"_s;
        return 1;
    }));
    sequence.end();
    QCoreApplication::processEvents();
    QCOMPARE(told, QStringList{u"end of frame"_s});
}

void TestSequence::startingAnewEndsWhatWasUnderWay()
{
    QStringList told;
    Sequence sequence;
    sequence.start(outer(&told, Pending<int>()));
    told.clear();
    sequence.start(outer(&told, Pending<int>()));
    QCOMPARE(told, (QStringList{u"end of inner"_s, u"end of outer"_s, u"begin"_s}));
    QVERIFY(sequence.isUnderWay());
}

void TestSequence::isUnderWayUntilItsLastStep()
{
    Sequence sequence;
    QVERIFY(!sequence.isUnderWay());
    int turns = 0;
    sequence.start(manyTurns(&turns, 2));
    QVERIFY(sequence.isUnderWay());
    QTRY_VERIFY(!sequence.isUnderWay());
    QCOMPARE(turns, 2);
}

void TestSequence::goesOnWithinANestedLoopOfSomebodyElse()
{
    int turns = 0;
    Sequence sequence;
    sequence.start(manyTurns(&turns, 5));
    QEventLoop modal;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &modal, [&] {
        if (!sequence.isUnderWay()) {
            modal.quit();
        }
    });
    watch.start(0);
    modal.exec();
    QCOMPARE(turns, 5);
}

void TestSequence::timePassesWhileTheEventLoopRuns()
{
    bool ran = false;
    QTimer::singleShot(0, this, [&ran] { ran = true; });
    waitFor(quillon::elapsed(20));
    QVERIFY(ran);
}

void TestSequence::noTimeIsOverAtOnce()
{
    QVERIFY(quillon::elapsed(0).isSettled());
    QVERIFY(quillon::elapsed(-5).isSettled());
    QVERIFY(!quillon::elapsed(1).isSettled());
}

void TestSequence::theTurnComesBehindWhatWaitsAlready()
{
    bool handled = false;
    Pending<> turn = quillon::nextTurn();
    QMetaObject::invokeMethod(
        this, [&handled] { handled = true; }, Qt::QueuedConnection);
    waitFor(std::move(turn));
    QVERIFY(handled);
}

void TestSequence::manyTurnsAndManyTasks()
{
    constexpr int many = 10000;
    int turns = 0;
    waitFor(manyTurns(&turns, many));
    QCOMPARE(turns, many);
    QCOMPARE(waitFor(sumOfImmediates(many)), many * 7);
}

QTEST_GUILESS_MAIN(TestSequence)
#include "test_sequence.moc"
