#include "core/launcher.h"
#include "quillon/system/platform.h"
#include "quillon/system/quillonregistry.h"
#include "support/testprocesses.h"
#include "support/treefixture.h"

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
        m_processes = std::make_unique<TestProcesses>();
        m_processes->told = [this](const QString &step) { m_steps.append(step); };
    }
    void cleanup()
    {
        m_processes.reset();
        dropTree();
    }

    void switchIsTheWholeCommandLineInEitherCase();
    void positionIsRestoredUnlessTheSettingChangesMeanwhile();
    void handOverGoesInItsOrder();
    void emptyStartupDoesNotCountAsLast();
    void missingCompanionIsNoFault();
    void companionGetsTheSwitch();
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
            [this] { m_steps.append(u"splash, restoring "_s + QString::number(m_tree->globals.RestoringFromLast)); }};
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
    handOver(m_tree->globals, false, steps);
    QCOMPARE(m_steps.constFirst(), u"main, restoring 1"_s);
    QCOMPARE(m_steps.constLast(), u"splash, restoring 1"_s);
}

void TestLauncher::handOverGoesInItsOrder()
{
    addCompanion();
    m_tree->globals.settings.set(Setting::Startup, u"Last"_s);
    handOver(m_tree->globals, false, recordedHandOver());
    QCOMPARE(m_steps,
             (QStringList{u"main, restoring 1"_s, u"progress"_s, u"timer 6000"_s,
                          u"end CorvaneS.exe on "_s + m_tree->globals.paths.root,
                          u"start "_s + m_tree->globals.programFolder + u"/CorvaneS.exe"_s, u"splash, restoring 0"_s}));
}

void TestLauncher::emptyStartupDoesNotCountAsLast()
{
    handOver(m_tree->globals, false, recordedHandOver());
    QCOMPARE(m_steps.constFirst(), u"main, restoring 0"_s);
}

void TestLauncher::missingCompanionIsNoFault()
{
    const int before = quillon::faultCount();
    restartCompanion(m_tree->globals, false);
    QCOMPARE(quillon::faultCount(), before);
    QCOMPARE(m_steps.size(), 1);
}

void TestLauncher::companionGetsTheSwitch()
{
    addCompanion();
    restartCompanion(m_tree->globals, true);
    QCOMPARE(m_steps.constLast(), u"start "_s + m_tree->globals.programFolder + u"/CorvaneS.exe /D"_s);
}

void TestLauncher::exitGoesInItsOrder()
{
    QVERIFY(exitProgram(m_tree->globals, true, recordedExit(false)));
    QCOMPARE(m_steps,
             (QStringList{u"save?"_s, u"frmPubOptions"_s, u"frmPubSender"_s, u"frmPubSelCts"_s, u"frmPubTemplates"_s,
                          u"frmPubProgress"_s, u"frmPubAbout"_s, u"frmPubSplash"_s, u"frmPubSchedule"_s, u"help"_s,
                          u"end CorvaneS.exe on "_s + m_tree->globals.paths.root, u"tray"_s, u"main"_s}));
}

void TestLauncher::exitThatLeavesTheCompanionEndsNothing()
{
    QVERIFY(exitProgram(m_tree->globals, false, recordedExit(false)));
    QVERIFY(m_steps.filter(u"CorvaneS.exe"_s).isEmpty());
    QCOMPARE(m_steps.constLast(), u"main"_s);
}

void TestLauncher::cancelledSaveQuestionKeepsTheProgram()
{
    QVERIFY(!exitProgram(m_tree->globals, true, recordedExit(true)));
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
    for (const char *step : {"HandOver::showMainWindow", "HandOver::createHiddenProgress", "HandOver::setPositionTimer",
                             "HandOver::unloadSplash", "ExitSteps::saveCancelled", "ExitSteps::unloadForm",
                             "ExitSteps::closeHelp", "ExitSteps::removeTrayIcon", "ExitSteps::unloadMainWindow"}) {
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: "_s + QString::fromLatin1(step)));
    }
    const int before = quillon::faultCount();
    handOver(m_tree->globals, false, {});
    QVERIFY(exitProgram(m_tree->globals, true, {}));
    QCOMPARE(quillon::faultCount() - before, 9);
    QCOMPARE(m_steps, QStringList(2, u"end CorvaneS.exe on "_s + m_tree->globals.paths.root));
}

QTEST_GUILESS_MAIN(TestLauncher)
#include "test_launcher.moc"
