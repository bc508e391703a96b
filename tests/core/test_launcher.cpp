#include "core/companion.h"
#include "core/launcher.h"
#include "quillon/system/platform.h"
#include "quillon/system/quillonregistry.h"
#include "support/testprocesses.h"
#include "support/treefixture.h"
#include "support/waitfor.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestLauncher : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeBareTree();
        m_steps.clear();
        m_ending = false;
        m_companion = std::make_unique<Companion>(m_tree->globals, false);
        m_processes = std::make_unique<TestProcesses>();
        m_processes->told = [this](const QString &step) { m_steps.append(step); };
    }
    void cleanup()
    {
        m_companion.reset();
        m_processes.reset();
        dropTree();
    }

    void switchIsTheWholeCommandLineInEitherCase();
    void positionIsRestoredUnlessTheSettingChangesMeanwhile();
    void handOverGoesInItsOrder();
    void emptyStartupDoesNotCountAsLast();
    void missingCompanionIsNoFault();
    void companionGetsTheSwitch();
    void nothingFollowsWhenTheProgramEndsMeanwhile();
    void companionThatTakesItsTimeIsStartedWhenItHasEnded();
    void exitWaitsForTheEndOfTheCompanion();
    void exitThatStopsTheCompanionStartsNoneAnyMore();
    void exitThatLeavesTheCompanionWaitsForItsRestart();
    void exitGoesInItsOrder();
    void exitThatLeavesTheCompanionEndsNothing();
    void cancelledSaveQuestionKeepsTheProgram();
    void oldSystemLosesItsTemporaryAccount();
    void aStepThatIsNotSetIsAFaultByItsName();

private:
    void addCompanion() const
    {
        const QString companion = m_tree->globals.programFolder + u"/CorvaneS.exe"_s;
        writeFile(companion, "#!/bin/sh\n");
        QVERIFY(QFile::setPermissions(companion, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    }
    [[nodiscard]] HandOver recordedHandOver()
    {
        return {
            [this] { m_steps.append(u"main, restoring "_s + QString::number(m_tree->globals.RestoringFromLast)); },
            [this] { m_steps.append(u"progress"_s); },
            [this](int interval) { m_steps.append(u"timer "_s + QString::number(interval)); },
            [this] { m_steps.append(u"splash, restoring "_s + QString::number(m_tree->globals.RestoringFromLast)); },
            [this] { return m_ending; }};
    }
    [[nodiscard]] ExitSteps recordedExit(bool cancelled)
    {
        return {[this, cancelled] {
                    m_steps.append(u"save?"_s);
                    return cancelled;
                },
                [this](const QString &form) { m_steps.append(form); }, [this] { m_steps.append(u"help"_s); },
                [this] { m_steps.append(u"tray"_s); }, [this] { m_steps.append(u"main"_s); }};
    }

    QStringList m_steps;
    std::unique_ptr<TestProcesses> m_processes;
    std::unique_ptr<Companion> m_companion;
    bool m_ending = false;
};

void TestLauncher::switchIsTheWholeCommandLineInEitherCase()
{
    QVERIFY(isSwitch({u"/D"_s}));
    QVERIFY(isSwitch({u"/d"_s}));
    QVERIFY(!isSwitch({}));
    QVERIFY(!isSwitch({u"/D"_s, u"/D"_s}));
    QVERIFY(!isSwitch({u"/DX"_s}));
    QVERIFY(!isSwitch({u"-D"_s}));
}

void TestLauncher::positionIsRestoredUnlessTheSettingChangesMeanwhile()
{
    m_tree->globals.settings.set(Setting::Startup, u"Last"_s);
    HandOver steps = recordedHandOver();
    steps.createHiddenProgress = [this] { m_tree->globals.settings.set(Setting::Startup, u"Max"_s); };
    handOver(m_tree->globals, *m_companion, steps);
    QCOMPARE(m_steps.constFirst(), u"main, restoring 1"_s);
    QCOMPARE(m_steps.constLast(), u"splash, restoring 1"_s);
}

void TestLauncher::handOverGoesInItsOrder()
{
    addCompanion();
    m_tree->globals.settings.set(Setting::Startup, u"Last"_s);
    handOver(m_tree->globals, *m_companion, recordedHandOver());
    QCOMPARE(m_steps,
             (QStringList{u"main, restoring 1"_s, u"progress"_s, u"timer 6000"_s,
                          u"end CorvaneS.exe on "_s + m_tree->globals.paths.root,
                          u"start "_s + m_tree->globals.programFolder + u"/CorvaneS.exe"_s, u"splash, restoring 0"_s}));
}

void TestLauncher::emptyStartupDoesNotCountAsLast()
{
    handOver(m_tree->globals, *m_companion, recordedHandOver());
    QCOMPARE(m_steps.constFirst(), u"main, restoring 0"_s);
}

void TestLauncher::missingCompanionIsNoFault()
{
    const int before = quillon::faultCount();
    m_companion->restart();
    QCOMPARE(quillon::faultCount(), before);
    QCOMPARE(m_steps.size(), 1);
}

void TestLauncher::companionGetsTheSwitch()
{
    addCompanion();
    Companion(m_tree->globals, true).restart();
    QCOMPARE(m_steps.constLast(), u"start "_s + m_tree->globals.programFolder + u"/CorvaneS.exe /D"_s);
}

void TestLauncher::nothingFollowsWhenTheProgramEndsMeanwhile()
{
    HandOver steps = recordedHandOver();
    steps.showMainWindow = [this] { m_ending = true; };
    handOver(m_tree->globals, *m_companion, steps);
    QCOMPARE(m_steps, QStringList());
}

void TestLauncher::companionThatTakesItsTimeIsStartedWhenItHasEnded()
{
    addCompanion();
    m_processes->takesItsTime = true;
    m_tree->globals.settings.set(Setting::Startup, u"Last"_s);
    handOver(m_tree->globals, *m_companion, recordedHandOver());
    QCOMPARE(m_steps.constLast(), u"splash, restoring 0"_s);
    QCoreApplication::processEvents();
    QCOMPARE(m_steps.filter(u"start "_s), QStringList());
    m_processes->endings.constLast().settle();
    QTRY_COMPARE(m_steps.constLast(), u"start "_s + m_tree->globals.programFolder + u"/CorvaneS.exe"_s);
    QCoreApplication::processEvents();
    QCOMPARE(m_steps.filter(u"start "_s).size(), 1);
}

void TestLauncher::exitWaitsForTheEndOfTheCompanion()
{
    m_processes->takesItsTime = true;
    quillon::Sequence exit;
    exit.start(
        settleWith<bool>(exitProgram(*m_companion, true, recordedExit(false)), quillon::Pending<bool>().settler()));
    QCoreApplication::processEvents();
    QCOMPARE(m_steps.constLast(), u"end CorvaneS.exe on "_s + m_tree->globals.paths.root);
    m_processes->endings.constLast().settle();
    QTRY_COMPARE(m_steps.constLast(), u"main"_s);
    QCOMPARE(m_steps.at(m_steps.size() - 2), u"tray"_s);
}

void TestLauncher::exitThatStopsTheCompanionStartsNoneAnyMore()
{
    addCompanion();
    m_processes->takesItsTime = true;
    m_companion->restart();
    m_processes->takesItsTime = false;
    QVERIFY(waitFor(exitProgram(*m_companion, true, recordedExit(false))));
    m_processes->endings.constFirst().settle();
    QCoreApplication::processEvents();
    QCOMPARE(m_steps.filter(u"start "_s), QStringList());
    QCOMPARE(m_steps.filter(u"end Corvane"_s).size(), 2);
}

void TestLauncher::exitThatLeavesTheCompanionWaitsForItsRestart()
{
    addCompanion();
    m_processes->takesItsTime = true;
    m_companion->restart();
    quillon::Sequence exit;
    exit.start(
        settleWith<bool>(exitProgram(*m_companion, false, recordedExit(false)), quillon::Pending<bool>().settler()));
    QCoreApplication::processEvents();
    QCOMPARE(m_steps.constLast(), u"help"_s);
    m_processes->endings.constLast().settle();
    QTRY_COMPARE(m_steps.constLast(), u"main"_s);
    QCOMPARE(m_steps.filter(u"end Corvane"_s).size(), 1);
    QCOMPARE(m_steps.indexOf(u"start "_s + m_tree->globals.programFolder + u"/CorvaneS.exe"_s),
             m_steps.indexOf(u"tray"_s) - 1);
    // And one that is over is not waited for.
    m_steps.clear();
    QVERIFY(waitFor(exitProgram(*m_companion, false, recordedExit(false))));
    QCOMPARE(m_steps.constLast(), u"main"_s);
}

void TestLauncher::exitGoesInItsOrder()
{
    QVERIFY(waitFor(exitProgram(*m_companion, true, recordedExit(false))));
    QCOMPARE(m_steps,
             (QStringList{u"save?"_s, u"frmPubOptions"_s, u"frmPubSender"_s, u"frmPubSelCts"_s, u"frmPubTemplates"_s,
                          u"frmPubProgress"_s, u"frmPubAbout"_s, u"frmPubSplash"_s, u"frmPubSchedule"_s, u"help"_s,
                          u"end CorvaneS.exe on "_s + m_tree->globals.paths.root, u"tray"_s, u"main"_s}));
}

void TestLauncher::exitThatLeavesTheCompanionEndsNothing()
{
    QVERIFY(waitFor(exitProgram(*m_companion, false, recordedExit(false))));
    QVERIFY(m_steps.filter(u"CorvaneS.exe"_s).isEmpty());
    QCOMPARE(m_steps.constLast(), u"main"_s);
}

void TestLauncher::cancelledSaveQuestionKeepsTheProgram()
{
    QVERIFY(!waitFor(exitProgram(*m_companion, true, recordedExit(true))));
    QCOMPARE(m_steps, QStringList{u"save?"_s});
}

void TestLauncher::oldSystemLosesItsTemporaryAccount()
{
    using quillon::QuillonRegistry;
    const QString key = u"Software\\Microsoft\\Internet Account Manager\\Accounts\\00000096"_s;
    QuillonRegistry::setFile(m_tree->path(u"registry"_s));
    const QuillonRegistry registry;
    registry.WriteValue(QuillonRegistry::CurrentUser, key, u"Account Name"_s, QuillonRegistry::Text, u"Corvane"_s);
    prepareProgram(m_tree->globals);
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, key, u"Account Name"_s), u"Corvane"_s);
    quillon::setOsMajorVersion(5);
    prepareProgram(m_tree->globals);
    quillon::setOsMajorVersion(10);
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, key, u"Account Name"_s), QString());
    QuillonRegistry::setFile(QString());
}

void TestLauncher::aStepThatIsNotSetIsAFaultByItsName()
{
    for (const char *step :
         {"HandOver::showMainWindow", "HandOver::createHiddenProgress", "HandOver::setPositionTimer",
          "HandOver::unloadSplash", "HandOver::isEnding", "ExitSteps::saveCancelled", "ExitSteps::unloadForm",
          "ExitSteps::closeHelp", "ExitSteps::removeTrayIcon", "ExitSteps::unloadMainWindow"}) {
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: "_s + QString::fromLatin1(step)));
    }
    const int before = quillon::faultCount();
    handOver(m_tree->globals, *m_companion, {});
    QVERIFY(waitFor(exitProgram(*m_companion, true, {})));
    QCOMPARE(quillon::faultCount() - before, 10);
    QCOMPARE(m_steps, QStringList(2, u"end CorvaneS.exe on "_s + m_tree->globals.paths.root));
}

QTEST_GUILESS_MAIN(TestLauncher)
#include "test_launcher.moc"
