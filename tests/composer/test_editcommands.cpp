#include "toolbarbutton.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

/// The commands of the Edit menu, each on the control that has the focus.
class TestEditCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
    void aMissingTextFileLeavesEmptyBoxesThatStillWait();
};

void TestEditCommands::redoOnATextBoxUndoesAgain()
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

void TestEditCommands::editCommandsWorkOnTheContent()
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

void TestEditCommands::editCommandsWorkOnAComboBox()
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

void TestEditCommands::editCommandsLeaveTheEncodingAsItIs()
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

void TestEditCommands::editCommandsLeaveOtherControlsAlone()
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

void TestEditCommands::deleteClearsTheSelectionAndNothingElse()
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

void TestEditCommands::selectAllTakesTheWholeText()
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

void TestEditCommands::findSelectsTheFirstOccurrenceEachTime()
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

void TestEditCommands::findIsExactInCaseAndCrossesNoLine()
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

void TestEditCommands::findWithAnEmptyAnswerEnds()
{
    MainFixture main;
    QPlainTextEdit *to = main.recipients(0);
    to->setPlainText(u"text"_s);
    to->setFocus();
    main.prompts.expectInput(u"FIND_WHAT"_s, QString(), QString());
    main.item(u"menef"_s)->trigger();
    QVERIFY(!to->textCursor().hasSelection());
}

void TestEditCommands::findWithoutATextControlSaysSo()
{
    MainFixture main;
    main.button(u"opt(4)"_s)->setFocus();
    main.prompts.expectBox(u"FIND_FOCUS"_s, 64);
    main.item(u"menef"_s)->trigger();
}

void TestEditCommands::clearRecipientsAsksFirst()
{
    MainFixture main;
    for (const Field field : {Field::To, Field::CC, Field::BCC}) {
        main.message().setText(field, u"a@example.com"_s);
    }
    main.view().setFocus(Field::Subject);
    main.prompts.expectBox(u"CLEAR_RECIP"_s, 35, quillon::BoxAnswer::Yes);
    main.button(u"sbt(13)"_s)->click();
    for (const Field field : {Field::To, Field::CC, Field::BCC}) {
        QCOMPARE(main.message().text(field), QString());
    }
    QCOMPARE(main.window->focusWidget(), main.recipients(0));
}

void TestEditCommands::clearRecipientsOnNoOrCancelChangesNothing()
{
    MainFixture main;
    main.message().setText(Field::CC, u"a@example.com"_s);
    for (const auto answer : {quillon::BoxAnswer::No, quillon::BoxAnswer::Cancel}) {
        main.prompts.expectBox(u"CLEAR_RECIP"_s, 35, answer);
        main.item(u"menel"_s)->trigger();
        QCOMPARE(main.message().text(Field::CC), u"a@example.com"_s);
    }
}

void TestEditCommands::aMissingTextFileLeavesEmptyBoxesThatStillWait()
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

QTEST_MAIN(TestEditCommands)
#include "test_editcommands.moc"
