#include "app/runprogram.h"
#include "core/formnames.h"
#include "core/instancelock.h"
#include "quillon/fault.h"
#include "quillon/system/platform.h"
#include "support/temporarytree.h"
#include "support/testprocesses.h"

#include <QApplication>
#include <QDateTime>
#include <QDirIterator>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestRunProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_tree = std::make_unique<TemporaryTree>();
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_tree->path()));
    }
    void cleanup()
    {
        quillon::setStopOnFault(false);
        m_tree.reset();
    }

    void aSecondInstanceEndsSilentlyAndTouchesNoFile();
    void theProgramRunsUntilItsEndAndFreesItsLock();
    void theSwitchStopsAtFaults();
    void aRequestToEndWhileTheSplashShowsIsNotLost_data();
    void aRequestToEndWhileTheSplashShowsIsNotLost();
    void anEndBeforeTheEventLoopIsNotLost();

private:
    /// Runs the program until its splash shows, lets @p look see, and ends it as a session's end does.
    int runUntilTheSplash(const QStringList &arguments, const std::function<void()> &look) const
    {
        QTimer watch;
        connect(&watch, &QTimer::timeout, qApp, [&] {
            if (QThread::currentThread()->loopLevel() == 0) {
                return; // showing a window handles events too, and no loop is there yet to be ended
            }
            const QWidgetList windows = QApplication::topLevelWidgets();
            for (const QWidget *window : windows) {
                if (window->objectName() == splashForm && window->isVisible()) {
                    watch.stop();
                    look();
                    QEvent quit(QEvent::Quit);
                    QCoreApplication::sendEvent(qApp, &quit);
                    return;
                }
            }
        });
        watch.start(0);
        return runProgram(m_tree->globals.programFolder, arguments);
    }

    std::unique_ptr<TemporaryTree> m_tree;
    TestProcesses m_processes;
};

void TestRunProgram::aSecondInstanceEndsSilentlyAndTouchesNoFile()
{
    const InstanceLock running(m_tree->globals.paths.root);
    QVERIFY(!running.otherInstanceRuns());
    const auto everything = [this] {
        QStringList found;
        QDirIterator walk(m_tree->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (walk.hasNext()) {
            const QFileInfo info(walk.next());
            found.append(info.filePath() + info.lastModified().toString(Qt::ISODateWithMs));
        }
        found.sort();
        return found;
    };
    const QStringList before = everything();
    QCOMPARE(before.filter(u"options.dll"_s), QStringList()); // there is no data that could be touched
    QCOMPARE(runProgram(m_tree->globals.programFolder, {u"/D"_s}), 0);
    QCOMPARE(everything(), before);
    QVERIFY(!quillon::stopOnFault());
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

void TestRunProgram::theProgramRunsUntilItsEndAndFreesItsLock()
{
    bool held = false;
    const int status =
        runUntilTheSplash({}, [&] { held = InstanceLock(m_tree->globals.paths.root).otherInstanceRuns(); });
    QCOMPARE(status, 0);
    QVERIFY(held);
    QVERIFY(!InstanceLock(m_tree->globals.paths.root).otherInstanceRuns());
    QVERIFY(QFile::exists(m_tree->globals.paths.optionsFile));
    QVERIFY(!QApplication::quitOnLastWindowClosed());
    QVERIFY(!QApplication::windowIcon().isNull());
    QCOMPARE(QApplication::applicationDisplayName(), u"Corvane"_s);
    QVERIFY(!quillon::stopOnFault());
}

void TestRunProgram::theSwitchStopsAtFaults()
{
    bool stops = false;
    QCOMPARE(runUntilTheSplash({u"/d"_s}, [&] { stops = quillon::stopOnFault(); }), 0);
    QVERIFY(stops);
    QCOMPARE(runUntilTheSplash({u"/D"_s, u"more"_s}, [&] { stops = quillon::stopOnFault(); }), 0);
    QVERIFY(!stops);
}

void TestRunProgram::aRequestToEndWhileTheSplashShowsIsNotLost_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestRunProgram::aRequestToEndWhileTheSplashShowsIsNotLost()
{
    QFETCH(int, number);
    struct sigaction before {};
    ::sigaction(number, nullptr, &before);
    QTimer watch;
    connect(&watch, &QTimer::timeout, qApp, [&] {
        watch.stop();
        ::raise(number);
        ::raise(number);
    });
    watch.start(0);
    QStringList steps;
    m_processes.told = [&steps](const QString &step) { steps.append(step); };
    QCOMPARE(runProgram(m_tree->globals.programFolder, {}), 0);
    m_processes.told = nullptr;
    QCOMPARE(steps, QStringList()); // the companion, too, is left as it is
    QVERIFY(!InstanceLock(m_tree->globals.paths.root).otherInstanceRuns());
    ::sigaction(number, &before, nullptr);
}

void TestRunProgram::anEndBeforeTheEventLoopIsNotLost()
{
    /// Ends the program as a session's end does while the splash is being shown, when no loop is there yet.
    class Early : public QObject {
    public:
        Early() { qApp->installEventFilter(this); }
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (event->type() == QEvent::Show && watched->objectName() == splashForm) {
                loopLevel = QThread::currentThread()->loopLevel();
                QEvent quit(QEvent::Quit);
                QCoreApplication::sendEvent(qApp, &quit);
            }
            return false;
        }
        int loopLevel = -1;
    };
    Early early;
    QCOMPARE(runProgram(m_tree->globals.programFolder, {}), 0);
    QCOMPARE(early.loopLevel, 0);
}

QTEST_MAIN(TestRunProgram)
#include "test_runprogram.moc"
