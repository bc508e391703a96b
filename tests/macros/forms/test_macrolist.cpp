#include "macrofixture.h"

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

/// The list of macros: what its rows show, which of them is chosen, and their order.
class TestMacroList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<MacroFixture>(); }
    void cleanup() { m.reset(); }

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

    void aClickEnablesEditAndDeleteOfAUsersRowOnly();
    void theKeyboardChoosesARowAsAClickDoes();
    void aDoubleClickEditsAUsersRow();
    void aDoubleClickOnAPredefinedRowDoesNothing();
    void eachHeaderClickReversesTheOrder();
    void aSortedListTakesANewRowInItsPlace();
    void equalButForCaseHasAnOrderToo();

private:
    std::unique_ptr<MacroFixture> m;
};

void TestMacroList::theListShowsTheFileInItsOrder()
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

void TestMacroList::samplesStandInTheirColumn()
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

void TestMacroList::predefinedRowsAreGreyInAllColumns()
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

void TestMacroList::theGreyFollowsTheTheme()
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

void TestMacroList::theFirstRowIsSelectedAtLoad()
{
    QCOMPARE(m->list()->selectedItems(), QList<QTreeWidgetItem *>{m->list()->topLevelItem(0)});
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
    m->forms.unload(u"frmPubMacro"_s);
    writeFile(m->file(), "{a}\t1\tMy Information\tU\r\n");
    QCOMPARE(m->list()->selectedItems(), QList<QTreeWidgetItem *>{m->list()->topLevelItem(0)});
    QVERIFY(m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(m->button(u"sbtDel"_s)->isEnabled());
}

void TestMacroList::anEmptyListDisablesEditAndDelete()
{
    QVERIFY(QFile::remove(m->file()));
    QCOMPARE(m->list()->topLevelItemCount(), 0);
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(!m->button(u"sbtDel"_s)->isEnabled());
    QVERIFY(m->button(u"sbtAdd"_s)->isEnabled());
}

void TestMacroList::aShortLineIsShownAsFarAsItGoes()
{
    writeFile(m->file(), "{one}\r\n{two}\t2\r\n{ten}\t1\t2\tU\t4\t5\t6\t7\t8\t9\r\n{{braces}}\t{}\tx\tU\r\n");
    QCOMPARE(m->column(0), (QStringList{u"{one}"_s, u"{two}"_s, u"{ten}"_s, u"{{braces}}"_s}));
    QCOMPARE(m->column(1), (QStringList{QString(), u"2"_s, u"1"_s, u"{}"_s}));
    QCOMPARE(m->column(2), (QStringList{QString(), QString(), u"2"_s, u"x"_s}));
}

void TestMacroList::theDialogSaysWhatGreyMeansAndWhoTheSampleIs()
{
    QCOMPARE(MacroFixture::get<QLabel>(m->manager(), u"lblNormal"_s)->text(), u"Normal - User-defined."_s);
    QCOMPARE(MacroFixture::get<QLabel>(m->manager(), u"lblGray"_s)->text(), u"Gray - Predefined."_s);
    const QString sample = MacroFixture::get<QLabel>(m->manager(), u"lblSample"_s)->text();
    QVERIFY(sample.contains(u"Jack Smith"_s));
    QVERIFY(sample.contains(m->column(1).at(3)));
}

void TestMacroList::theTimerRunsTheDateRows()
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

void TestMacroList::aSampleNeverTakesThePlaceOfTheStoredText()
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

void TestMacroList::aClickEnablesEditAndDeleteOfAUsersRowOnly()
{
    m->show();
    m->click(u"{My First Name}"_s);
    QVERIFY(m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(m->button(u"sbtDel"_s)->isEnabled());
    m->click(u"{Long Date}"_s);
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
    QVERIFY(!m->button(u"sbtDel"_s)->isEnabled());
}

void TestMacroList::theKeyboardChoosesARowAsAClickDoes()
{
    m->show();
    m->list()->setFocus();
    QTest::keyClick(m->list(), Qt::Key_End);
    QVERIFY(m->button(u"sbtEdit"_s)->isEnabled());
    QTest::keyClick(m->list(), Qt::Key_Home);
    QVERIFY(!m->button(u"sbtEdit"_s)->isEnabled());
}

void TestMacroList::aDoubleClickEditsAUsersRow()
{
    m->show();
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] { QCOMPARE(m->txtMacro()->text(), u"{My Website}"_s); });
    m->click(u"{My Website}"_s);
    QTest::mouseDClick(m->list()->viewport(), Qt::LeftButton, {},
                       m->list()->visualItemRect(m->row(u"{My Website}"_s)).center());
}

void TestMacroList::aDoubleClickOnAPredefinedRowDoesNothing()
{
    m->show();
    const ExpectedPrompts prompts;
    m->click(u"{Long Date}"_s);
    QTest::mouseDClick(m->list()->viewport(), Qt::LeftButton, {},
                       m->list()->visualItemRect(m->row(u"{Long Date}"_s)).center());
    QVERIFY(prompts.log().isEmpty());
}

void TestMacroList::eachHeaderClickReversesTheOrder()
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

void TestMacroList::aSortedListTakesANewRowInItsPlace()
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

void TestMacroList::equalButForCaseHasAnOrderToo()
{
    for (const QByteArray &lines : {QByteArray("{a}\t1\tx\tU\r\n{A}\t2\tx\tU\r\n{b}\t3\tx\tU\r\n"),
                                    QByteArray("{b}\t3\tx\tU\r\n{A}\t2\tx\tU\r\n{a}\t1\tx\tU\r\n")}) {
        writeFile(m->file(), lines);
        m->forms.unload(u"frmPubMacro"_s);
        Q_EMIT m->list()->header()->sectionClicked(0);
        QCOMPARE(m->column(0), (QStringList{u"{b}"_s, u"{a}"_s, u"{A}"_s}));
        Q_EMIT m->list()->header()->sectionClicked(0);
        QCOMPARE(m->column(0), (QStringList{u"{A}"_s, u"{a}"_s, u"{b}"_s}));
    }
}

QTEST_MAIN(TestMacroList)
#include "test_macrolist.moc"
