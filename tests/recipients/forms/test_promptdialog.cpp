#include "quillon/files/settingsfile.h"
#include "quillon/forms/formregistry.h"
#include "recipients/forms/frmpubprompt.h"
#include "recipients/inputprompts.h"
#include "support/expectedprompts.h"
#include "support/temporarytree.h"

#include <QAccessible>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

class TestPromptDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // The list
    void anEmptyFileShowsOnlyThePlaceholderRow();
    void withoutLanguageFilesThePlaceholderStillStands();
    void theListIsWhatWasLastRead();
    void blankEntriesArePassedOver();
    void aLineThatIsNoRecipientIsListedLikeAnyOther();
    // Add
    void addRemovesThePlaceholder();
    void addTrimsAndAppends();
    void anEmptyAnswerAddsNothing();
    void addAsksAgainUntilTheEntryIsARecipient();
    void anEntryInAnotherCaseIsAlreadyThere();
    // Edit
    void editOnThePlaceholderSaysSo();
    void editOffersTheCurrentRowAndMovesIt();
    void anUnchangedTextEndsSilently();
    void anotherCaseAloneIsAMatchWithItself();
    void anotherRowsTextIsRefused();
    void anEmptyAnswerChangesNothing();
    void editAsksAgainWithTheOldText();
    void aDoubleClickEdits();
    void aDoubleClickOnThePlaceholderSaysSo();
    // Delete
    void deleteOnThePlaceholderSaysSo();
    void deleteAsksAndNoKeepsAll();
    void deleteTakesEverySelectedRow();
    void aDeleteWithNothingSelectedStillAsks();
    void deletingTheLastEntryBringsThePlaceholderBack();
    // Find
    void findSelectsEveryRowThatHoldsTheText();
    void findDeselectsWhatWasSelected();
    void findGoesToTheFirstHitSoThatEditTakesIt();
    void anEmptyFindKeepsTheSelection();
    void findDoesNotSelectThePlaceholder();
    void aHundredThousandHitsInTurnStaySelectable();
    // Keys and looks
    void altAAdds();
    void altEEdits();
    void deleteKeyDeletes();
    void f3Finds();
    void f1OpensTheHelpOnceThereIsOne();
    void enterAndEscapeDoNothing();
    void closeUnloads();
    void mnemonicsAreUnique();
    void everyTextOfTheLanguageFileHasItsControl();
    void nothingIsCutOffAtAnySize();
    void changesReachTheListInMemoryWhenItIsReadAgain();

private:
    frmPubPrompt *form() { return m_forms->as<frmPubPrompt>(u"frmPubPrompt"_s); }
    QListView *list() { return form()->findChild<QListView *>(u"lstRecips"_s); }
    QPushButton *button(const QString &name) { return form()->findChild<QPushButton *>(name); }
    void prompts(const QStringList &entries);
    void show();
    void selectRows(const QList<int> &rows);
    QStringList rows();
    QStringList selected();
    [[nodiscard]] QStringList lines() const { return m_tree->globals.lines.ReadLines(file()); }
    [[nodiscard]] const QString &file() const { return m_tree->globals.paths.promptsFile; }

    std::unique_ptr<TemporaryTree> m_tree;
    std::unique_ptr<InputPrompts> m_memory;
    std::unique_ptr<quillon::FormRegistry> m_forms;
    std::function<void()> m_help;
};

void TestPromptDialog::init()
{
    m_tree = std::make_unique<TemporaryTree>();
    m_tree->prepare();
    setLanguageFolder(QStringLiteral(TEST_SOURCE_DIR) + u"/../../../language/en"_s);
    m_memory = std::make_unique<InputPrompts>(m_tree->globals);
    m_forms = std::make_unique<quillon::FormRegistry>();
    m_forms->add(u"frmPubPrompt"_s, [this] { return new frmPubPrompt(m_tree->globals, m_memory->entries(), m_help); });
}

void TestPromptDialog::cleanup()
{
    m_help = {};
    m_forms.reset();
    m_memory.reset();
    m_tree.reset();
}

void TestPromptDialog::prompts(const QStringList &entries)
{
    writeFile(file(), (entries.join(u"\r\n"_s) + u"\r\n"_s).toUtf8());
    m_memory->upsReadPrompts();
}

void TestPromptDialog::show()
{
    form()->show();
    QVERIFY(QTest::qWaitForWindowActive(form()));
}

void TestPromptDialog::selectRows(const QList<int> &rows)
{
    for (const int row : rows) {
        list()->selectionModel()->select(list()->model()->index(row, 0), QItemSelectionModel::Select);
    }
}

QStringList TestPromptDialog::rows()
{
    QStringList texts;
    for (int row = 0; row < list()->model()->rowCount(); ++row) {
        texts.append(list()->model()->index(row, 0).data().toString());
    }
    return texts;
}

QStringList TestPromptDialog::selected()
{
    QStringList texts;
    for (int row = 0; row < list()->model()->rowCount(); ++row) {
        if (list()->selectionModel()->isRowSelected(row)) {
            texts.append(list()->model()->index(row, 0).data().toString());
        }
    }
    return texts;
}

void TestPromptDialog::anEmptyFileShowsOnlyThePlaceholderRow()
{
    QCOMPARE(rows(), QStringList{LookupText(u"NO_PROMPT"_s)});
    QVERIFY(!rows().constFirst().isEmpty());
    QCOMPARE(form()->windowTitle(), u"Input Prompt Manager"_s);
}

void TestPromptDialog::withoutLanguageFilesThePlaceholderStillStands()
{
    setLanguageFolder(m_tree->path(u"none"_s));
    QCOMPARE(rows(), QStringList{QString()});
    ExpectedPrompts asked;
    asked.expectBox(u"NO_RECI_EDIT"_s, 64);
    button(u"sbtEdit"_s)->click();
}

void TestPromptDialog::theListIsWhatWasLastRead()
{
    prompts({u"b@x.org"_s, u"Ann Lee <a@x.org>"_s});
    writeFile(file(), "later@x.org\r\n");
    QCOMPARE(rows(), (QStringList{u"b@x.org"_s, u"Ann Lee <a@x.org>"_s}));
    QCOMPARE(selected(), QStringList());
}

void TestPromptDialog::blankEntriesArePassedOver()
{
    prompts({u" "_s, u"b@x.org"_s, u"\t"_s});
    QCOMPARE(rows(), QStringList{u"b@x.org"_s});
}

void TestPromptDialog::aLineThatIsNoRecipientIsListedLikeAnyOther()
{
    prompts({u"Lovelace"_s, u"b@x.org"_s});
    selectRows({0});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"Lovelace"_s, u"Lovelace"_s)
        .expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtEdit"_s)->click();
    button(u"sbtDel"_s)->click();
    QCOMPARE(lines(), QStringList{u"b@x.org"_s});
}

void TestPromptDialog::addRemovesThePlaceholder()
{
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"a@x.org"_s);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(rows(), QStringList{u"a@x.org"_s});
    QCOMPARE(lines(), QStringList{u"a@x.org"_s});
}

void TestPromptDialog::addTrimsAndAppends()
{
    prompts({u"z@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"  Ann Lee <a@x.org> "_s);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(rows(), (QStringList{u"z@x.org"_s, u"Ann Lee <a@x.org>"_s}));
    QCOMPARE(lines(), rows());
}

void TestPromptDialog::anEmptyAnswerAddsNothing()
{
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"   "_s);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(contentOf(file()), QByteArray(""));
    QCOMPARE(rows(), QStringList{LookupText(u"NO_PROMPT"_s)});
}

void TestPromptDialog::addAsksAgainUntilTheEntryIsARecipient()
{
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"nobody"_s)
        .expectBox(u"INPUT_RECIP"_s, 64)
        .expectInput(u"INPUT_RECIP"_s, QString(), u"Ann<a@x.org>"_s)
        .expectBox(u"INPUT_RECIP"_s, 64)
        .expectInput(u"INPUT_RECIP"_s, QString(), u"Ann <a@x.org>"_s);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(lines(), QStringList{u"Ann <a@x.org>"_s});
}

void TestPromptDialog::anEntryInAnotherCaseIsAlreadyThere()
{
    prompts({u" Ann Lee <a@x.org>"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"ann lee <A@X.org>"_s).expectBox(u"ITEM_EXIST"_s, 64);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(lines(), QStringList{u" Ann Lee <a@x.org>"_s});
}

void TestPromptDialog::editOnThePlaceholderSaysSo()
{
    ExpectedPrompts asked;
    asked.expectBox(u"NO_RECI_EDIT"_s, 64);
    button(u"sbtEdit"_s)->click();
}

void TestPromptDialog::editOffersTheCurrentRowAndMovesIt()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s});
    list()->setCurrentIndex(list()->model()->index(1, 0));
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"b@x.org"_s, u" z@x.org "_s);
    button(u"sbtEdit"_s)->click();
    QCOMPARE(rows(), (QStringList{u"a@x.org"_s, u"c@x.org"_s, u"z@x.org"_s}));
    QCOMPARE(lines(), (QStringList{u"a@x.org"_s, u"z@x.org"_s, u"c@x.org"_s}));
}

void TestPromptDialog::anUnchangedTextEndsSilently()
{
    prompts({u"a@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, u"a@x.org"_s);
    button(u"sbtEdit"_s)->click();
    QCOMPARE(lines(), QStringList{u"a@x.org"_s});
}

void TestPromptDialog::anotherCaseAloneIsAMatchWithItself()
{
    prompts({u"a@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, u"A@x.org"_s).expectBox(u"ITEM EXIST"_s, 64);
    button(u"sbtEdit"_s)->click();
    QCOMPARE(lines(), QStringList{u"a@x.org"_s});
}

void TestPromptDialog::anotherRowsTextIsRefused()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, u"B@X.ORG"_s).expectBox(u"ITEM EXIST"_s, 64);
    button(u"sbtEdit"_s)->click();
    QCOMPARE(lines(), (QStringList{u"a@x.org"_s, u"b@x.org"_s}));
}

void TestPromptDialog::anEmptyAnswerChangesNothing()
{
    prompts({u"a@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, QString());
    button(u"sbtEdit"_s)->click();
    QCOMPARE(lines(), QStringList{u"a@x.org"_s});
}

void TestPromptDialog::editAsksAgainWithTheOldText()
{
    prompts({u"a@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, u"nobody"_s)
        .expectBox(u"INPUT_RECIP"_s, 64)
        .expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, u"b@x.org"_s);
    button(u"sbtEdit"_s)->click();
    QCOMPARE(lines(), QStringList{u"b@x.org"_s});
}

void TestPromptDialog::aDoubleClickEdits()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s});
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"b@x.org"_s, QString());
    const QPoint place = list()->visualRect(list()->model()->index(1, 0)).center();
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, place);
}

void TestPromptDialog::aDoubleClickOnThePlaceholderSaysSo()
{
    show();
    ExpectedPrompts asked;
    asked.expectBox(u"NO_RECI_EDIT"_s, 64);
    const QPoint place = list()->visualRect(list()->model()->index(0, 0)).center();
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, place);
}

void TestPromptDialog::deleteOnThePlaceholderSaysSo()
{
    selectRows({0});
    ExpectedPrompts asked;
    asked.expectBox(u"NO_RECI_DEL"_s, 64);
    button(u"sbtDel"_s)->click();
}

void TestPromptDialog::deleteAsksAndNoKeepsAll()
{
    prompts({u"a@x.org"_s});
    selectRows({0});
    ExpectedPrompts asked;
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::No);
    button(u"sbtDel"_s)->click();
    QCOMPARE(lines(), QStringList{u"a@x.org"_s});
    QCOMPARE(rows(), QStringList{u"a@x.org"_s});
}

void TestPromptDialog::deleteTakesEverySelectedRow()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s, u"d@x.org"_s});
    selectRows({0, 2, 3});
    ExpectedPrompts asked;
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtDel"_s)->click();
    QCOMPARE(lines(), QStringList{u"b@x.org"_s});
    QCOMPARE(rows(), QStringList{u"b@x.org"_s});
    QCOMPARE(selected(), QStringList());
}

void TestPromptDialog::aDeleteWithNothingSelectedStillAsks()
{
    prompts({u"a@x.org"_s});
    ExpectedPrompts asked;
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtDel"_s)->click();
    QCOMPARE(lines(), QStringList{u"a@x.org"_s});
}

void TestPromptDialog::deletingTheLastEntryBringsThePlaceholderBack()
{
    prompts({u"a@x.org"_s});
    selectRows({0});
    ExpectedPrompts asked;
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes).expectBox(u"NO_RECI_DEL"_s, 64);
    button(u"sbtDel"_s)->click();
    QCOMPARE(rows(), QStringList{LookupText(u"NO_PROMPT"_s)});
    button(u"sbtDel"_s)->click();
}

void TestPromptDialog::findSelectsEveryRowThatHoldsTheText()
{
    prompts({u"Ann Lee <x@y.org>"_s, u"bob@leeds.org"_s, u"Zoe <z@y.org>"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u" LEE "_s).expectInput(u"FIND_RECI"_s, QString(), u"Y.Org"_s);
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), (QStringList{u"Ann Lee <x@y.org>"_s, u"bob@leeds.org"_s}));
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), (QStringList{u"Ann Lee <x@y.org>"_s, u"Zoe <z@y.org>"_s}));
}

void TestPromptDialog::findDeselectsWhatWasSelected()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s});
    selectRows({0, 1});
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"nobody"_s);
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), QStringList());
    QCOMPARE(list()->currentIndex().row(), 0);
}

void TestPromptDialog::findGoesToTheFirstHitSoThatEditTakesIt()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s, u"bb@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"b"_s).expectInput(u"INPUT_RECIP"_s, u"b@x.org"_s, QString());
    button(u"sbtFind"_s)->click();
    button(u"sbtEdit"_s)->click();
    QCOMPARE(selected(), (QStringList{u"b@x.org"_s, u"bb@x.org"_s}));
}

void TestPromptDialog::anEmptyFindKeepsTheSelection()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s});
    selectRows({1});
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"  "_s);
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), QStringList{u"b@x.org"_s});
}

void TestPromptDialog::findDoesNotSelectThePlaceholder()
{
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), LookupText(u"NO_PROMPT"_s));
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), QStringList());
}

void TestPromptDialog::aHundredThousandHitsInTurnStaySelectable()
{
    QStringList entries;
    for (int i = 0; i < 100'000; ++i) {
        entries.append((i % 2 == 0 ? u"even"_s : u"odd"_s) + QString::number(i) + u"@x.org"_s);
    }
    prompts(entries);
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"even"_s)
        .expectInput(u"FIND_RECI"_s, QString(), u"odd"_s)
        .expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtFind"_s)->click();
    QCOMPARE(list()->selectionModel()->selection().size(), 50'000);
    QCoreApplication::processEvents();
    button(u"sbtFind"_s)->click();
    QVERIFY(!list()->selectionModel()->isRowSelected(0));
    QVERIFY(list()->selectionModel()->isRowSelected(99'999));
    QCoreApplication::processEvents();
    button(u"sbtDel"_s)->click();
    QCOMPARE(lines().size(), 50'000);
    QCOMPARE(rows(), lines());
}

void TestPromptDialog::altAAdds()
{
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), QString());
    QTest::keyClick(list(), Qt::Key_A, Qt::AltModifier);
}

void TestPromptDialog::altEEdits()
{
    prompts({u"a@x.org"_s});
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, QString());
    QTest::keyClick(list(), Qt::Key_E, Qt::AltModifier);
}

void TestPromptDialog::deleteKeyDeletes()
{
    prompts({u"a@x.org"_s});
    show();
    selectRows({0});
    ExpectedPrompts asked;
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    QTest::keyClick(list(), Qt::Key_Delete);
    QCOMPARE(lines(), QStringList());
}

void TestPromptDialog::f3Finds()
{
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), QString());
    QTest::keyClick(list(), Qt::Key_F3);
}

void TestPromptDialog::f1OpensTheHelpOnceThereIsOne()
{
    QVERIFY(!button(u"sbtHelp"_s)->isEnabled());
    QTest::keyClick(form(), Qt::Key_F1);
    m_forms->unload(u"frmPubPrompt"_s);
    int opened = 0;
    m_help = [&opened] { ++opened; };
    show();
    QTest::keyClick(list(), Qt::Key_F1);
    button(u"sbtHelp"_s)->click();
    QCOMPARE(opened, 2);
}

void TestPromptDialog::enterAndEscapeDoNothing()
{
    show();
    const ExpectedPrompts asked;
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        QTest::keyClick(list(), key);
    }
    QVERIFY(form()->isVisible());
    QVERIFY(asked.log().isEmpty());
}

void TestPromptDialog::closeUnloads()
{
    show();
    button(u"sbtClose"_s)->click();
    QVERIFY(!m_forms->isLoaded(u"frmPubPrompt"_s));
}

void TestPromptDialog::mnemonicsAreUnique()
{
    QSet<QChar> letters;
    const auto take = [&](const QString &caption) {
        const qsizetype at = caption.indexOf(u'&');
        QVERIFY2(at >= 0, qPrintable(caption));
        const QChar letter = caption.at(at + 1).toUpper();
        QVERIFY2(!letters.contains(letter), qPrintable(caption));
        letters.insert(letter);
    };
    for (const char16_t *name : {u"sbtAdd", u"sbtEdit", u"sbtDel", u"sbtFind", u"sbtClose", u"sbtHelp"}) {
        take(button(QString::fromUtf16(name))->text());
    }
    take(form()->findChild<QLabel *>(u"lblRecips"_s)->text());
    QVERIFY(button(u"sbtAdd"_s)->text().contains(u"&A"_s));
    QVERIFY(button(u"sbtEdit"_s)->text().contains(u"&E"_s));
    QCOMPARE(QAccessible::queryAccessibleInterface(list())->text(QAccessible::Name), u"Input prompts"_s);
}

void TestPromptDialog::everyTextOfTheLanguageFileHasItsControl()
{
    const quillon::SettingsFile tips(languageFolder() + u"/tips.dll"_s);
    const QStringList keys = tips.keys(u"frmPubPrompt"_s);
    QVERIFY(keys.size() > 10);
    for (const QString &key : keys) {
        const QString name = key.section(u'.', 0, 0);
        const auto *widget = form()->findChild<QWidget *>(name);
        QVERIFY2(widget || name == u"frmPubPrompt", qPrintable(key));
        if (widget && key.endsWith(u".tip"_s)) {
            QCOMPARE(widget->toolTip(), tips.value(u"frmPubPrompt"_s, key));
        }
    }
}

void TestPromptDialog::nothingIsCutOffAtAnySize()
{
    show();
    for (const QSize size : {form()->minimumSizeHint(), form()->sizeHint(), QSize(1400, 900)}) {
        form()->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(form()->size(), size);
        const QList<QPushButton *> buttons = form()->findChildren<QPushButton *>();
        for (const QPushButton *each : buttons) {
            QVERIFY2(form()->rect().contains(each->geometry()), qPrintable(each->objectName()));
            QVERIFY2(each->width() >= each->sizeHint().width(), qPrintable(each->objectName()));
        }
    }
}

void TestPromptDialog::changesReachTheListInMemoryWhenItIsReadAgain()
{
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"a@x.org"_s);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(m_memory->entries(), QStringList());
    m_memory->upsReadPrompts();
    QCOMPARE(m_memory->entries(), QStringList{u"a@x.org"_s});
}

QTEST_MAIN(TestPromptDialog)
#include "test_promptdialog.moc"
