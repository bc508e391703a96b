#include "macrofixture.h"

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

class TestMacroDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<MacroFixture>(); }
    void cleanup() { m.reset(); }

    // The list
    void theListShowsTheFileInItsOrder();
    void samplesStandInTheirColumn();
    void predefinedRowsAreGreyInAllColumns();
    void theGreyFollowsTheTheme();
    void theFirstRowIsSelectedAtLoad();
    void anEmptyListDisablesEditAndDelete();
    void aShortLineIsShownAsFarAsItGoes();
    void theDialogSaysWhatGreyMeansAndWhoTheSampleIs();
    void theTimerRunsTheDateRows();
    void aSampleNeverTakesThePlaceOfTheStoredText();
    // Rows
    void aClickEnablesEditAndDeleteOfAUsersRowOnly();
    void theKeyboardChoosesARowAsAClickDoes();
    void aDoubleClickEditsAUsersRow();
    void aDoubleClickOnAPredefinedRowDoesNothing();
    void eachHeaderClickReversesTheOrder();
    void aSortedListTakesANewRowInItsPlace();
    // Add
    void addOpensAnEmptyDialog();
    void addingStoresTheMacroAndShowsIt();
    void addingAPresentNameFails();
    void anotherCaseIsAnotherMacro();
    void aPastedTabBecomesABlank();
    // Edit
    void editShowsTheRowAlone();
    void anUnchangedNameCanBeSaved();
    void renamingToAnotherRowsNameFails();
    void editingABlankPredefinedTextReplacesItsLine();
    // Delete
    void deletingAsksAndNoKeepsAll();
    void deletingAPredefinedAndAUsersRowTakesTheUsers();
    void aPredefinedRowAloneCannotBeDeleted();
    void theFirstRowIsSelectedAfterADeletion();
    // Faults
    void eachFaultShowsItsMessageAndSelectsTheMacro_data();
    void eachFaultShowsItsMessageAndSelectsTheMacro();
    // Saving
    void saveAndCloseUnloadsTheDialog();
    void saveAndAddClearsTheFieldsAndStays();
    void saveAndAddInAnEditKeepsItsCaptionAndItsRow();
    // Unload
    void theMenuIsLoadedOnceWhenTheDialogUnloads();
    void changesReachTheMenuOnlyAtUnload();
    void tenThousandRowsCanBeSelectedAndDeleted();

private:
    std::unique_ptr<MacroFixture> m;
};

void TestMacroDialogs::theListShowsTheFileInItsOrder()
{
    writeFile(m->file(), "{z}\tlast\tOther Information\tU\r\n{a}\tfirst\tMy Information\tU\r\n");
    QCOMPARE(m->column(0), (QStringList{u"{z}"_s, u"{a}"_s}));
    QCOMPARE(m->column(1), (QStringList{u"last"_s, u"first"_s}));
    QCOMPARE(m->column(2), (QStringList{u"Other Information"_s, u"My Information"_s}));
    QCOMPARE(m->list()->columnCount(), 3);
    QCOMPARE(m->list()->headerItem()->text(0), u"Macro"_s);
    QCOMPARE(m->list()->headerItem()->text(1), u"(Sample) Text"_s);
    QCOMPARE(m->list()->headerItem()->text(2), u"Category"_s);
}

void TestMacroDialogs::samplesStandInTheirColumn()
{
    const QLocale locale = QLocale::system();
    const QStringList texts = m->column(1);
    QCOMPARE(texts.first(3), (QStringList{u"Jack"_s, u"Smith"_s, u"Jack Smith"_s}));
    QVERIFY(texts.at(3).contains(u'@'));
    QCOMPARE(texts.at(4), locale.toString(m->clock.present.date(), QLocale::LongFormat));
    QCOMPARE(texts.at(9), locale.toString(m->clock.present.date(), QLocale::ShortFormat) + u' ' +
                              locale.toString(m->clock.present.time(), QLocale::ShortFormat));
    QCOMPARE(texts.at(10), u" "_s);
}

void TestMacroDialogs::predefinedRowsAreGreyInAllColumns()
{
    const QColor grey = m->list()->palette().color(QPalette::Disabled, QPalette::Text);
    for (int i = 0; i < m->list()->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *item = m->list()->topLevelItem(i);
        QCOMPARE(item->data(0, MacroItem::predefinedRole).toBool(), i < 10);
        for (int column = 0; column < 3; ++column) {
            QCOMPARE(item->foreground(column).color() == grey && item->data(column, Qt::ForegroundRole).isValid(),
                     i < 10);
        }
    }
}

void TestMacroDialogs::theGreyFollowsTheTheme()
{
    QPalette dark = m->manager()->palette();
    dark.setColor(QPalette::Disabled, QPalette::Text, QColor(1, 2, 3));
    m->manager()->setPalette(dark);
    QCOMPARE(m->row(u"{Long Date}"_s)->foreground(1).color(), QColor(1, 2, 3));
    QVERIFY(!m->row(u"{My Website}"_s)->data(1, Qt::ForegroundRole).isValid());
    // The rule goes by the kind of the row, whatever its colour.
    m->row(u"{Long Date}"_s)->setForeground(0, Qt::black);
    m->list()->setCurrentItem(m->row(u"{Long Date}"_s));
    QVERIFY(!m->button(u"sbtDel"_s)->isEnabled());
}

void TestMacroDialogs::theFirstRowIsSelectedAtLoad()
{
    QCOMPARE(m->list()->selectedItems(), QList<QTreeWidgetItem *>{m->list()->topLevelItem(0)});
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
    m->forms.unload(u"frmPubMacro"_s);
    writeFile(m->file(), "{a}\t1\tMy Information\tU\r\n");
    QCOMPARE(m->list()->selectedItems(), QList<QTreeWidgetItem *>{m->list()->topLevelItem(0)});
    QVERIFY(m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(m->button(u"sbtDel"_s)->isEnabled());
}

void TestMacroDialogs::anEmptyListDisablesEditAndDelete()
{
    QVERIFY(QFile::remove(m->file()));
    QCOMPARE(m->list()->topLevelItemCount(), 0);
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(!m->button(u"sbtDel"_s)->isEnabled());
    QVERIFY(m->button(u"sbtAdd"_s)->isEnabled());
}

void TestMacroDialogs::aShortLineIsShownAsFarAsItGoes()
{
    writeFile(m->file(), "{one}\r\n{two}\t2\r\n{ten}\t1\t2\tU\t4\t5\t6\t7\t8\t9\r\n{{braces}}\t{}\tx\tU\r\n");
    QCOMPARE(m->column(0), (QStringList{u"{one}"_s, u"{two}"_s, u"{ten}"_s, u"{{braces}}"_s}));
    QCOMPARE(m->column(1), (QStringList{QString(), u"2"_s, u"1"_s, u"{}"_s}));
    QCOMPARE(m->column(2), (QStringList{QString(), QString(), u"2"_s, u"x"_s}));
}

void TestMacroDialogs::theDialogSaysWhatGreyMeansAndWhoTheSampleIs()
{
    QCOMPARE(MacroFixture::get<QLabel>(m->manager(), u"lblNormal"_s)->text(), u"Normal - User-defined."_s);
    QCOMPARE(MacroFixture::get<QLabel>(m->manager(), u"lblGray"_s)->text(), u"Gray - Predefined."_s);
    const QString sample = MacroFixture::get<QLabel>(m->manager(), u"lblSample"_s)->text();
    QVERIFY(sample.contains(u"Jack Smith"_s));
    QVERIFY(sample.contains(m->column(1).at(3)));
}

void TestMacroDialogs::theTimerRunsTheDateRows()
{
    auto *tim = MacroFixture::get<QTimer>(m->manager(), u"tim"_s);
    QCOMPARE(tim->interval(), 1600);
    QVERIFY(tim->isActive());
    QVERIFY(!tim->isSingleShot());
    const QStringList before = m->column(1);
    m->clock.present = QDateTime(QDate(2031, 1, 2), QTime(3, 4, 5));
    QCOMPARE(m->column(1), before);
    QMetaObject::invokeMethod(tim, "timeout");
    const QStringList after = m->column(1);
    for (int i = 0; i < after.size(); ++i) {
        QCOMPARE(after.at(i) != before.at(i), i >= 4 && i <= 9);
    }
    QCOMPARE(after.at(5), QLocale::system().toString(m->clock.present.date(), QLocale::ShortFormat));
}

void TestMacroDialogs::aSampleNeverTakesThePlaceOfTheStoredText()
{
    writeFile(m->file(), "{Long Date}\tmy own\tMy Information\tU\r\n");
    QVERIFY(m->column(1).constFirst() != u"my own"_s);
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        QCOMPARE(m->txtString()->text(), u"my own"_s);
        m->txtString()->setText(u"changed"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtEdit"_s)->click();
    QCOMPARE(m->lines(), QStringList{u"{Long Date}\tchanged\tMy Information\tU"_s});
}

void TestMacroDialogs::aClickEnablesEditAndDeleteOfAUsersRowOnly()
{
    m->show();
    m->click(u"{My First Name}"_s);
    QVERIFY(m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(m->button(u"sbtDel"_s)->isEnabled());
    m->click(u"{Long Date}"_s);
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(!m->button(u"sbtDel"_s)->isEnabled());
}

void TestMacroDialogs::theKeyboardChoosesARowAsAClickDoes()
{
    m->show();
    m->list()->setFocus();
    QTest::keyClick(m->list(), Qt::Key_End);
    QVERIFY(m->button(u"sbtEdit"_s)->isEnabled());
    QTest::keyClick(m->list(), Qt::Key_Home);
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
}

void TestMacroDialogs::aDoubleClickEditsAUsersRow()
{
    m->show();
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] { QCOMPARE(m->txtMacro()->text(), u"{My Website}"_s); });
    m->click(u"{My Website}"_s);
    QTest::mouseDClick(m->list()->viewport(), Qt::LeftButton, {},
                       m->list()->visualItemRect(m->row(u"{My Website}"_s)).center());
}

void TestMacroDialogs::aDoubleClickOnAPredefinedRowDoesNothing()
{
    m->show();
    const ExpectedPrompts prompts;
    m->click(u"{Long Date}"_s);
    QTest::mouseDClick(m->list()->viewport(), Qt::LeftButton, {},
                       m->list()->visualItemRect(m->row(u"{Long Date}"_s)).center());
    QVERIFY(prompts.log().isEmpty());
}

void TestMacroDialogs::eachHeaderClickReversesTheOrder()
{
    writeFile(m->file(), "{b}\t1\tx\tU\r\n{C}\t3\ty\tU\r\n{a}\t2\tz\tU\r\n");
    m->show();
    const auto clickHeader = [this](int column) {
        QHeaderView *header = m->list()->header();
        const QPoint place(header->sectionViewportPosition(column) + 20, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    };
    const QStringList ascending = {u"{a}"_s, u"{b}"_s, u"{C}"_s};
    const QStringList descending = {u"{C}"_s, u"{b}"_s, u"{a}"_s};
    QCOMPARE(m->column(0), (QStringList{u"{b}"_s, u"{C}"_s, u"{a}"_s}));
    clickHeader(0);
    QCOMPARE(m->column(0), descending);
    clickHeader(0);
    QCOMPARE(m->column(0), ascending);
    clickHeader(1);
    QCOMPARE(m->column(1), (QStringList{u"3"_s, u"2"_s, u"1"_s}));
    clickHeader(2);
    QCOMPARE(m->column(2), (QStringList{u"x"_s, u"y"_s, u"z"_s}));
    QCOMPARE(m->lines().constFirst(), u"{b}\t1\tx\tU"_s); // the file keeps its order
}

void TestMacroDialogs::aSortedListTakesANewRowInItsPlace()
{
    writeFile(m->file(), "{b}\t1\tx\tU\r\n{d}\t3\ty\tU\r\n");
    m->show();
    Q_EMIT m->list()->header()->sectionClicked(0);
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"{c}"_s, u"2"_s);
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->column(0), (QStringList{u"{d}"_s, u"{c}"_s, u"{b}"_s}));
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
