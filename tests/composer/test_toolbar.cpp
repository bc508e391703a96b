#include "toolbarbutton.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;
using namespace corvane;

/// The buttons of the toolbar, pressed by the mouse on the real window.
class TestToolbar : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_main.reset(); }

    void theButtonsStandThereWithTheirTipsAndIcons();
    void onlyButtonsOfCommandsThatAreThereCanBePressed();
    void eachButtonRunsItsMenuItemAndNoOther_data();
    void eachButtonRunsItsMenuItemAndNoOther();
    void sendStartsTheRun();
    void oboTurnsTheMarkOfItsItem();
    void cutCopyAndPasteWorkOnTheSelection();
    void undoAndRedoBothUndo();
    void deleteClearsTheSelection();
    void findAsksAndSelects();
    void expandBecomesRestoreAndBack();
    void optionsAndMacroShowTheirForms();
    void everyPressHidesThePopUps_data();
    void everyPressHidesThePopUps();

private:
    /// The content box with that text, the focus in it.
    [[nodiscard]] QPlainTextEdit *contentOf(const QString &text) const
    {
        auto *content = m_main->get<QPlainTextEdit>(u"utbContent"_s);
        content->setPlainText(text);
        content->setFocus();
        return content;
    }
    static void select(QPlainTextEdit *box, int begin, int end)
    {
        QTextCursor cursor = box->textCursor();
        cursor.setPosition(begin);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        box->setTextCursor(cursor);
    }

    QStringList m_forms; ///< shown by the window, each with its tab
    std::unique_ptr<MainFixture> m_main;
};

void TestToolbar::init()
{
    m_forms.clear();
    m_main = std::make_unique<MainFixture>([this](MainFixture &main) {
        main.hooks.showForm = [this](const QString &form, int tab) {
            m_forms.append(form + u' ' + QString::number(tab));
        };
    });
    m_main->window->resize(1400, 900); // all buttons are on the bar, none in its overflow
    QVERIFY(QTest::qWaitForWindowActive(m_main->window.get()));
}

void TestToolbar::theButtonsStandThereWithTheirTipsAndIcons()
{
    QStringList captions;
    for (const QAction *action : m_main->get<QToolBar>(u"tlb"_s)->actions()) {
        if (!action->isSeparator()) {
            captions.append(action->text());
            QVERIFY2(!action->toolTip().isEmpty(), qPrintable(action->text()));
            QVERIFY2(!action->icon().isNull(), qPrintable(action->text()));
        }
    }
    QCOMPARE(captions, (QStringList{u"New"_s, u"Open"_s, u"Save"_s, u"Send"_s, u"Schedule"_s, u"OBO"_s, u"Undo"_s,
                                    u"Redo"_s, u"Cut"_s, u"Copy"_s, u"Paste"_s, u"Delete"_s, u"Find"_s, u"Expand"_s,
                                    u"Options"_s, u"Template"_s, u"Macro"_s, u"Contacts"_s, u"Flowchart"_s}));
}

void TestToolbar::onlyButtonsOfCommandsThatAreThereCanBePressed()
{
    QStringList captions;
    for (const QAction *action : m_main->get<QToolBar>(u"tlb"_s)->actions()) {
        if (!action->isSeparator() && action->isEnabled()) {
            captions.append(action->text());
        }
    }
    QCOMPARE(captions, (QStringList{u"New"_s, u"Open"_s, u"Save"_s, u"Send"_s, u"OBO"_s, u"Undo"_s, u"Redo"_s, u"Cut"_s,
                                    u"Copy"_s, u"Paste"_s, u"Delete"_s, u"Find"_s, u"Expand"_s, u"Options"_s,
                                    u"Template"_s, u"Macro"_s}));
}

void TestToolbar::eachButtonRunsItsMenuItemAndNoOther_data()
{
    QTest::addColumn<QString>("item");
    QTest::newRow("New") << u"menfn"_s;
    QTest::newRow("Open") << u"menfo"_s;
    QTest::newRow("Save") << u"menfa"_s;
    QTest::newRow("Send") << u"menfs"_s;
    QTest::newRow("Schedule") << u"menfc"_s;
    QTest::newRow("OBO") << u"menfb"_s;
    QTest::newRow("Undo") << u"meneu"_s;
    QTest::newRow("Redo") << u"mener"_s;
    QTest::newRow("Cut") << u"menet"_s;
    QTest::newRow("Copy") << u"menec"_s;
    QTest::newRow("Paste") << u"menep"_s;
    QTest::newRow("Delete") << u"mened"_s;
    QTest::newRow("Find") << u"menef"_s;
    QTest::newRow("Expand") << u"menve"_s;
    QTest::newRow("Options") << u"mento"_s;
    QTest::newRow("Template") << u"mentt"_s;
    QTest::newRow("Macro") << u"mentm"_s;
    QTest::newRow("Contacts") << u"menta"_s;
    QTest::newRow("Flowchart") << u"menho"_s;
}

void TestToolbar::eachButtonRunsItsMenuItemAndNoOther()
{
    QFETCH(QString, item);
    const QString caption = QString::fromLatin1(QTest::currentDataTag());
    // A command that is not there yet is bound all the same, so that it only has to be written.
    QVERIFY(tool(*m_main, caption));
    tool(*m_main, caption)->setEnabled(true);
    m_main->item(item)->setEnabled(true);
    QStringList run;
    for (const QAction *action : m_main->window->findChildren<QAction *>()) {
        if (action->objectName().startsWith(u"men"_s)) {
            connect(action, &QAction::triggered, this, [&run, action] { run.append(action->objectName()); });
        }
    }
    if (caption == u"Find") {
        m_main->prompts.expectInput(u"FIND_WHAT"_s, QString(), QString());
    }
    if (caption == u"Save") {
        m_main->prompts.expectBox(u"NEED_INFO"_s, quillon::InformationBox);
    }
    press(*m_main, caption);
    QCOMPARE(run, QStringList{item});
}

void TestToolbar::sendStartsTheRun()
{
    press(*m_main, u"Send"_s);
    QCOMPARE(m_main->sends, 1);
    QVERIFY(m_main->exits.isEmpty());
}

void TestToolbar::oboTurnsTheMarkOfItsItem()
{
    for (const bool pressed : {true, false}) {
        press(*m_main, u"OBO"_s);
        QCOMPARE(tool(*m_main, u"OBO"_s)->isChecked(), pressed);
        QCOMPARE(m_main->item(u"menfb"_s)->isChecked(), pressed);
        QCOMPARE(m_main->message().oneByOne(), pressed);
    }
}

void TestToolbar::cutCopyAndPasteWorkOnTheSelection()
{
    QPlainTextEdit *content = contentOf(u"first second"_s);
    select(content, 0, 5);
    press(*m_main, u"Copy"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"first"_s);
    QCOMPARE(content->toPlainText(), u"first second"_s);
    select(content, 5, 12);
    press(*m_main, u"Cut"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u" second"_s);
    QCOMPARE(content->toPlainText(), u"first"_s);
    content->moveCursor(QTextCursor::Start);
    press(*m_main, u"Paste"_s);
    QCOMPARE(content->toPlainText(), u" secondfirst"_s);
}

void TestToolbar::undoAndRedoBothUndo()
{
    QPlainTextEdit *content = contentOf(QString());
    content->textCursor().insertText(u"one"_s);
    content->textCursor().insertBlock();
    content->textCursor().insertText(u"two"_s);
    press(*m_main, u"Undo"_s);
    QCOMPARE(content->toPlainText(), u"one\n"_s);
    press(*m_main, u"Redo"_s);
    QCOMPARE(content->toPlainText(), u"one"_s);
}

void TestToolbar::deleteClearsTheSelection()
{
    QPlainTextEdit *content = contentOf(u"first second"_s);
    QGuiApplication::clipboard()->setText(u"clip"_s);
    select(content, 0, 6);
    press(*m_main, u"Delete"_s);
    QCOMPARE(content->toPlainText(), u"second"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"clip"_s);
    QCOMPARE(m_main->window->focusWidget(), content);
}

void TestToolbar::findAsksAndSelects()
{
    const QPlainTextEdit *content = contentOf(u"say it, say it again"_s);
    m_main->prompts.expectInput(u"FIND_WHAT"_s, QString(), u"it"_s);
    press(*m_main, u"Find"_s);
    QCOMPARE(content->textCursor().selectionStart(), 4);
    QCOMPARE(content->textCursor().selectedText(), u"it"_s);
}

void TestToolbar::expandBecomesRestoreAndBack()
{
    QAction *button = tool(*m_main, u"Expand"_s);
    press(*m_main, u"Expand"_s);
    QVERIFY(!m_main->get(u"utbSubject"_s)->isVisible());
    QVERIFY(!m_main->recipients(0)->isVisible());
    QCOMPARE(button->text(), u"Restore"_s);
    QCOMPARE(button->toolTip(), u"Restores the email content area <F6>."_s);
    QCOMPARE(m_main->item(u"menve"_s)->text(), u"&Restore"_s);
    press(*m_main, u"Restore"_s);
    QVERIFY(m_main->get(u"utbSubject"_s)->isVisible());
    QVERIFY(m_main->recipients(0)->isVisible());
    QCOMPARE(button->text(), u"Expand"_s);
    QCOMPARE(button->toolTip(), u"Expands the email content area <F6>."_s);
    QCOMPARE(m_main->item(u"menve"_s)->text(), u"&Expand"_s);
}

void TestToolbar::optionsAndMacroShowTheirForms()
{
    press(*m_main, u"Options"_s);
    press(*m_main, u"Macro"_s);
    QCOMPARE(m_forms, (QStringList{u"frmPubOptions -1"_s, u"frmPubMacro -1"_s}));
}

void TestToolbar::everyPressHidesThePopUps_data()
{
    QTest::addColumn<bool>("asks");
    for (const char *caption :
         {"Send", "OBO", "Undo", "Redo", "Cut", "Copy", "Paste", "Delete", "Find", "Expand", "Options", "Macro"}) {
        QTest::newRow(caption) << (QByteArray(caption) == "Find");
    }
}

void TestToolbar::everyPressHidesThePopUps()
{
    QFETCH(bool, asks);
    QWidget *palette = m_main->get(u"fra(4)"_s);
    QWidget *filter = m_main->get(u"lstFilter"_s);
    for (QWidget *popUp : {palette, filter}) {
        popUp->setGeometry(300, 400, 200, 100);
        popUp->show();
    }
    if (asks) {
        m_main->prompts.expectInput(u"FIND_WHAT"_s, QString(), QString());
    }
    press(*m_main, QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(palette->isHidden());
    QVERIFY(filter->isHidden());
}

QTEST_MAIN(TestToolbar)
#include "test_toolbar.moc"
