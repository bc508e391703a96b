#include "composer/commandtable.h"
#include "support/testopener.h"
#include "toolbarbutton.h"

#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

/// The items of all menus that can be chosen, without those of the encodings.
QStringList enabledItems(const MainFixture &main)
{
    QStringList enabled;
    for (const QMenu *menu : main.window->menuBar()->findChildren<QMenu *>()) {
        for (const QAction *action : menu->actions()) {
            const bool item = !action->isSeparator() && !action->menu<QMenu *>();
            if (item && action->isEnabled() && !action->objectName().startsWith(u"menoesa("_s)) {
                enabled.append(action->objectName());
            }
        }
    }
    return enabled;
}

} // namespace

/// Which commands there are, where they stand in the window, and what the ones beside Edit do.
class TestMainCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theseMenuItemsCanBeChosenAndNoOthers();
    void theseButtonsCanBePressedAndNoOthers();
    void removeAndOpenNeedAMarkedAttachment();
    void aHookThatIsNotSetIsAFaultByItsName();
    void theItemsOfDialogsOpenThem();
    void everyMenuItemIsACommandOrAnArraysBase();
    void everyButtonOfTheWindowIsACommand();
    void whatReachesACommandIsEnabledWithIt();
    void buttonsRunTheirMenuItems_data();
    void buttonsRunTheirMenuItems();
    void theThreeButtonsOfTheHeaderOpenTheOptions();
    void sendRunsFromMenuToolbarAndKey();
    void theTwoExitsTellWhetherTheSchedulerStops();
    void viewLogOpensThisMonthsFile();
    void viewLogWithoutAFileSaysSo();
    void openLogFolderOpensIt();
    void receiptTogglesItsMark();
    void oneByOneShowsOnTheToolbar();
};

void TestMainCommands::theseMenuItemsCanBeChosenAndNoOthers()
{
    const MainFixture main;
    QStringList enabled = enabledItems(main);
    enabled.sort();
    QCOMPARE(enabled, (QStringList{u"menea"_s,  u"menec"_s, u"mened"_s,     u"menef"_s,     u"menel"_s,     u"menep"_s,
                                   u"mener"_s,  u"menet"_s, u"meneu"_s,     u"menfa"_s,     u"menfb"_s,     u"menfn"_s,
                                   u"menfo"_s,  u"menfs"_s, u"menfu"_s,     u"menfx"_s,     u"meniaa"_s,    u"meniac"_s,
                                   u"meniaf"_s, u"menop"_s, u"menosh(0)"_s, u"menosh(1)"_s, u"menosh(2)"_s, u"menti"_s,
                                   u"mentl"_s,  u"mentm"_s, u"mento"_s,     u"mentr"_s,     u"mentt"_s,     u"mentv"_s,
                                   u"menve"_s}));
    for (const QString &name : {u"opt(8)"_s, u"cbb(4)"_s, u"cbb(5)"_s, u"menob"_s}) {
        // Not isEnabled(): a control in a hidden, enabled frame counts too.
        QVERIFY2(!main.get(name)->isEnabledTo(main.get(name)->parentWidget()), qPrintable(name));
    }
}

void TestMainCommands::theseButtonsCanBePressedAndNoOthers()
{
    const MainFixture main;
    QStringList enabled;
    for (const QAbstractButton *button : main.window->findChildren<QAbstractButton *>()) {
        if (button->objectName().startsWith(u"sbt"_s) && button->isEnabledTo(button->parentWidget())) {
            enabled.append(button->objectName());
        }
    }
    enabled.sort();
    QCOMPARE(enabled, (QStringList{u"sbt(13)"_s, u"sbt(2)"_s, u"sbt(21)"_s, u"sbt(4)"_s, u"sbtMain(0)"_s,
                                   u"sbtMain(1)"_s, u"sbtMain(2)"_s, u"sbtSeen"_s}));
}

void TestMainCommands::removeAndOpenNeedAMarkedAttachment()
{
    MainFixture main;
    auto *list = main.get<QListWidget>(u"lsv(0)"_s);
    const QList<QAction *> items{main.item(u"meniao"_s), main.item(u"meniar"_s)};
    const QList<QAbstractButton *> buttons{main.button(u"sbt(5)"_s), main.button(u"sbt(3)"_s)};
    const auto enabled = [&] {
        QList<bool> all;
        for (const QAction *item : items) {
            all.append(item->isEnabled());
        }
        for (const QAbstractButton *button : buttons) {
            all.append(button->isEnabled());
        }
        return all;
    };
    const QList<bool> none(4, false);
    const QList<bool> each(4, true);
    QCOMPARE(enabled(), none);
    const QString path = main.tree.path(u"a.txt"_s);
    writeFile(path, "a");
    main.prompts.expectFiles({path});
    main.item(u"meniaa"_s)->trigger();
    QCOMPARE(list->count(), 1);
    QCOMPARE(enabled(), none); // there is a row, but it is not marked
    list->item(0)->setSelected(true);
    QCOMPARE(enabled(), each);
    main.item(u"meniar"_s)->trigger();
    QCOMPARE(list->count(), 0);
    QCOMPARE(enabled(), none);
}

void TestMainCommands::aHookThatIsNotSetIsAFaultByItsName()
{
    TemporaryTree tree;
    const QStringList names = {u"send"_s,          u"exitProgram"_s, u"findSmtpRecord"_s,     u"insertIntoSignature"_s,
                               u"findSignature"_s, u"showForm"_s,    u"optionsOpen"_s,        u"sending"_s,
                               u"showProgress"_s,  u"prompts"_s,     u"rememberRecipients"_s, u"loadLists"_s,
                               u"checkAccount"_s,  u"readPrompts"_s, u"minimised"_s,          u"closed"_s};
    for (const QString &name : names) {
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: MainHooks::"_s + name));
    }
    const int before = quillon::faultCount();
    frmPubMain window(tree.globals, {});
    QCOMPARE(quillon::faultCount() - before, static_cast<int>(names.size()));
    window.load(); // and without them the window does without
    window.findChild<QAction *>(u"menfs"_s)->trigger();
    QCOMPARE(quillon::faultCount() - before, static_cast<int>(names.size()));
}

void TestMainCommands::theItemsOfDialogsOpenThem()
{
    MainFixture main;
    for (const QString &item : {u"menti"_s, u"mentm"_s, u"mento"_s}) {
        main.item(item)->trigger();
    }
    QCOMPARE(main.shown, (QStringList{u"frmPubPrompt tab -1"_s, u"frmPubMacro tab -1"_s, u"frmPubOptions tab -1"_s}));
}

void TestMainCommands::everyMenuItemIsACommandOrAnArraysBase()
{
    MainFixture main;
    for (QMenu *menu : main.window->menuBar()->findChildren<QMenu *>()) {
        for (QAction *action : menu->actions()) {
            const bool array = action->objectName().startsWith(u"menoesa("_s);
            if (!action->isSeparator() && !action->menu<QMenu *>() && !array) {
                QVERIFY2(main.window->commands().command(action->objectName()), qPrintable(action->text()));
            }
        }
    }
}

void TestMainCommands::everyButtonOfTheWindowIsACommand()
{
    MainFixture main;
    QStringList inTable;
    for (const Command &command : main.window->commands().commands()) {
        inTable += command.buttons;
    }
    int buttons = 0;
    for (const QAbstractButton *button : main.window->findChildren<QAbstractButton *>()) {
        if (button->objectName().startsWith(u"sbt"_s)) {
            ++buttons;
            QVERIFY2(inTable.count(button->objectName()) == 1, qPrintable(button->objectName()));
        }
    }
    QCOMPARE(buttons, 29); // sbt(0) to sbt(24), sbtMain(0) to sbtMain(2), sbtSeen
}

void TestMainCommands::buttonsRunTheirMenuItems_data()
{
    QTest::addColumn<QString>("item");
    QTest::newRow("sbt(0)") << u"mentsk"_s;
    QTest::newRow("sbt(1)") << u"mentsf"_s;
    QTest::newRow("sbt(2)") << u"meniaa"_s;
    QTest::newRow("sbt(3)") << u"meniar"_s;
    QTest::newRow("sbt(4)") << u"meniac"_s;
    QTest::newRow("sbt(5)") << u"meniao"_s;
    QTest::newRow("sbt(12)") << u"mentf"_s;
    QTest::newRow("sbt(13)") << u"menel"_s;
    QTest::newRow("sbt(16)") << u"menod"_s;
    QTest::newRow("sbt(17)") << u"menoi"_s;
    QTest::newRow("sbt(21)") << u"meniaf"_s;
    QTest::newRow("sbt(22)") << u"menih"_s;
    QTest::newRow("sbt(23)") << u"meneh"_s;
    QTest::newRow("sbt(24)") << u"menip"_s;
}

void TestMainCommands::buttonsRunTheirMenuItems()
{
    QFETCH(QString, item);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    MainFixture main;
    // A command that is not there yet is bound all the same, so that it only has to be written.
    main.button(name)->setEnabled(true);
    main.item(item)->setEnabled(true);
    QStringList run;
    for (const QAction *action : main.window->findChildren<QAction *>()) {
        connect(action, &QAction::triggered, this, [&run, action] { run.append(action->objectName()); });
    }
    if (name == u"sbt(2)") {
        main.prompts.expectFiles({});
    } else if (name == u"sbt(21)") {
        main.prompts.expectFolder(QString());
    } else if (name == u"sbt(13)") {
        main.prompts.expectBox(u"CLEAR_RECIP"_s, 35, quillon::BoxAnswer::No);
    }
    main.button(name)->click();
    QCOMPARE(run, QStringList{item});
}

void TestMainCommands::theThreeButtonsOfTheHeaderOpenTheOptions()
{
    QStringList shown;
    const MainFixture main([&shown](MainFixture &fixture) {
        fixture.hooks.showForm = [&shown](const QString &form, int tab) {
            shown.append(form + u' ' + QString::number(tab));
        };
    });
    for (const QString &name : {u"sbtMain(0)"_s, u"sbtMain(1)"_s, u"sbtMain(2)"_s, u"sbtSeen"_s}) {
        main.button(name)->click();
    }
    QCOMPARE(shown, (QStringList{u"frmPubOptions 1"_s, u"frmPubOptions 2"_s, u"frmPubOptions 2"_s}));
}

void TestMainCommands::sendRunsFromMenuToolbarAndKey()
{
    MainFixture main;
    main.item(u"menfs"_s)->trigger();
    QCOMPARE(main.sends, 1);
    press(main, u"Send"_s);
    QCOMPARE(main.sends, 2);
    QVERIFY(QTest::qWaitForWindowActive(main.window.get()));
    QTest::keyClick(main.get(u"utbContent"_s), Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(main.sends, 3);
}

void TestMainCommands::theTwoExitsTellWhetherTheSchedulerStops()
{
    MainFixture main;
    main.item(u"menfu"_s)->trigger();
    main.item(u"menfx"_s)->trigger();
    QCOMPARE(main.exits, QList<bool>({false, true}));
}

void TestMainCommands::viewLogOpensThisMonthsFile()
{
    MainFixture main;
    TestOpener opener;
    const QString log = main.globals().paths.logs + u"/202603.log"_s;
    writeFile(log, "Begin");
    main.item(u"mentv"_s)->trigger();
    QCOMPARE(opener.opened.size(), 1);
    QVERIFY2(opener.opened.first().endsWith(u"/logs/202603.log"_s), qPrintable(opener.opened.first()));
}

void TestMainCommands::viewLogWithoutAFileSaysSo()
{
    MainFixture main;
    TestOpener opener;
    writeFile(main.globals().paths.logs + u"/202602.log"_s, "Begin");
    main.prompts.expectBox(u"NO_LOG"_s, 64);
    main.item(u"mentv"_s)->trigger();
    QVERIFY(QDir().mkpath(main.globals().paths.logs + u"/202603.log"_s)); // a folder is no log
    main.prompts.expectBox(u"NO_LOG"_s, 64);
    main.item(u"mentv"_s)->trigger();
    QCOMPARE(opener.opened, QStringList());
}

void TestMainCommands::openLogFolderOpensIt()
{
    MainFixture main;
    TestOpener opener;
    main.item(u"mentl"_s)->trigger();
    QCOMPARE(opener.opened.size(), 1);
    QVERIFY2(opener.opened.first().endsWith(u"/logs"_s), qPrintable(opener.opened.first()));
}

void TestMainCommands::receiptTogglesItsMark()
{
    MainFixture main;
    main.item(u"mentr"_s)->trigger();
    QVERIFY(main.message().receipt());
    main.item(u"mentr"_s)->trigger();
    QVERIFY(!main.message().receipt());
}

void TestMainCommands::oneByOneShowsOnTheToolbar()
{
    MainFixture main;
    main.item(u"menfb"_s)->trigger();
    QVERIFY(main.message().oneByOne());
    QVERIFY(tool(main, u"OBO"_s)->isChecked());
    tool(main, u"OBO"_s)->trigger();
    QVERIFY(!main.message().oneByOne());
    QVERIFY(!main.item(u"menfb"_s)->isChecked());
    main.message().setOneByOne(true);
    QVERIFY(tool(main, u"OBO"_s)->isChecked());
    main.window->ResetMessageOptions();
    QVERIFY(!tool(main, u"OBO"_s)->isChecked());
    QVERIFY(!main.message().oneByOne());
}

void TestMainCommands::whatReachesACommandIsEnabledWithIt()
{
    QMainWindow form;
    const auto control = [&form](auto *made, const QString &name) {
        made->setObjectName(name);
        return made;
    };
    auto *item = control(new QAction(&form), u"item"_s);
    auto *tool = control(new QAction(&form), u"tool"_s);
    auto *button = control(new QPushButton(&form), u"button"_s);
    auto *field = control(new QLineEdit(&form), u"field"_s);
    auto *rich = control(new QAction(&form), u"rich"_s);
    auto *richButton = control(new QPushButton(&form), u"richButton"_s);
    auto *missing = control(new QAction(&form), u"missing"_s);
    auto *alone = control(new QPushButton(&form), u"alone"_s);
    QStringList ran;
    const auto run = [&ran](const QString &name) { return [&ran, name] { ran.append(name); }; };
    CommandTable table(&form, {{u"item"_s, u"tool"_s, {u"button"_s}, run(u"item"_s), Command::Anywhere, {u"field"_s}},
                               {u"rich"_s, {}, {u"richButton"_s}, run(u"rich"_s), Command::RichOnly},
                               {u"missing"_s, {}, {}, {}, Command::RichOnly},
                               {{}, {}, {u"alone"_s}, run(u"alone"_s)}});
    for (const bool on : {false, true, false}) {
        if (on || rich->isEnabled()) {
            table.setEnabled(Command::RichOnly, on);
        }
        QVERIFY(item->isEnabled() && tool->isEnabled() && button->isEnabled() && field->isEnabled());
        QVERIFY(alone->isEnabled() && !missing->isEnabled());
        QCOMPARE(rich->isEnabled(), on);
        QCOMPARE(richButton->isEnabled(), on);
        ran.clear();
        item->trigger();
        tool->trigger();
        button->click();
        richButton->click();
        alone->click();
        QCOMPARE(ran, (QStringList{u"item"_s, u"item"_s, u"item"_s} + (on ? QStringList{u"rich"_s} : QStringList()) +
                       QStringList{u"alone"_s}));
    }
    QCOMPARE(table.command(u"rich"_s)->where, Command::RichOnly);
    QCOMPARE(table.command(u"Rich"_s), nullptr);
}

QTEST_MAIN(TestMainCommands)
#include "test_maincommands.moc"
