#include "programfixture.h"

using namespace Qt::StringLiterals;
using namespace corvane;

class TestProgramStart : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theStartPreparesTheDataAndShowsTheSplashAlone();
    void theSplashHandsOverInItsOrder();
    void theCompanionIsRestartedWithoutAnArgument();
    void theCompanionIsRestartedWithTheSwitch();
    void aMissingCompanionIsOnlyEnded();
    void aUsableAccountIsNotAskedFor();
    void yesToTheAccountQuestionOpensTheAccountsBeforeTheWindowShows();
    void noToTheAccountQuestionOpensNothing();
    void startupLastTakesTheStoredPlace();
    void anEmptyStartupLeavesTheStoredPlace();
    void startupMaxMaximises();
    void startupSysStartsInTheTrayWithoutShowing();
    void startupSysWithoutATrayMinimises();
    void theLanguageFilesOfTheProgramFolderAreApplied();
    void theListsStandInTheWindow();
    void aServiceThatIsNotSetIsAFaultByItsName();
};

void TestProgramStart::theStartPreparesTheDataAndShowsTheSplashAlone()
{
    ProgramFixture p;
    QVERIFY(QFile::remove(p.tree.globals.paths.optionsFile));
    QVERIFY(QDir(p.tree.globals.paths.logs).removeRecursively());
    p.start();
    QVERIFY(QDir(p.tree.globals.paths.logs).exists());
    QVERIFY(contentOf(p.tree.globals.paths.optionsFile).contains("Startup=Last"));
    QVERIFY(p.form(splashForm)->isVisible());
    QCOMPARE(p.get<QTimer>(p.form(splashForm), u"tim"_s)->interval(), 3000);
    QVERIFY(!p.main());
    for (const QString &name : {progressForm, optionsForm, senderForm}) {
        QVERIFY2(!p.isLoaded(name), qPrintable(name));
    }
    QCOMPARE(p.steps(), QStringList());
}

void TestProgramStart::theSplashHandsOverInItsOrder()
{
    ProgramFixture p;
    bool asked = false;
    p.prompts.expectBox(u"SMTP_NOT_OK"_s, quillon::YesNoBox, quillon::BoxAnswer::No, {}, [&] {
        asked = true;
        QVERIFY(p.form(splashForm)->isVisible());
        QVERIFY(p.main()); // it is being loaded
        QVERIFY(!p.mainIsVisible());
        QVERIFY(!p.isLoaded(progressForm));
        QCOMPARE(p.steps(), QStringList());
    });
    p.atStep = [&p] {
        // Whatever becomes of the companion, by then the windows stand.
        QVERIFY(p.mainIsVisible());
        QVERIFY(p.isLoaded(progressForm));
        QVERIFY(!p.form(progressForm)->isVisible());
        const auto *timPos = p.get<QTimer>(p.main(), u"timPos"_s);
        QVERIFY(timPos->isActive());
        QCOMPARE(timPos->interval(), 6000);
        QVERIFY(p.isLoaded(splashForm));
    };
    p.start();
    p.handOver();
    QVERIFY(asked);
    QCOMPARE(p.steps(), (QStringList{p.endOfCompanion(), p.startOfCompanion()}));
    QVERIFY(p.isLoaded(progressForm));
    QVERIFY(!p.form(progressForm)->isVisible());
    QVERIFY(!p.main()->message().pblnChanged);
}

void TestProgramStart::theCompanionIsRestartedWithoutAnArgument()
{
    ProgramFixture p;
    p.run();
    QCOMPARE(p.steps(), (QStringList{p.endOfCompanion(), p.startOfCompanion()}));
}

void TestProgramStart::theCompanionIsRestartedWithTheSwitch()
{
    ProgramFixture p;
    p.addAccount();
    p.start(true);
    p.handOver();
    QCOMPARE(p.steps(), (QStringList{p.endOfCompanion(), p.startOfCompanion() + u" /D"_s}));
}

void TestProgramStart::aMissingCompanionIsOnlyEnded()
{
    ProgramFixture p;
    QVERIFY(QFile::remove(p.programFolder() + u"/CorvaneS.exe"_s));
    const int before = quillon::faultCount();
    p.run();
    QCOMPARE(p.steps(), QStringList{p.endOfCompanion()});
    QCOMPARE(quillon::faultCount(), before);
    QVERIFY(p.opener.opened.isEmpty());
}

void TestProgramStart::aUsableAccountIsNotAskedFor()
{
    ProgramFixture p;
    p.run();
    QCOMPARE(p.prompts.log(), QStringList());
    QVERIFY(p.mainIsVisible());
}

void TestProgramStart::yesToTheAccountQuestionOpensTheAccountsBeforeTheWindowShows()
{
    ProgramFixture p;
    p.prompts.expectBox(u"SMTP_NOT_OK"_s, quillon::YesNoBox, quillon::BoxAnswer::Yes);
    p.prompts.expectForm(optionsForm, AccountTab, [&p] {
        QVERIFY(!p.mainIsVisible());
        QVERIFY(p.isLoaded(splashForm));
        // What the user adds there is offered when the window shows.
        p.form(optionsForm)->show();
        writeFile(p.tree.globals.paths.smtpFile, ProgramFixture::account + QByteArray("\r\n"));
        p.forms().unload(optionsForm);
    });
    p.start();
    p.handOver();
    QCOMPARE(p.prompts.leftOver(), QStringList());
    QCOMPARE(p.get<QComboBox>(p.main(), u"cbb(6)"_s)->itemText(0), u"ann@example.com"_s);
    QVERIFY(p.mainIsVisible());
}

void TestProgramStart::noToTheAccountQuestionOpensNothing()
{
    ProgramFixture p;
    p.prompts.expectBox(u"SMTP_NOT_OK"_s, quillon::YesNoBox, quillon::BoxAnswer::No);
    p.start();
    p.handOver();
    QVERIFY(!p.isLoaded(optionsForm));
    QCOMPARE(p.prompts.log().size(), 1);
}

/// A place for the window that it would not take by itself.
static void storePlace(ProgramFixture &p)
{
    p.set("Position", "Left", u"300"_s);
    p.set("Position", "Top", u"450"_s);
    p.set("Position", "Width", QString::number(15 * 755));
    p.set("Position", "Height", QString::number(15 * 555));
}

void TestProgramStart::startupLastTakesTheStoredPlace()
{
    ProgramFixture p;
    p.set("Other", "Startup", u"Last"_s);
    storePlace(p);
    p.run();
    QCOMPARE(p.main()->pos(), QPoint(20, 30));
    QCOMPARE(p.main()->size(), QSize(755, 555));
    // And only at the start: a change of size later is the user's.
    p.main()->resize(800, 600);
    QCOMPARE(p.main()->size(), QSize(800, 600));
}

void TestProgramStart::anEmptyStartupLeavesTheStoredPlace()
{
    ProgramFixture p;
    p.set("Other", "Startup", QString());
    storePlace(p);
    p.run();
    QVERIFY(p.mainIsVisible());
    QVERIFY(!p.main()->isMaximized());
    QVERIFY(p.main()->size() != QSize(755, 555));
}

void TestProgramStart::startupMaxMaximises()
{
    ProgramFixture p;
    p.set("Other", "Startup", u"Max"_s);
    p.run();
    QVERIFY(p.mainIsVisible());
    QVERIFY(p.main()->isMaximized());
}

void TestProgramStart::startupSysStartsInTheTrayWithoutShowing()
{
    ProgramFixture p;
    p.set("Other", "Startup", u"Sys"_s);
    p.run();
    QCoreApplication::processEvents();
    QVERIFY(!p.mainIsVisible());
    QCOMPARE(p.count(u"quit"_s), 0);
    ProgramFixture::trayItem(u"ments"_s)->trigger();
    QVERIFY(p.mainIsVisible());
    QVERIFY(!p.main()->isMinimized());
}

void TestProgramStart::startupSysWithoutATrayMinimises()
{
    ProgramFixture p;
    p.set("Other", "Startup", u"Sys"_s);
    p.tray = false;
    p.run();
    QVERIFY(p.mainIsVisible());
    QVERIFY(p.main()->isMinimized());
}

void TestProgramStart::theLanguageFilesOfTheProgramFolderAreApplied()
{
    ProgramFixture p;
    writeFile(p.programFolder() + u"/tips.dll"_s, "[frmPubMain]\r\nopt(4)=&Wirklich\r\nopt(4).tip=Jetzt\r\n"
                                                  "[frmPubOptions]\r\nsbt(2)=&Zu\r\n");
    writeFile(p.programFolder() + u"/menus.dll"_s,
              "[frmPubMain]\r\nmenfs=&Senden\r\n[frmPubSender]\r\nments=&Zeigen\r\n");
    p.run();
    QCOMPARE(p.get<QAbstractButton>(p.main(), u"opt(4)"_s)->text(), u"&Wirklich"_s);
    QCOMPARE(p.get(p.main(), u"opt(4)"_s)->toolTip(), u"Jetzt"_s);
    QVERIFY2(p.item(u"menfs"_s)->text().startsWith(u"&Senden"_s), qPrintable(p.item(u"menfs"_s)->text()));
    QCOMPARE(ProgramFixture::trayItem(u"ments"_s)->text(), u"&Zeigen"_s);
    QCOMPARE(p.button(optionsForm, u"sbt(2)"_s)->text(), u"&Zu"_s);
}

void TestProgramStart::theListsStandInTheWindow()
{
    ProgramFixture p;
    writeFile(p.tree.globals.paths.signsFile, "Formal\t\r\nShort\t\r\n");
    writeFile(p.tree.globals.paths.sendersFile, "Bob\tbob@example.com\t\r\n");
    p.set("Signature", "Default", u"Short"_s);
    p.run();
    QCOMPARE(p.get<QComboBox>(p.main(), u"cbb(6)"_s)->currentText(), u"ann@example.com"_s);
    QCOMPARE(p.get<QComboBox>(p.main(), u"cbb(0)"_s)->currentText(), u"Ann Lee <ann@example.com>"_s);
    QVERIFY(p.get<QComboBox>(p.main(), u"cbb(0)"_s)->findText(u"Bob <bob@example.com>"_s) >= 0);
    QCOMPARE(p.item(u"menissa(1)"_s)->text(), u"Formal"_s);
    QCOMPARE(p.item(u"menissa(2)"_s)->text(), u"Short (default)"_s);
    QVERIFY(p.get<QMenu>(p.main(), u"menim"_s)->actions().size() > 10); // the predefined macros
}

void TestProgramStart::aServiceThatIsNotSetIsAFaultByItsName()
{
    const TemporaryTree tree;
    const ExpectedPrompts prompts;
    QTest::ignoreMessage(QtWarningMsg, "hook not set: ProgramServices::trayAvailable");
    QTest::ignoreMessage(QtWarningMsg, "hook not set: ProgramServices::quit");
    const int before = quillon::faultCount();
    {
        Program program(tree.globals.programFolder, false, {});
        QCOMPARE(quillon::faultCount() - before, 2);
        QVERIFY(&quillon::prompts() != &prompts);
    }
    QCOMPARE(&quillon::prompts(), &prompts);
}

QTEST_MAIN(TestProgramStart)
#include "test_programstart.moc"
