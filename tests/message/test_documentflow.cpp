#include "core/texts.h"
#include "message/documentflow.h"
#include "message/templatefiles.h"
#include "message/templatename.h"
#include "support/expectedprompts.h"
#include "support/fakewindow.h"
#include "support/treefixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;
using Field = Message::Field;

/// New, Open, Save and the question before a change is lost, over a window of plain values.
class TestDocumentFlow : public QObject, private TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeTree();
        setLanguageFolder(u"" PROGRAM_FOLDER ""_s);
        m_window = std::make_unique<FakeWindow>();
        m_window->windowTitle = newMessageTitle();
        m_prompts = std::make_unique<ExpectedPrompts>();
        m_steps.clear();
        m_richText.clear();
        m_choice.clear();
        m_flow = std::make_unique<DocumentFlow>(
            m_tree->globals, *m_window, *m_window,
            DocumentFlow::Hooks{[this] { layOutNew(); }, [this] { return m_richText; }, [this] { showTemplates(); },
                                [this] { m_steps.append(u"recipients"_s); }});
    }
    void cleanup()
    {
        m_flow.reset();
        m_prompts.reset();
        m_window.reset();
        dropTree();
    }

    void anUnchangedMessageAsksNothing();
    void aChangedBlankMessageAsksNothing_data();
    void aChangedBlankMessageAsksNothing();
    void anythingWrittenIsAskedFor_data();
    void anythingWrittenIsAskedFor();
    void theSourceCountsOnlyBeforeAChangeIsLost();
    void noGoesOnAndCancelStays();
    void yesWithoutANameAsksAgain();
    void yesThatSavesGoesOn();
    void aBlankMessageIsNotSaved();
    void theSubjectIsProposedAndTheTitleTells();
    void forbiddenCharactersAreLeftOutOfTheAnswer();
    void anAnswerOfForbiddenCharactersMakesNamelessFiles();
    void itsOwnNameIsOverwrittenSilently();
    void anotherNameInAnyCaseIsAskedFor();
    void aChangeOfCaseLeavesTheListAndNewFiles();
    void whatCouldNotBeWrittenIsNotGivenUp_data();
    void whatCouldNotBeWrittenIsNotGivenUp();
    void noToOverwritingProposesAgain();
    void newLaysOutAndTellsNothingWasChanged();
    void newThatIsCancelledLeavesAllAsItIs();
    void openLoadsTheChoice();
    void openWithoutAChoiceLeavesTheMessage();
    void openThatIsCancelledShowsNoDialog();
    void managingAsksFirstAndChangesNothing();
    void aPreviewSaysSoInTheTitle();
    void theOpenNameIsThatOfTheTitle();

private:
    void layOutNew()
    {
        m_steps.append(u"new, ready %1, title %2"_s.arg(m_window->mblnReady).arg(m_window->windowTitle));
        m_window->setText(Field::PlainContent, u"Signature"_s);
        m_window->pblnChanged = true; // as the fields' change rule does
    }
    void showTemplates()
    {
        m_steps.append(u"dialog, managing %1, ready %2, choice '%3'"_s.arg(m_flow->isManaging())
                           .arg(m_window->mblnReady)
                           .arg(m_flow->psTempName));
        m_flow->psTempName = m_choice;
    }
    void changed(Field field, const QString &text)
    {
        m_window->setText(field, text);
        m_window->pblnChanged = true;
    }
    [[nodiscard]] QStringList names() const { return templateNames(m_tree->globals); }
    [[nodiscard]] QStringList files() const
    {
        QStringList all = QDir(m_tree->globals.paths.templates).entryList(QDir::Files, QDir::Name);
        all.removeOne(u"templates.dll"_s);
        return all;
    }

    std::unique_ptr<FakeWindow> m_window;
    std::unique_ptr<ExpectedPrompts> m_prompts;
    std::unique_ptr<DocumentFlow> m_flow;
    QStringList m_steps;
    QString m_richText;
    QString m_choice;
};

void TestDocumentFlow::anUnchangedMessageAsksNothing()
{
    m_window->setText(Field::Subject, u"May"_s);
    m_window->pblnChanged = false;
    QVERIFY(!m_flow->ConfirmSave());
}

void TestDocumentFlow::aChangedBlankMessageAsksNothing_data()
{
    QTest::addColumn<QString>("blank");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << u" \t "_s;
    QTest::newRow("line ends") << u"\r\n\r\n"_s;
}

void TestDocumentFlow::aChangedBlankMessageAsksNothing()
{
    QFETCH(const QString, blank);
    for (const Field field : {Field::To, Field::CC, Field::BCC, Field::Subject, Field::PlainContent}) {
        changed(field, blank);
    }
    m_window->setText(Field::Sender, u"Ann"_s);
    m_window->setText(Field::RichContent, u"<p>not the body that is sent</p>"_s);
    QVERIFY(!m_flow->ConfirmSave());
    m_window->setFormat(Message::Format::Rich);
    m_window->setText(Field::PlainContent, u"not the body that is sent"_s);
    m_richText = blank;
    m_window->setText(Field::Source, blank);
    QVERIFY(!m_flow->ConfirmSave());
}

void TestDocumentFlow::anythingWrittenIsAskedFor_data()
{
    QTest::addColumn<Field>("field");
    QTest::newRow("To") << Field::To;
    QTest::newRow("CC") << Field::CC;
    QTest::newRow("BCC") << Field::BCC;
    QTest::newRow("Subject") << Field::Subject;
    QTest::newRow("content") << Field::PlainContent;
}

void TestDocumentFlow::anythingWrittenIsAskedFor()
{
    QFETCH(const Field, field);
    changed(field, u" x "_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    QVERIFY(m_flow->ConfirmSave());
    QVERIFY(m_window->pblnChanged);
}

void TestDocumentFlow::theSourceCountsOnlyBeforeAChangeIsLost()
{
    m_window->setFormat(Message::Format::Rich);
    changed(Field::Source, u"<hr>"_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::No);
    QVERIFY(!m_flow->ConfirmSave());
    m_prompts->expectBox(u"NEED_INFO"_s, quillon::InformationBox);
    QVERIFY(!m_flow->SaveAsTemplate());
    m_richText = u"text"_s;
    m_prompts->expectInput(u"INPUT_NAME"_s, u"New Template"_s, QString());
    QVERIFY(!m_flow->SaveAsTemplate());
}

void TestDocumentFlow::noGoesOnAndCancelStays()
{
    changed(Field::To, u"a@example.com"_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::No);
    QVERIFY(!m_flow->ConfirmSave());
    QVERIFY(m_window->pblnChanged);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    QVERIFY(m_flow->ConfirmSave());
    QCOMPARE(names(), QStringList());
}

void TestDocumentFlow::yesWithoutANameAsksAgain()
{
    changed(Field::Subject, u"May"_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Yes)
        .expectInput(u"INPUT_NAME"_s, u"May"_s, QString())
        .expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Yes)
        .expectInput(u"INPUT_NAME"_s, u"May"_s, QString())
        .expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    QVERIFY(m_flow->ConfirmSave());
    QCOMPARE(files(), QStringList());
}

void TestDocumentFlow::yesThatSavesGoesOn()
{
    changed(Field::Subject, u"May"_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Yes)
        .expectInput(u"INPUT_NAME"_s, u"May"_s, u"May"_s);
    QVERIFY(!m_flow->ConfirmSave());
    QVERIFY(!m_window->pblnChanged);
    QCOMPARE(names(), QStringList{u"May"_s});
    QCOMPARE(m_steps, QStringList{u"recipients"_s});
}

void TestDocumentFlow::aBlankMessageIsNotSaved()
{
    m_window->pblnChanged = true;
    m_prompts->expectBox(u"NEED_INFO"_s, quillon::InformationBox);
    QVERIFY(!m_flow->SaveAsTemplate());
    QCOMPARE(files(), QStringList());
    QVERIFY(m_window->pblnChanged);
    QCOMPARE(m_window->windowTitle, newMessageTitle());
}

void TestDocumentFlow::theSubjectIsProposedAndTheTitleTells()
{
    changed(Field::Subject, u" a/b:c "_s);
    m_prompts->expectInput(u"INPUT_NAME"_s, u"abc"_s, u"Spring"_s);
    QVERIFY(m_flow->SaveAsTemplate());
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"Spring\""_s);
    QVERIFY(!m_window->pblnChanged);
    QCOMPARE(files(), (QStringList{u"content_Spring.dll"_s, u"head_Spring.dll"_s}));
    // From now on its own name is proposed, whatever the subject.
    m_prompts->expectInput(u"INPUT_NAME"_s, u"Spring"_s, QString());
    QVERIFY(!m_flow->SaveAsTemplate());
    m_window->setText(Field::Subject, u"?*|"_s);
    m_window->windowTitle = newMessageTitle();
    m_prompts->expectInput(u"INPUT_NAME"_s, QString(), QString());
    QVERIFY(!m_flow->SaveAsTemplate());
}

void TestDocumentFlow::forbiddenCharactersAreLeftOutOfTheAnswer()
{
    changed(Field::To, u"a@example.com"_s);
    m_prompts->expectInput(u"INPUT_NAME"_s, u"New Template"_s, u" a\\b/c:d*e?f\"g<h>i|j "_s);
    QVERIFY(m_flow->SaveAsTemplate());
    QCOMPARE(names(), QStringList{u" abcdefghij "_s});
    QVERIFY(files().contains(u"head_ abcdefghij .dll"_s));
}

void TestDocumentFlow::anAnswerOfForbiddenCharactersMakesNamelessFiles()
{
    changed(Field::To, u"a@example.com"_s);
    m_prompts->expectInput(u"INPUT_NAME"_s, u"New Template"_s, u"??"_s);
    QVERIFY(m_flow->SaveAsTemplate());
    QVERIFY(files().contains(u"head_.dll"_s));
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"\""_s);
}

void TestDocumentFlow::itsOwnNameIsOverwrittenSilently()
{
    writeFile(m_tree->globals.paths.templatesFile, "May\r\n");
    m_window->windowTitle = editTitle(u"May"_s);
    changed(Field::To, u"new@example.com"_s);
    m_prompts->expectInput(u"INPUT_NAME"_s, u"May"_s, u"May"_s);
    QVERIFY(m_flow->SaveAsTemplate());
    QCOMPARE(names(), QStringList{u"May"_s});
    QVERIFY(contentOf(headPath(m_tree->globals, u"May"_s)).contains("To=new@example.com"));
}

void TestDocumentFlow::anotherNameInAnyCaseIsAskedFor()
{
    writeFile(m_tree->globals.paths.templatesFile, "May\r\nold\r\n");
    m_window->windowTitle = editTitle(u"May"_s);
    changed(Field::To, u"new@example.com"_s);
    for (const QString &answer : {u"old"_s, u" OLD "_s, u"MAY"_s, u"May "_s}) {
        m_prompts->expectInput(u"INPUT_NAME"_s, u"May"_s, answer)
            .expectBox(u"TEMP_EXISTS"_s, quillon::YesNoBox, BoxAnswer::No, answer)
            .expectInput(u"INPUT_NAME"_s, u"May"_s, QString());
        QVERIFY(!m_flow->SaveAsTemplate());
    }
    QVERIFY(m_window->pblnChanged);
    QCOMPARE(files(), QStringList());
}

void TestDocumentFlow::aChangeOfCaseLeavesTheListAndNewFiles()
{
    writeFile(m_tree->globals.paths.templatesFile, "old\r\n");
    changed(Field::To, u"new@example.com"_s);
    m_prompts->expectInput(u"INPUT_NAME"_s, u"New Template"_s, u"OLD"_s)
        .expectBox(u"TEMP_EXISTS"_s, quillon::YesNoBox, BoxAnswer::Yes, u"OLD"_s);
    QVERIFY(m_flow->SaveAsTemplate());
    QCOMPARE(names(), QStringList{u"old"_s});
    QVERIFY(files().contains(u"head_OLD.dll"_s));
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"OLD\""_s);
}

void TestDocumentFlow::whatCouldNotBeWrittenIsNotGivenUp_data()
{
    QTest::addColumn<QString>("obstacle"); // a folder in place of a file
    QTest::addColumn<QString>("name");
    QTest::newRow("head") << u"head_May.dll"_s << u"May"_s;
    QTest::newRow("content") << u"content_May.dll"_s << u"May"_s;
    QTest::newRow("a name that no file can have") << QString() << QString(300, u'x');
}

void TestDocumentFlow::whatCouldNotBeWrittenIsNotGivenUp()
{
    QFETCH(const QString, obstacle);
    QFETCH(const QString, name);
    if (!obstacle.isEmpty()) {
        QVERIFY(QDir().mkpath(m_tree->globals.paths.templates + u'/' + obstacle + u"/kept"_s));
    }
    changed(Field::Subject, u"May"_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Yes)
        .expectInput(u"INPUT_NAME"_s, u"May"_s, name)
        .expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    QVERIFY(m_flow->ConfirmSave());
    QVERIFY(m_window->pblnChanged);
    QCOMPARE(m_window->windowTitle, newMessageTitle());
}

void TestDocumentFlow::noToOverwritingProposesAgain()
{
    writeFile(m_tree->globals.paths.templatesFile, "old\r\n");
    changed(Field::Subject, u"May"_s);
    m_prompts->expectInput(u"INPUT_NAME"_s, u"May"_s, u"old"_s)
        .expectBox(u"TEMP_EXISTS"_s, quillon::YesNoBox, BoxAnswer::No, u"old"_s)
        .expectInput(u"INPUT_NAME"_s, u"May"_s, u"New one"_s);
    QVERIFY(m_flow->SaveAsTemplate());
    QCOMPARE(names(), (QStringList{u"old"_s, u"New one"_s}));
}

void TestDocumentFlow::newLaysOutAndTellsNothingWasChanged()
{
    m_window->windowTitle = editTitle(u"May"_s);
    m_window->mblnReady = true;
    m_flow->New();
    QCOMPARE(m_steps, QStringList{u"new, ready 0, title Corvane - New Message"_s});
    QVERIFY(m_window->mblnReady);
    QVERIFY(!m_window->pblnChanged);
}

void TestDocumentFlow::newThatIsCancelledLeavesAllAsItIs()
{
    m_window->windowTitle = editTitle(u"May"_s);
    m_window->mblnReady = true;
    changed(Field::Subject, u"May"_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    m_flow->New();
    QCOMPARE(m_steps, QStringList());
    QCOMPARE(m_window->windowTitle, editTitle(u"May"_s));
    QVERIFY(m_window->pblnChanged);
    QVERIFY(m_window->mblnReady);
}

void TestDocumentFlow::openLoadsTheChoice()
{
    writeFile(headPath(m_tree->globals, u"May"_s), "[Head]\r\nTo=a@example.com\r\nType=Plain\r\n");
    m_flow->psTempName = u"of an earlier time"_s;
    m_choice = u"May"_s;
    m_window->mblnReady = true;
    changed(Field::PlainContent, u"  "_s);
    m_flow->Open();
    QCOMPARE(m_steps, QStringList{u"dialog, managing 0, ready 0, choice ''"_s});
    QCOMPARE(m_window->text(Field::To), u"a@example.com"_s);
    QCOMPARE(m_window->windowTitle, editTitle(u"May"_s));
    QVERIFY(!m_window->pblnChanged);
    QVERIFY(m_window->mblnReady);
}

void TestDocumentFlow::openWithoutAChoiceLeavesTheMessage()
{
    m_window->setText(Field::To, u"b@example.com"_s);
    m_window->mblnReady = true;
    m_window->pblnChanged = false;
    m_flow->Open();
    QCOMPARE(m_window->text(Field::To), u"b@example.com"_s);
    QCOMPARE(m_window->windowTitle, newMessageTitle());
    QVERIFY(m_window->mblnReady);
    // What the dialog's previews have marked stays marked.
    m_window->pblnChanged = true;
    m_window->setText(Field::To, QString());
    m_flow->Open();
    QVERIFY(m_window->pblnChanged);
}

void TestDocumentFlow::openThatIsCancelledShowsNoDialog()
{
    changed(Field::Subject, u"May"_s);
    m_window->mblnReady = true;
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    m_flow->Open();
    QCOMPARE(m_steps, QStringList());
    QVERIFY(m_window->mblnReady);
}

void TestDocumentFlow::managingAsksFirstAndChangesNothing()
{
    changed(Field::Subject, u"May"_s);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    m_flow->manage();
    QCOMPARE(m_steps, QStringList());
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::No);
    m_choice = u"nothing that is asked for"_s;
    m_flow->manage();
    QCOMPARE(m_steps, QStringList{u"dialog, managing 1, ready 0, choice ''"_s});
    QCOMPARE(m_window->text(Field::Subject), u"May"_s);
    QVERIFY(m_window->mblnReady);
    m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::No);
    m_choice.clear();
    m_flow->Open();
    QVERIFY(!m_flow->isManaging());
}

void TestDocumentFlow::aPreviewSaysSoInTheTitle()
{
    writeFile(headPath(m_tree->globals, u"May"_s), "[Head]\r\nTo=a@example.com\r\nType=Plain\r\n");
    m_flow->preview(u"May"_s);
    QCOMPARE(m_window->windowTitle, u"Corvane - Preview \"May\""_s);
    QCOMPARE(m_window->text(Field::To), u"a@example.com"_s);
    m_flow->preview(u"gone"_s);
    QCOMPARE(m_window->windowTitle, u"Corvane - Preview \"gone\""_s);
    QCOMPARE(m_window->text(Field::To), QString());
    m_flow->show(u"May"_s);
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"May\""_s);
    QCOMPARE(m_window->text(Field::To), u"a@example.com"_s);
}

void TestDocumentFlow::theOpenNameIsThatOfTheTitle()
{
    QCOMPARE(m_flow->openName(), u"NT_NT_NNTT"_s);
    m_window->windowTitle = editTitle(u"NT"_s);
    QCOMPARE(m_flow->openName(), u"NT"_s);
    m_window->windowTitle = editTitle(QString());
    QCOMPARE(m_flow->openName(), QString());
}

QTEST_GUILESS_MAIN(TestDocumentFlow)
#include "test_documentflow.moc"
