#include "core/texts.h"
#include "macrofixture.h"

#include <QLabel>
#include <QScopeGuard>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

/// Adding, changing, deleting and saving macros by the two dialogs.
class TestMacroDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<MacroFixture>(); }
    void cleanup() { m.reset(); }

    void theTextsAreThoseOfTheLanguageFile();
    void addOpensAnEmptyDialog();
    void addingStoresTheMacroAndShowsIt();
    void addingAPresentNameFails();
    void anotherCaseIsAnotherMacro();
    void aPastedTabBecomesABlank();

    void editShowsTheRowAlone();
    void anUnchangedNameCanBeSaved();
    void renamingToAnotherRowsNameFails();
    void editingABlankPredefinedTextReplacesItsLine();

    void deletingAsksAndNoKeepsAll();
    void deletingAPredefinedAndAUsersRowTakesTheUsers();
    void aPredefinedRowAloneCannotBeDeleted();
    void theFirstRowIsSelectedAfterADeletion();

    void eachFaultShowsItsMessageAndSelectsTheMacro_data();
    void eachFaultShowsItsMessageAndSelectsTheMacro();

    void saveAndCloseUnloadsTheDialog();
    void saveAndAddClearsTheFieldsAndStays();
    void saveAndAddInAnEditKeepsItsCaptionAndItsRow();

    void theMenuIsLoadedOnceWhenTheDialogUnloads();
    void changesReachTheMenuOnlyAtUnload();
    void tenThousandRowsCanBeSelectedAndDeleted();

private:
    std::unique_ptr<MacroFixture> m;
};

void TestMacroDialogs::theTextsAreThoseOfTheLanguageFile()
{
    writeFile(m->tree.path(u"tips.dll"_s),
              "[frmPubMacro]\r\nfrmPubMacro=Makros\r\nlblSample=Ein Muster:\r\nsbtAdd=&Anders\r\nlsv.tip=Alle\r\n"
              "lsv.name=Liste\r\n[frmPubMacroDetail]\r\nlblString=Te&xt\r\nsbtSC=&Fertig\r\nsbtSC.tip=Bis dann\r\n");
    const QString before = languageFolder();
    const auto back = qScopeGuard([&before] { setLanguageFolder(before); });
    setLanguageFolder(m->tree.path());
    QCOMPARE(m->manager()->windowTitle(), u"Makros"_s);
    // The sample stands behind the words for it.
    QVERIFY(m->get<QLabel>(m->manager(), u"lblSample"_s)->text().startsWith(u"Ein Muster: "));
    QCOMPARE(m->button(u"sbtAdd"_s)->text(), u"&Anders"_s);
    QCOMPARE(m->list()->toolTip(), u"Alle"_s);
    QCOMPARE(m->list()->accessibleName(), u"Liste"_s);
    QCOMPARE(m->get<QLabel>(m->detail(), u"lblString"_s)->text(), u"Te&xt"_s);
    QCOMPARE(m->detailButton(u"sbtSC"_s)->text(), u"&Fertig"_s);
    QCOMPARE(m->detailButton(u"sbtSC"_s)->toolTip(), u"Bis dann"_s);
}

void TestMacroDialogs::addOpensAnEmptyDialog()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        QCOMPARE(m->detail()->windowTitle(), u"Add Macro"_s);
        QCOMPARE(m->detail()->mode(), frmPubMacroDetail::Mode::Add);
        QCOMPARE(m->txtMacro()->text(), u"{}"_s);
        QCOMPARE(m->txtString()->text(), QString());
        QCOMPARE(m->cbbCate()->currentText(), u"My Information"_s);
        QCOMPARE(m->cbbCate()->count(), 2);
        QCOMPARE(m->cbbCate()->itemText(1), u"Other Information"_s);
        QVERIFY(!m->cbbCate()->isEditable());
    });
    m->button(u"sbtAdd"_s)->click();
}

void TestMacroDialogs::addingStoresTheMacroAndShowsIt()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"  {Club}"_s, u" Chess and Go  "_s, u"Other Information"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines().constLast(), u"{Club}\tChess and Go\tOther Information\tU"_s);
    const QTreeWidgetItem *last = m->list()->topLevelItem(20);
    QCOMPARE(last->text(0), u"{Club}"_s);
    QCOMPARE(last->text(1), u"Chess and Go"_s);
    QCOMPARE(last->text(2), u"Other Information"_s);
    QVERIFY(!last->data(0, MacroItem::predefinedRole).toBool());
}

void TestMacroDialogs::addingAPresentNameFails()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"{My First Name}"_s, u"x"_s);
        m->detailButton(u"sbtSC"_s)->click();
        m->enter(u"{Long Date}"_s, u"x"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    prompts.expectBox(u"MACRO_EXISTS"_s, 64).expectBox(u"MACRO_EXISTS"_s, 64);
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines(), predefinedMacroLines());
    QCOMPARE(m->list()->topLevelItemCount(), 20);
}

void TestMacroDialogs::anotherCaseIsAnotherMacro()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"{my first name}"_s, u"x"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines().constLast(), u"{my first name}\tx\tMy Information\tU"_s);
}

void TestMacroDialogs::aPastedTabBecomesABlank()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"{a\tb}"_s, u"one\ttwo\nthree"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines().constLast(), u"{a b}\tone two three\tMy Information\tU"_s);
    QCOMPARE(m->column(0).constLast(), u"{a b}"_s);
}

void TestMacroDialogs::editShowsTheRowAlone()
{
    writeFile(m->file(), "{a}\t1\tMy Information\tU\r\n{b}\t2\tOther Information\tU\r\n{c}\t3\tMy Information\tU\r\n");
    m->list()->selectAll();
    m->list()->setCurrentItem(m->row(u"{b}"_s), 0, QItemSelectionModel::NoUpdate);
    QCOMPARE(m->list()->selectedItems().size(), 3);
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        QCOMPARE(m->list()->selectedItems(), QList<QTreeWidgetItem *>{m->row(u"{b}"_s)});
        QCOMPARE(m->detail()->windowTitle(), u"Edit Macro - {b}"_s);
        QCOMPARE(m->detail()->mode(), frmPubMacroDetail::Mode::Edit);
        QCOMPARE(m->txtMacro()->text(), u"{b}"_s);
        QCOMPARE(m->txtString()->text(), u"2"_s);
        QCOMPARE(m->cbbCate()->currentText(), u"Other Information"_s);
    });
    m->button(u"sbtEdit"_s)->click();
}

void TestMacroDialogs::anUnchangedNameCanBeSaved()
{
    writeFile(m->file(), "{a}\t1\tMy Information\tU\r\n{b}\t2\tOther Information\tU\r\n");
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"{a}"_s, u"9"_s, u"Other Information"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtEdit"_s)->click();
    QCOMPARE(m->lines(), (QStringList{u"{a}\t9\tOther Information\tU"_s, u"{b}\t2\tOther Information\tU"_s}));
    QCOMPARE(m->column(1), (QStringList{u"9"_s, u"2"_s}));
    QCOMPARE(m->column(2).constFirst(), u"Other Information"_s);
}

void TestMacroDialogs::renamingToAnotherRowsNameFails()
{
    writeFile(m->file(), "{a}\t1\tMy Information\tU\r\n{b}\t2\tOther Information\tU\r\n{Long Date}\t \tx\tD\r\n");
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->txtMacro()->setText(u"{b}"_s);
        m->detailButton(u"sbtSA"_s)->click();
        m->txtMacro()->setText(u"{Long Date}"_s);
        m->detailButton(u"sbtSA"_s)->click();
        m->txtMacro()->setText(u"{B}"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    prompts.expectBox(u"MACRO_EXISTS"_s, 64).expectBox(u"MACRO_EXISTS"_s, 64);
    m->button(u"sbtEdit"_s)->click();
    QCOMPARE(m->column(0), (QStringList{u"{B}"_s, u"{b}"_s, u"{Long Date}"_s}));
    QCOMPARE(m->lines().constFirst(), u"{B}\t1\tMy Information\tU"_s);
}

void TestMacroDialogs::editingABlankPredefinedTextReplacesItsLine()
{
    m->list()->setCurrentItem(m->row(u"{My Website}"_s));
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->txtString()->setText(u"www.x.org"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtEdit"_s)->click();
    QCOMPARE(m->lines().at(14), u"{My Website}\twww.x.org\tMy Information\tU"_s);
    QCOMPARE(m->lines().size(), 20);
}

void TestMacroDialogs::deletingAsksAndNoKeepsAll()
{
    m->list()->setCurrentItem(m->row(u"{My Website}"_s));
    ExpectedPrompts prompts;
    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, 36, BoxAnswer::No);
    m->button(u"sbtDel"_s)->click();
    QCOMPARE(m->lines(), predefinedMacroLines());
    QCOMPARE(m->list()->topLevelItemCount(), 20);
}

void TestMacroDialogs::deletingAPredefinedAndAUsersRowTakesTheUsers()
{
    m->show();
    m->click(u"{Long Date}"_s);
    m->click(u"{My Website}"_s, Qt::ControlModifier);
    QCOMPARE(m->list()->selectedItems().size(), 2);
    ExpectedPrompts prompts;
    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, 36, BoxAnswer::Yes);
    m->button(u"sbtDel"_s)->click();
    QStringList expected = predefinedMacroLines();
    expected.removeAt(14);
    QCOMPARE(m->lines(), expected);
    QCOMPARE(m->list()->topLevelItemCount(), 19);
    QCOMPARE(m->column(0).at(4), u"{Long Date}"_s);
}

void TestMacroDialogs::aPredefinedRowAloneCannotBeDeleted()
{
    m->show();
    m->click(u"{Long Date}"_s);
    const ExpectedPrompts prompts;
    QTest::keyClick(m->list(), Qt::Key_Delete);
    m->button(u"sbtDel"_s)->click();
    QVERIFY(prompts.log().isEmpty());
    QCOMPARE(m->lines(), predefinedMacroLines());
}

void TestMacroDialogs::theFirstRowIsSelectedAfterADeletion()
{
    writeFile(m->file(), "{a}\t1\tx\tU\r\n{b}\t2\tx\tU\r\n{c}\t3\tx\tU\r\n");
    m->list()->setCurrentItem(m->row(u"{a}"_s));
    m->row(u"{c}"_s)->setSelected(true);
    ExpectedPrompts prompts;
    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, 36, BoxAnswer::Yes).expectBox(u"DEL_MACRO_PROMPT"_s, 36, BoxAnswer::Yes);
    m->button(u"sbtDel"_s)->click();
    QCOMPARE(m->column(0), QStringList{u"{b}"_s});
    QCOMPARE(m->list()->selectedItems(), QList<QTreeWidgetItem *>{m->list()->topLevelItem(0)});
    m->button(u"sbtDel"_s)->click();
    QCOMPARE(contentOf(m->file()), QByteArray(""));
    QVERIFY(!m->button(u"sbtDel"_s)->isEnabled());
}

void TestMacroDialogs::eachFaultShowsItsMessageAndSelectsTheMacro_data()
{
    QTest::addColumn<QString>("macro");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("key");
    QTest::newRow("untouched macro with a text") << u"{}"_s << u"x"_s << u"NO_MACRO"_s;
    QTest::newRow("no braces, no text") << u"abc"_s << u" "_s << u"NO_MACRO"_s;
    QTest::newRow("no braces") << u"abc"_s << u"x"_s << u"ERR_MACRO_DELIMITER"_s;
    QTest::newRow("no macro at all") << QString() << u"x"_s << u"ERR_MACRO_DELIMITER"_s;
    QTest::newRow("taken") << u"{Long Date}"_s << u"x"_s << u"MACRO_EXISTS"_s;
}

void TestMacroDialogs::eachFaultShowsItsMessageAndSelectsTheMacro()
{
    QFETCH(QString, macro);
    QFETCH(QString, text);
    QFETCH(QString, key);
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [&] {
        m->showDetail();
        m->enter(macro, text);
        m->txtString()->setFocus();
        QCoreApplication::processEvents();
        m->detailButton(u"sbtSC"_s)->click();
        QCOMPARE(m->detail()->focusWidget(), m->txtMacro());
        QCoreApplication::processEvents();
        QCOMPARE(m->txtMacro()->selectedText(), macro);
        QVERIFY(m->detail()->isVisible());
    });
    prompts.expectBox(key, 64);
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines(), predefinedMacroLines());
}

void TestMacroDialogs::saveAndCloseUnloadsTheDialog()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->showDetail();
        m->enter(u"{a}"_s, u"1"_s);
        m->detailButton(u"sbtSC"_s)->click();
        QVERIFY(!m->forms.isLoaded(u"frmPubMacroDetail"_s));
    });
    m->button(u"sbtAdd"_s)->click();
}

void TestMacroDialogs::saveAndAddClearsTheFieldsAndStays()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->showDetail();
        m->enter(u"{a}"_s, u"1"_s, u"Other Information"_s);
        m->txtString()->setFocus();
        m->detailButton(u"sbtSA"_s)->click();
        QCOMPARE(m->txtMacro()->text(), u"{}"_s);
        QCOMPARE(m->txtString()->text(), QString());
        QCOMPARE(m->cbbCate()->currentText(), u"My Information"_s);
        QCOMPARE(m->detail()->focusWidget(), m->txtMacro());
        m->enter(u"{b}"_s, u"2"_s);
        m->detailButton(u"sbtSA"_s)->click();
        QVERIFY(m->detail()->isVisible());
        QCOMPARE(m->detail()->windowTitle(), u"Add Macro"_s);
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines().last(2), (QStringList{u"{a}\t1\tOther Information\tU"_s, u"{b}\t2\tMy Information\tU"_s}));
}

void TestMacroDialogs::saveAndAddInAnEditKeepsItsCaptionAndItsRow()
{
    writeFile(m->file(), "{a}\t1\tMy Information\tU\r\n{b}\t2\tOther Information\tU\r\n");
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"{c}"_s, u"3"_s);
        m->detailButton(u"sbtSA"_s)->click();
        QCOMPARE(m->detail()->windowTitle(), u"Edit Macro - {a}"_s);
        QCOMPARE(m->detail()->mode(), frmPubMacroDetail::Mode::Edit);
        QCOMPARE(m->txtMacro()->text(), u"{}"_s);
        m->enter(u"{d}"_s, u"4"_s);
        m->detailButton(u"sbtSA"_s)->click();
    });
    m->button(u"sbtEdit"_s)->click();
    QCOMPARE(m->lines(), (QStringList{u"{d}\t4\tMy Information\tU"_s, u"{b}\t2\tOther Information\tU"_s}));
    QCOMPARE(m->column(0), (QStringList{u"{d}"_s, u"{b}"_s}));
}

void TestMacroDialogs::theMenuIsLoadedOnceWhenTheDialogUnloads()
{
    m->show();
    QCOMPARE(m->menuLoads, 0);
    m->button(u"sbtClose"_s)->click();
    QVERIFY(!m->forms.isLoaded(u"frmPubMacro"_s));
    QCOMPARE(m->menuLoads, 1);
    m->manager(); // made anew, never shown
    m->forms.unload(u"frmPubMacro"_s);
    QCOMPARE(m->menuLoads, 2);
}

void TestMacroDialogs::changesReachTheMenuOnlyAtUnload()
{
    m->list()->setCurrentItem(m->row(u"{My Website}"_s));
    ExpectedPrompts prompts;
    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, 36, BoxAnswer::Yes);
    m->button(u"sbtDel"_s)->click();
    QCOMPARE(m->menuLoads, 0);
    m->manager()->close();
    QCOMPARE(m->menuLoads, 1);
}

void TestMacroDialogs::tenThousandRowsCanBeSelectedAndDeleted()
{
    QByteArray bytes = "{Long Date}\t \tSending Date and Time\tD\r\n";
    for (int i = 0; i < 10'000; ++i) {
        bytes += "{" + QByteArray::number(i) + "}\ttext\tOther Information\tU\r\n";
    }
    writeFile(m->file(), bytes);
    QCOMPARE(m->list()->topLevelItemCount(), 10'001);
    m->list()->selectAll();
    m->list()->setCurrentItem(m->list()->topLevelItem(5), 0, QItemSelectionModel::NoUpdate);
    ExpectedPrompts prompts;
    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, 36, BoxAnswer::Yes);
    m->button(u"sbtDel"_s)->click();
    QCOMPARE(m->column(0), QStringList{u"{Long Date}"_s});
    QCOMPARE(m->lines().size(), 1);
}

QTEST_MAIN(TestMacroDialogs)
#include "test_macrodialogs.moc"
