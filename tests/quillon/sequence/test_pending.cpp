#include "quillon/sequence/sequence.h"
#include "support/waitfor.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTest>

#include <memory>

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

Task<> manyTurns(int *turns, int count)
{
    for (int i = 0; i < count; ++i) {
        co_await quillon::nextTurn();
        ++*turns;
    }
}

Task<> awaitFromOutside(QStringList *told, Pending<int> *awaited)
{
    const int value = co_await *awaited;
    *told += u"awaited %1"_s.arg(value);
}

Task<> hold(std::shared_ptr<int>, Pending<> awaited)
{
    co_await awaited;
}

Task<> startAnother(QStringList *told, Sequence *sequence, Task<> other)
{
    const Local local(*told, u"first"_s);
    sequence->start(std::move(other));
    *told += u"rest of the first"_s;
    co_await quillon::nextTurn();
    *told += u"never"_s;
}

Task<> box(QStringList *told)
{
    *told += u"asked"_s;
    co_await quillon::fromEventLoop([told] { *told += u"box"_s; });
    *told += u"answered"_s;
}

Task<std::unique_ptr<int>> handOver(Pending<std::unique_ptr<int>> awaited)
{
    co_return co_await awaited;
}

} // namespace

/// Who holds what of a sequence, and until when: results, frames, sequences that replace each other.
class TestPending : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noTimeEndsTooEarly();
    void shorterTimesEndFirst();
    void whoeverIsNoSequenceIsWokenOnceWhereItIsSettled();
    void aPendingThatIsLetGoWakesNobody();
    void aPendingThatIsReplacedIsLetGo();
    void aPendingThatOutlivesItsSequenceResumesNothing();
    void whatASequenceHoldsIsReleasedAtItsEnd();
    void aTaskThatNeverBeganIsReleased();
    void tasksAreExchangedByMoving();
    void aStepMayStartAnotherSequenceInItsPlace();
    void twoSequencesAreIndependent();
    void aSequenceCanBeUsedAgain();
    void aBoxWithoutAResultIsAwaitedToo();
    void whatCannotBeCopiedIsHandedOver();
};

void TestPending::noTimeEndsTooEarly()
{
    QElapsedTimer clock;
    clock.start();
    waitFor(quillon::elapsed(60));
    QVERIFY(clock.elapsed() >= 60);
}

void TestPending::shorterTimesEndFirst()
{
    QStringList order;
    Pending<> late = quillon::elapsed(120);
    Pending<> early = quillon::elapsed(20);
    late.whenSettled([&order] { order += u"late"_s; });
    early.whenSettled([&order] { order += u"early"_s; });
    QTRY_COMPARE(order, (QStringList{u"early"_s, u"late"_s}));
}

void TestPending::whoeverIsNoSequenceIsWokenOnceWhereItIsSettled()
{
    Pending<int> pending;
    const auto settler = pending.settler();
    QList<int> woken;
    pending.whenSettled([&] { woken += pending.isSettled() ? 1 : 0; });
    QVERIFY(!pending.isSettled());
    QVERIFY(!pending.await_ready());
    settler.settle(3);
    QCOMPARE(woken, QList<int>{1});
    QVERIFY(pending.await_ready());
    settler.settle(4);
    QCOMPARE(woken, QList<int>{1});
    QVERIFY(settler.isWanted());
    QCOMPARE(waitFor(std::move(pending)), 3);
}

void TestPending::aPendingThatIsLetGoWakesNobody()
{
    bool woken = false;
    auto pending = std::make_unique<Pending<int>>();
    const auto settler = pending->settler();
    pending->whenSettled([&woken] { woken = true; });
    Pending<int> taken = std::move(*pending);
    pending.reset();
    QVERIFY(settler.isWanted());
    {
        const Pending<int> last = std::move(taken);
    }
    QVERIFY(!settler.isWanted());
    settler.settle(1);
    QVERIFY(!woken);
}

void TestPending::aPendingThatIsReplacedIsLetGo()
{
    QStringList told;
    Pending<int> first;
    Pending<int> second;
    const auto settlerOfFirst = first.settler();
    const auto settlerOfSecond = second.settler();
    first.whenSettled([&told] { told += u"first"_s; });
    second.whenSettled([&told] { told += u"second"_s; });
    first = std::move(second);
    QVERIFY(!settlerOfFirst.isWanted());
    QVERIFY(settlerOfSecond.isWanted());
    Pending<int> &itself = first;
    first = std::move(itself);
    QVERIFY(settlerOfSecond.isWanted());
    settlerOfFirst.settle(1);
    settlerOfSecond.settle(2);
    QCOMPARE(told, QStringList{u"second"_s});
    QCOMPARE(waitFor(std::move(first)), 2);
}

void TestPending::aPendingThatOutlivesItsSequenceResumesNothing()
{
    QStringList told;
    Pending<int> pending;
    {
        Sequence sequence;
        sequence.start(awaitFromOutside(&told, &pending));
    }
    pending.settler().settle(1);
    QCoreApplication::processEvents();
    QCOMPARE(told, QStringList());
}

void TestPending::whatASequenceHoldsIsReleasedAtItsEnd()
{
    const auto held = std::make_shared<int>(0);
    Pending<> pending;
    const auto settler = pending.settler();
    Sequence sequence;
    sequence.start(hold(held, std::move(pending)));
    QVERIFY(held.use_count() > 1);
    settler.settle();
    QTRY_VERIFY(!sequence.isUnderWay());
    QCOMPARE(held.use_count(), 1);
    sequence.start(hold(held, Pending<>::settled()));
    QCOMPARE(held.use_count(), 1);
    sequence.start(hold(held, Pending<>()));
    QVERIFY(held.use_count() > 1);
    sequence.end();
    QCOMPARE(held.use_count(), 1);
    sequence.end();
}

void TestPending::aTaskThatNeverBeganIsReleased()
{
    const auto held = std::make_shared<int>(0);
    {
        const Task<> task = hold(held, Pending<>());
        QVERIFY(held.use_count() > 1);
    }
    QCOMPARE(held.use_count(), 1);
}

void TestPending::tasksAreExchangedByMoving()
{
    const auto first = std::make_shared<int>(0);
    const auto second = std::make_shared<int>(0);
    Sequence sequence;
    {
        Task<> task = hold(first, Pending<>());
        task = hold(second, Pending<>());
        QCOMPARE(first.use_count(), 1);
        sequence.start(std::move(task));
    }
    QVERIFY(second.use_count() > 1);
    QVERIFY(sequence.isUnderWay());
}

void TestPending::aStepMayStartAnotherSequenceInItsPlace()
{
    QStringList told;
    int turns = 0;
    Sequence sequence;
    sequence.start(startAnother(&told, &sequence, manyTurns(&turns, 3)));
    QCOMPARE(told, (QStringList{u"rest of the first"_s, u"end of first"_s}));
    QVERIFY(sequence.isUnderWay());
    QTRY_VERIFY(!sequence.isUnderWay());
    QCOMPARE(turns, 3);
    QCOMPARE(told.size(), 2);
}

void TestPending::twoSequencesAreIndependent()
{
    int first = 0;
    int second = 0;
    Sequence ended;
    Sequence going;
    ended.start(manyTurns(&first, 3));
    going.start(manyTurns(&second, 3));
    ended.end();
    QTRY_VERIFY(!going.isUnderWay());
    QCOMPARE(first, 0);
    QCOMPARE(second, 3);
}

void TestPending::aSequenceCanBeUsedAgain()
{
    int turns = 0;
    Sequence sequence;
    for (int i = 1; i <= 3; ++i) {
        sequence.start(manyTurns(&turns, 1));
        QVERIFY(sequence.isUnderWay());
        QTRY_VERIFY(!sequence.isUnderWay());
        QCOMPARE(turns, i);
    }
}

void TestPending::aBoxWithoutAResultIsAwaitedToo()
{
    QStringList told;
    Sequence sequence;
    sequence.start(box(&told));
    QCOMPARE(told, QStringList{u"asked"_s});
    QTRY_COMPARE(told, (QStringList{u"asked"_s, u"box"_s, u"answered"_s}));
}

void TestPending::whatCannotBeCopiedIsHandedOver()
{
    Pending<std::unique_ptr<int>> pending;
    const auto settler = pending.settler();
    settler.settle(std::make_unique<int>(5));
    const std::unique_ptr<int> got = waitFor(handOver(std::move(pending)));
    QCOMPARE(*got, 5);
}

QTEST_GUILESS_MAIN(TestPending)
#include "test_pending.moc"
