#include "composer/commandtable.h"
#include "support/testopener.h"
#include "toolbarbutton.h"

#include <QMenuBar>

using namespace Qt::StringLiterals;
using namespace corvane;

/// Which commands there are, where they stand in the window, and what the ones beside Edit do.
class TestMainCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commandsWithoutAHandlerAreDisabledAndOthersEnabled();
    void everyMenuItemIsACommandOrAnArraysBase();
    void everyButtonOfTheWindowIsACommand();
    void everyToolbarCaptionRunsItsMenuItem();
    void sendRunsFromMenuToolbarAndKey();
    void theTwoExitsTellWhetherTheSchedulerStops();
    void viewLogOpensThisMonthsFile();
    void viewLogWithoutAFileSaysSo();
    void openLogFolderOpensIt();
    void receiptTogglesItsMark();
    void oneByOneShowsOnTheToolbar();
};

void TestMainCommands::commandsWithoutAHandlerAreDisabledAndOthersEnabled()
{
    MainFixture main;
    int built = 0;
    for (const Command &command : main.window->commands().commands()) {
        const bool expected = command.run && command.where == Command::Anywhere;
        built += expected ? 1 : 0;
        for (const QString &name : QStringList{command.item, command.tool}) {
            if (!name.isEmpty()) {
                QVERIFY2(main.item(name)->isEnabled() == expected, qPrintable(name));
            }
        }
        for (const QString &name : command.buttons + command.follow) {
            // Not isEnabled(): a control in a hidden, enabled frame counts too.
            QVERIFY2(main.get(name)->isEnabledTo(main.get(name)->parentWidget()) == expected, qPrintable(name));
        }
    }
    QVERIFY(built >= 20);
    for (const QString &name : {u"menfn"_s, u"menor"_s, u"mento"_s}) {
        QVERIFY2(!main.item(name)->isEnabled(), qPrintable(name));
    }
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
    QCOMPARE(buttons, 28); // sbt(0) to sbt(24) and sbtMain(0) to sbtMain(2)
}

void TestMainCommands::everyToolbarCaptionRunsItsMenuItem()
{
    MainFixture main;
    const QList<std::pair<QString, QString>> pairs = {
        {u"New"_s, u"menfn"_s},      {u"Open"_s, u"menfo"_s},     {u"Save"_s, u"menfa"_s},
        {u"Send"_s, u"menfs"_s},     {u"Schedule"_s, u"menfc"_s}, {u"OBO"_s, u"menfb"_s},
        {u"Undo"_s, u"meneu"_s},     {u"Redo"_s, u"mener"_s},     {u"Cut"_s, u"menet"_s},
        {u"Copy"_s, u"menec"_s},     {u"Paste"_s, u"menep"_s},    {u"Delete"_s, u"mened"_s},
        {u"Find"_s, u"menef"_s},     {u"Expand"_s, u"menve"_s},   {u"Options"_s, u"mento"_s},
        {u"Template"_s, u"mentt"_s}, {u"Macro"_s, u"mentm"_s},    {u"Contacts"_s, u"menta"_s},
        {u"Flowchart"_s, u"menho"_s}};
    for (const auto &[caption, item] : pairs) {
        QAction *button = tool(main, caption);
        QVERIFY2(button, qPrintable(caption));
        const Command *command = main.window->commands().command(item);
        QCOMPARE(command->tool, button->objectName());
        QCOMPARE(button->isEnabled(), main.item(item)->isEnabled());
        QVERIFY2(!button->toolTip().isEmpty(), qPrintable(caption));
        QVERIFY2(!button->icon().isNull(), qPrintable(caption));
    }
}

void TestMainCommands::sendRunsFromMenuToolbarAndKey()
{
    MainFixture main;
    main.item(u"menfs"_s)->trigger();
    QCOMPARE(main.sends, 1);
    tool(main, u"Send"_s)->trigger();
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

QTEST_MAIN(TestMainCommands)
#include "test_maincommands.moc"
