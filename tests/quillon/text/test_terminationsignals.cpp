#include "quillon/system/terminationsignals.h"

#include <QDir>
#include <QEventLoop>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <memory>
#include <unistd.h>

using namespace Qt::StringLiterals;
using quillon::TerminationSignals;

class TestTerminationSignals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        ::sigaction(SIGTERM, nullptr, &m_term);
        ::sigaction(SIGINT, nullptr, &m_int);
    }
    void cleanup()
    {
        ::sigaction(SIGTERM, &m_term, nullptr);
        ::sigaction(SIGINT, &m_int, nullptr);
    }

    void eachSignalIsTold_data();
    void eachSignalIsTold();
    void whatComesBeforeTheLoopIsToldByIt();
    void aNestedLoopTellsItToo();
    void manyAreNotLostAndDoNotBlock();
    void withoutOneTheSignalsAreGivenBack();
    void afterOneFurtherOnesAreIgnored();
    void startedProgramsDieOfThemAndGetNoDescriptor();

private:
    struct sigaction m_term {};
    struct sigaction m_int {};
};

void TestTerminationSignals::eachSignalIsTold_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestTerminationSignals::eachSignalIsTold()
{
    QFETCH(int, number);
    const TerminationSignals signals;
    QEventLoop loop;
    int told = 0;
    connect(&signals, &TerminationSignals::received, &loop, [&] {
        ++told;
        loop.quit();
    });
    QMetaObject::invokeMethod(
        &loop, [number] { ::kill(::getpid(), number); }, Qt::QueuedConnection);
    loop.exec();
    QCOMPARE(told, 1);
    ::kill(::getpid(), number);
    loop.exec();
    QCOMPARE(told, 2);
}

void TestTerminationSignals::whatComesBeforeTheLoopIsToldByIt()
{
    const TerminationSignals signals;
    ::kill(::getpid(), SIGTERM);
    bool told = false;
    connect(&signals, &TerminationSignals::received, this, [&] { told = true; });
    QVERIFY(!told);
    QTRY_VERIFY(told);
}

void TestTerminationSignals::aNestedLoopTellsItToo()
{
    const TerminationSignals signals;
    QEventLoop outer;
    QEventLoop inner;
    bool inInner = false;
    connect(&signals, &TerminationSignals::received, &inner, [&] {
        inInner = inner.isRunning();
        inner.quit();
    });
    QMetaObject::invokeMethod(
        &outer,
        [&] {
            ::kill(::getpid(), SIGINT);
            inner.exec();
            outer.quit();
        },
        Qt::QueuedConnection);
    outer.exec();
    QVERIFY(inInner);
}

void TestTerminationSignals::manyAreNotLostAndDoNotBlock()
{
    const TerminationSignals signals;
    int told = 0;
    connect(&signals, &TerminationSignals::received, this, [&] { ++told; });
    for (int i = 0; i < 100'000; ++i) { // more than a pipe holds
        ::raise(SIGTERM);
    }
    QTRY_COMPARE(told, 1);
    ::raise(SIGTERM);
    QTRY_COMPARE(told, 2);
}

void TestTerminationSignals::withoutOneTheSignalsAreGivenBack()
{
    struct sigaction own {};
    own.sa_handler = [](int) {};
    ::sigaction(SIGTERM, &own, nullptr);
    ::sigaction(SIGINT, &own, nullptr);
    {
        const TerminationSignals signals;
        QCoreApplication::processEvents();
    }
    for (const int number : {SIGTERM, SIGINT}) {
        struct sigaction present {};
        ::sigaction(number, nullptr, &present);
        QVERIFY(present.sa_handler == own.sa_handler);
    }
}

void TestTerminationSignals::afterOneFurtherOnesAreIgnored()
{
    auto signals = std::make_unique<TerminationSignals>();
    bool told = false;
    connect(signals.get(), &TerminationSignals::received, this, [&] { told = true; });
    ::raise(SIGTERM);
    QTRY_VERIFY(told);
    signals.reset();
    ::raise(SIGTERM); // would end this test
    ::raise(SIGINT);
    for (const int number : {SIGTERM, SIGINT}) {
        struct sigaction present {};
        ::sigaction(number, nullptr, &present);
        QVERIFY(present.sa_handler == SIG_IGN);
    }
}

void TestTerminationSignals::startedProgramsDieOfThemAndGetNoDescriptor()
{
    const auto openFiles = [] { return QDir(u"/proc/self/fd"_s).entryList(QDir::System | QDir::Files).size(); };
    const auto child = [] {
        QProcess process;
        process.start(u"/bin/sh"_s, {u"-c"_s, u"ls /proc/self/fd; kill -TERM $$; echo alive"_s});
        process.waitForFinished();
        return process.readAllStandardOutput() + QByteArray::number(process.exitStatus() == QProcess::CrashExit);
    };
    const QByteArray plain = child();
    QVERIFY(!plain.contains("alive"));
    const qsizetype before = openFiles();
    {
        const TerminationSignals signals;
        QCOMPARE(openFiles(), before + 2);
        QCOMPARE(child(), plain);
    }
    QCOMPARE(openFiles(), before);
}

QTEST_GUILESS_MAIN(TestTerminationSignals)
#include "test_terminationsignals.moc"
