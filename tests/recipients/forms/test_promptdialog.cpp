#include "promptdialogbench.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

/// The list of entries, and adding, changing and deleting them.
class TestPromptDialog : public QObject, private PromptDialogBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void anEmptyFileShowsOnlyThePlaceholderRow();
    void withoutLanguageFilesThePlaceholderStillStands();
    void theListIsWhatWasLastRead();
    void blankEntriesArePassedOver();
    void aLineThatIsNoRecipientIsListedLikeAnyOther();
    void changesReachTheListInMemoryWhenItIsReadAgain();

    void addRemovesThePlaceholder();
    void addTrimsAndAppends();
    void anEmptyAnswerAddsNothing();
    void addAsksAgainUntilTheEntryIsARecipient();
    void anEntryInAnotherCaseIsAlreadyThere();

    void editOnThePlaceholderSaysSo();
    void editOffersTheCurrentRowAndMovesIt();
    void anUnchangedTextEndsSilently();
    void anotherCaseAloneIsAMatchWithItself();
    void anotherRowsTextIsRefused();
    void anEmptyAnswerChangesNothing();
    void editAsksAgainWithTheOldText();
    void aDoubleClickEdits();
    void aDoubleClickOnThePlaceholderSaysSo();

    void deleteOnThePlaceholderSaysSo();
    void deleteAsksAndNoKeepsAll();
    void deleteTakesEverySelectedRow();
    void aDeleteWithNothingSelectedStillAsks();
    void deletingTheLastEntryBringsThePlaceholderBack();
    void theCurrentRowFollowsEachChange();
    void aChangedEntryIsBroughtIntoView();
    void anEditWithoutACurrentRowDoesNothing();
    void aRangeIsDeletedToItsLastRow();
};

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

void TestPromptDialog::changesReachTheListInMemoryWhenItIsReadAgain()
{
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"a@x.org"_s);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(m_memory->entries(), QStringList());
    m_memory->upsReadPrompts();
    QCOMPARE(m_memory->entries(), QStringList{u"a@x.org"_s});
}

void TestPromptDialog::theCurrentRowFollowsEachChange()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s, u"d@x.org"_s, u"e@x.org"_s});
    const auto current = [this] { return list()->currentIndex().row(); };
    QCOMPARE(current(), 0);
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"f@x.org"_s);
    button(u"sbtAdd"_s)->click();
    QCOMPARE(current(), 5);
    list()->selectionModel()->setCurrentIndex(list()->model()->index(1, 0), QItemSelectionModel::NoUpdate);
    asked.expectInput(u"INPUT_RECIP"_s, u"b@x.org"_s, u"g@x.org"_s);
    button(u"sbtEdit"_s)->click();
    QCOMPARE(current(), 5); // the row of the entry, which went to the end
    QCOMPARE(selected(), QStringList());

    selectRows({3, 1});
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtDel"_s)->click();
    QCOMPARE(current(), 1); // where the first of the deleted ones was
    QCOMPARE(rows(), (QStringList{u"a@x.org"_s, u"d@x.org"_s, u"f@x.org"_s, u"g@x.org"_s}));
    selectRows({2, 3});
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtDel"_s)->click();
    QCOMPARE(current(), 1); // the last one that is left
    QCOMPARE(selected(), QStringList());
}

void TestPromptDialog::aChangedEntryIsBroughtIntoView()
{
    QStringList entries;
    for (int i = 0; i < 200; ++i) {
        entries.append(u"n%1@x.org"_s.arg(i));
    }
    prompts(entries);
    show();
    const auto isInView = [this](int row) {
        return list()->viewport()->rect().intersects(list()->visualRect(list()->model()->index(row, 0)));
    };
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), u"a@x.org"_s)
        .expectInput(u"INPUT_RECIP"_s, u"n0@x.org"_s, u"b@x.org"_s);
    button(u"sbtAdd"_s)->click();
    QVERIFY(isInView(200) && !isInView(0));
    list()->selectionModel()->setCurrentIndex(list()->model()->index(0, 0), QItemSelectionModel::NoUpdate);
    list()->scrollToTop();
    QVERIFY(isInView(0) && !isInView(200));
    button(u"sbtEdit"_s)->click();
    QVERIFY(isInView(200) && !isInView(0));
}

void TestPromptDialog::anEditWithoutACurrentRowDoesNothing()
{
    prompts({u"a@x.org"_s});
    list()->selectionModel()->clearCurrentIndex();
    const ExpectedPrompts asked;
    button(u"sbtEdit"_s)->click();
    QVERIFY(asked.log().isEmpty());
}

void TestPromptDialog::aRangeIsDeletedToItsLastRow()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s, u"d@x.org"_s});
    const QAbstractItemModel *model = list()->model();
    list()->selectionModel()->select(QItemSelection(model->index(1, 0), model->index(3, 0)),
                                     QItemSelectionModel::Select);
    ExpectedPrompts asked;
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtDel"_s)->click();
    QCOMPARE(lines(), QStringList{u"a@x.org"_s});
}

QTEST_MAIN(TestPromptDialog)
#include "test_promptdialog.moc"
