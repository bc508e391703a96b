#include "composer/commandtable.h"
#include "composer/contentlayout.h"
#include "mainfixture.h"
#include "support/testopener.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = MessageWindow::Field;

namespace {

/// The toolbar button with that caption.
QAction *tool(const MainFixture &main, const QString &caption)
{
    for (QAction *action : main.get<QToolBar>(u"tlb"_s)->actions()) {
        if (action->text() == caption) {
            return action;
        }
    }
    return nullptr;
}

} // namespace

class TestMainCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commandsWithoutAHandlerAreDisabledAndOthersEnabled();
    void everyMenuItemIsACommandOrAnArraysBase();
    void everyButtonOfTheWindowIsACommand();
    void everyToolbarCaptionRunsItsMenuItem();
    void sendRunsFromMenuToolbarAndKey();
    void theTwoExitsTellWhetherTheSchedulerStops();
    void redoOnATextBoxUndoesAgain();
    void editCommandsWorkOnTheContent();
    void editCommandsWorkOnAComboBox();
    void editCommandsLeaveTheEncodingAsItIs();
    void editCommandsLeaveOtherControlsAlone();
    void deleteClearsTheSelectionAndNothingElse();
    void selectAllTakesTheWholeText();
    void findSelectsTheFirstOccurrenceEachTime();
    void findIsExactInCaseAndCrossesNoLine();
    void findWithAnEmptyAnswerEnds();
    void findWithoutATextControlSaysSo();
    void clearRecipientsAsksFirst();
    void clearRecipientsOnNoOrCancelChangesNothing();
    void viewLogOpensThisMonthsFile();
    void viewLogWithoutAFileSaysSo();
    void openLogFolderOpensIt();
    void receiptTogglesItsMark();
    void oneByOneShowsOnTheToolbar();
    void aMissingTextFileLeavesEmptyBoxesThatStillWait();
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

void TestMainCommands::redoOnATextBoxUndoesAgain()
{
    MainFixture main;
    auto *content = main.get<QPlainTextEdit>(u"utbContent"_s);
    content->setFocus();
    content->textCursor().insertText(u"one"_s);
    content->textCursor().insertBlock();
    content->textCursor().insertText(u"two"_s);
    main.item(u"meneu"_s)->trigger();
    QCOMPARE(content->toPlainText(), u"one\n"_s);
    main.item(u"mener"_s)->trigger();
    QCOMPARE(content->toPlainText(), u"one"_s);
}

void TestMainCommands::editCommandsWorkOnTheContent()
{
    MainFixture main;
    auto *content = main.get<QPlainTextEdit>(u"utbContent"_s);
    content->setPlainText(u"first second"_s);
    content->setFocus();
    QTextCursor cursor = content->textCursor();
    cursor.setPosition(0);
    cursor.setPosition(5, QTextCursor::KeepAnchor);
    content->setTextCursor(cursor);
    tool(main, u"Copy"_s)->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), u"first"_s);
    tool(main, u"Cut"_s)->trigger();
    QCOMPARE(content->toPlainText(), u" second"_s);
    content->moveCursor(QTextCursor::End);
    tool(main, u"Paste"_s)->trigger();
    QCOMPARE(content->toPlainText(), u" secondfirst"_s);
    tool(main, u"Undo"_s)->trigger();
    QCOMPARE(content->toPlainText(), u" second"_s);
}

void TestMainCommands::editCommandsWorkOnAComboBox()
{
    MainFixture main;
    main.button(u"opt(1)"_s)->click();
    QComboBox *sender = main.combo(0);
    sender->setEditText(u"ann@example.com"_s);
    sender->setFocus();
    main.item(u"menea"_s)->trigger();
    QCOMPARE(sender->lineEdit()->selectedText(), u"ann@example.com"_s);
    main.item(u"menet"_s)->trigger();
    QCOMPARE(sender->currentText(), QString());
    main.item(u"menep"_s)->trigger();
    QCOMPARE(sender->currentText(), u"ann@example.com"_s);
}

void TestMainCommands::editCommandsLeaveTheEncodingAsItIs()
{
    MainFixture main;
    QGuiApplication::clipboard()->setText(u"clip"_s);
    main.combo(2)->setFocus();
    main.combo(2)->lineEdit()->selectAll();
    for (const char16_t *item : {u"meneu", u"menet", u"mened", u"menep"}) {
        main.item(QString::fromUtf16(item))->trigger();
        QCOMPARE(main.message().text(Field::Encoding), u"Unicode (UTF-8)"_s);
    }
    main.item(u"menec"_s)->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), u"Unicode (UTF-8)"_s);
}

void TestMainCommands::editCommandsLeaveOtherControlsAlone()
{
    MainFixture main;
    main.message().setText(Field::To, u"a@example.com"_s);
    main.message().setAttachmentPaths({main.globals().paths.smtpFile});
    QGuiApplication::clipboard()->setText(u"clip"_s);
    main.get(u"lsv(0)"_s)->setFocus();
    for (const char16_t *item : {u"meneu", u"mener", u"menet", u"menec", u"menep", u"menea", u"mened"}) {
        main.item(QString::fromUtf16(item))->trigger();
    }
    QCOMPARE(main.message().text(Field::To), u"a@example.com"_s);
    QCOMPARE(main.message().attachmentPaths().size(), 1);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"clip"_s);
}

void TestMainCommands::deleteClearsTheSelectionAndNothingElse()
{
    MainFixture main;
    auto *subject = main.get<QLineEdit>(u"utbSubject"_s);
    subject->setText(u"abcdef"_s);
    subject->setFocus();
    subject->setCursorPosition(2);
    main.item(u"mened"_s)->trigger();
    QCOMPARE(subject->text(), u"abcdef"_s);
    subject->setSelection(1, 3);
    main.item(u"mened"_s)->trigger();
    QCOMPARE(subject->text(), u"aef"_s);
    QCOMPARE(main.window->focusWidget(), subject);
    QPlainTextEdit *to = main.recipients(0);
    to->setPlainText(u"a@example.com, b@example.com"_s);
    to->setFocus();
    main.item(u"mened"_s)->trigger();
    QCOMPARE(to->toPlainText(), u"a@example.com, b@example.com"_s);
    to->selectAll();
    main.item(u"mened"_s)->trigger();
    QCOMPARE(to->toPlainText(), QString());
}

void TestMainCommands::selectAllTakesTheWholeText()
{
    MainFixture main;
    for (const QString &name : {u"txt(1)"_s, u"utbContent"_s}) {
        auto *box = main.get<QPlainTextEdit>(name);
        box->setPlainText(u"one\ntwo"_s);
        box->setFocus();
        main.item(u"menea"_s)->trigger();
        QCOMPARE(box->textCursor().selectedText().size(), 7);
        QCOMPARE(main.window->focusWidget(), box);
    }
    auto *subject = main.get<QLineEdit>(u"utbSubject"_s);
    subject->setText(u"all of it"_s);
    subject->setFocus();
    main.item(u"menea"_s)->trigger();
    QCOMPARE(subject->selectedText(), u"all of it"_s);
}

void TestMainCommands::findSelectsTheFirstOccurrenceEachTime()
{
    MainFixture main;
    auto *content = main.get<QPlainTextEdit>(u"utbContent"_s);
    content->setPlainText(u"first line\nsay it\nsay it again"_s);
    content->setFocus();
    content->moveCursor(QTextCursor::End);
    for (int i = 0; i < 2; ++i) {
        main.prompts.expectInput(u"FIND_WHAT"_s, QString(), u"say"_s);
        main.item(u"menef"_s)->trigger();
        QCOMPARE(content->textCursor().selectionStart(), 11);
        QCOMPARE(content->textCursor().selectedText(), u"say"_s);
    }
    auto *subject = main.get<QLineEdit>(u"utbSubject"_s);
    subject->setText(u"a b a b"_s);
    subject->setFocus();
    main.prompts.expectInput(u"FIND_WHAT"_s, QString(), u"b"_s);
    main.item(u"menef"_s)->trigger();
    QCOMPARE(subject->selectionStart(), 2);
    QCOMPARE(subject->selectedText(), u"b"_s);
}

void TestMainCommands::findIsExactInCaseAndCrossesNoLine()
{
    MainFixture main;
    QPlainTextEdit *to = main.recipients(0);
    to->setPlainText(u"Ann ann"_s);
    to->setFocus();
    main.prompts.expectInput(u"FIND_WHAT"_s, QString(), u"ann"_s);
    main.item(u"menef"_s)->trigger();
    QCOMPARE(to->textCursor().selectionStart(), 4);
    main.prompts.expectInput(u"FIND_WHAT"_s, QString(), u"nobody"_s);
    main.item(u"menef"_s)->trigger();
    QCOMPARE(to->textCursor().selectedText(), u"ann"_s);
}

void TestMainCommands::findWithAnEmptyAnswerEnds()
{
    MainFixture main;
    QPlainTextEdit *to = main.recipients(0);
    to->setPlainText(u"text"_s);
    to->setFocus();
    main.prompts.expectInput(u"FIND_WHAT"_s, QString(), QString());
    main.item(u"menef"_s)->trigger();
    QVERIFY(!to->textCursor().hasSelection());
}

void TestMainCommands::findWithoutATextControlSaysSo()
{
    MainFixture main;
    main.button(u"opt(4)"_s)->setFocus();
    main.prompts.expectBox(u"FIND_FOCUS"_s, 64);
    main.item(u"menef"_s)->trigger();
}

void TestMainCommands::clearRecipientsAsksFirst()
{
    MainFixture main;
    for (const Field field : {Field::To, Field::CC, Field::BCC}) {
        main.message().setText(field, u"a@example.com"_s);
    }
    main.message().setFocus(Field::Subject);
    main.prompts.expectBox(u"CLEAR_RECIP"_s, 35, quillon::BoxAnswer::Yes);
    main.button(u"sbt(13)"_s)->click();
    for (const Field field : {Field::To, Field::CC, Field::BCC}) {
        QCOMPARE(main.message().text(field), QString());
    }
    QCOMPARE(main.window->focusWidget(), main.recipients(0));
}

void TestMainCommands::clearRecipientsOnNoOrCancelChangesNothing()
{
    MainFixture main;
    main.message().setText(Field::CC, u"a@example.com"_s);
    for (const auto answer : {quillon::BoxAnswer::No, quillon::BoxAnswer::Cancel}) {
        main.prompts.expectBox(u"CLEAR_RECIP"_s, 35, answer);
        main.item(u"menel"_s)->trigger();
        QCOMPARE(main.message().text(Field::CC), u"a@example.com"_s);
    }
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

void TestMainCommands::aMissingTextFileLeavesEmptyBoxesThatStillWait()
{
    MainFixture main;
    main.message().setText(Field::To, u"a@example.com"_s);
    setLanguageFolder(main.tree.path(u"nowhere"_s));
    main.prompts.expectBox(u"CLEAR_RECIP"_s, 35, quillon::BoxAnswer::Cancel);
    main.item(u"menel"_s)->trigger();
    QCOMPARE(main.prompts.log().size(), 1);
    QVERIFY2(main.prompts.log().first().endsWith(u"style 35: "_s), qPrintable(main.prompts.log().first()));
    QCOMPARE(main.message().text(Field::To), u"a@example.com"_s);
    main.item(u"menfs"_s)->hover();
    QCOMPARE(main.panel(), u" "_s);
}

QTEST_MAIN(TestMainCommands)
#include "test_maincommands.moc"
