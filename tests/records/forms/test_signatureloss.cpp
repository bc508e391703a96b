#include "optionsbench.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

/// What could cost a signature's text or its name.
class TestSignatureLoss : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLetterLeavesNoBreakSpacesAlone();
    void aClickOnTheSameRowBringsAnEmptiedTextBack();
    void aRenameThatCouldNotBeWrittenLeavesTheRow();
    void aListThatCannotBeReadTakesNoText();
    void tabInTheEditorGoesToNoOtherName();
    void aRefusedNameIsEditedAgainWhereItWas();
    void aKeyTakesTheNameFirst();
    void selectAllBelongsToTheEditorOfNames();

private:
    static void put(OptionsBench &bench)
    {
        bench.putSignatures("A\t\r\nB\t\r\nC\t\r\n", {{u"A"_s, "text of A"}, {u"B"_s, "text of B"}});
        bench.open(Tab::SignaturesTab);
    }
    /// Opens the editor on the present row and replaces its text.
    static void edit(OptionsBench &bench, const QString &name)
    {
        bench.sign(1)->click();
        QVERIFY(bench.nameEditor());
        bench.nameEditor()->setText(name);
    }
};

void TestSignatureLoss::aLetterLeavesNoBreakSpacesAlone()
{
    OptionsBench bench;
    bench.putSignatures("A\t\r\n", {{u"A"_s, "z.\xC2\xA0"
                                             "B. 10\xC2\xA0\xE2\x82\xAC"}});
    bench.open(Tab::SignaturesTab);
    bench.focus(bench.utbSign());
    bench.utbSign()->moveCursor(QTextCursor::End);
    QTest::keyClicks(bench.utbSign(), u"!"_s);
    QCOMPARE(bench.signText(u"A"_s), QByteArray("z.\xC2\xA0"
                                                "B. 10\xC2\xA0\xE2\x82\xAC!"));
}

void TestSignatureLoss::aClickOnTheSameRowBringsAnEmptiedTextBack()
{
    OptionsBench bench;
    put(bench);
    bench.utbSign()->clear();
    bench.click(1, 0);
    QCOMPARE(bench.utbSign()->toPlainText(), u"text of A"_s);
}

void TestSignatureLoss::aRenameThatCouldNotBeWrittenLeavesTheRow()
{
    OptionsBench bench;
    put(bench);
    bench.sign(4)->click(); // the default
    QVERIFY(QFile::remove(bench.globals().paths.signsFile));
    QVERIFY(QDir().mkpath(bench.globals().paths.signsFile));
    edit(bench, u"New"_s);
    QTest::keyClick(bench.nameEditor(), Qt::Key_Return);
    OptionsBench::settle();
    QCOMPARE(bench.rows(1), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
    QCOMPARE(bench.stored(u"Signature"_s, u"Default"_s), u"A"_s);
    QCOMPARE(bench.signText(u"A"_s), QByteArray("text of A"));
}

void TestSignatureLoss::aListThatCannotBeReadTakesNoText()
{
    OptionsBench bench;
    put(bench);
    QVERIFY(QFile::remove(bench.globals().paths.signsFile));
    QVERIFY(QDir().mkpath(bench.globals().paths.signsFile));
    bench.click(1, 1);
    QVERIFY(bench.utbSign()->isReadOnly());
}

void TestSignatureLoss::tabInTheEditorGoesToNoOtherName()
{
    OptionsBench bench;
    put(bench);
    edit(bench, u"New"_s);
    QTest::keyClick(bench.nameEditor(), Qt::Key_Tab);
    OptionsBench::settle();
    QVERIFY(!bench.nameEditor());
    QCOMPARE(bench.rows(1), (QStringList{u"New"_s, u"B"_s, u"C"_s}));
}

void TestSignatureLoss::aRefusedNameIsEditedAgainWhereItWas()
{
    OptionsBench bench;
    put(bench);
    edit(bench, u"B"_s);
    bench.prompts.expectBox(u"SENDER_EXISTS"_s, quillon::WarningBox, quillon::BoxAnswer::Ok, u"B"_s);
    QTest::keyClick(bench.nameEditor(), Qt::Key_Backtab);
    OptionsBench::settle();
    QVERIFY(bench.nameEditor());
    QCOMPARE(bench.nameEditor()->text(), u"A"_s);
    QCOMPARE(bench.selectedRows(1), QStringList{u"A"_s});
}

void TestSignatureLoss::aKeyTakesTheNameFirst()
{
    OptionsBench bench;
    put(bench);
    edit(bench, u"B"_s);
    // The name's box comes before the question, not inside it, and the row keeps its name.
    bench.prompts.expectBox(u"SENDER_EXISTS"_s, quillon::WarningBox, quillon::BoxAnswer::Ok, u"B"_s);
    bench.prompts.expectBox(u"DEL_SIGN_PROMPT"_s, quillon::YesNoBox, quillon::BoxAnswer::No);
    QTest::keyClick(bench.nameEditor(), Qt::Key_E, Qt::AltModifier);
    OptionsBench::settle();
    QVERIFY(!bench.nameEditor());
    QCOMPARE(bench.rows(1), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
}

void TestSignatureLoss::selectAllBelongsToTheEditorOfNames()
{
    OptionsBench bench;
    put(bench);
    edit(bench, u"Other"_s);
    bench.nameEditor()->deselect();
    QTest::keyClick(bench.nameEditor(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(bench.nameEditor()->selectedText(), u"Other"_s);
    QVERIFY(!bench.utbSign()->textCursor().hasSelection());
}

QTEST_MAIN(TestSignatureLoss)
#include "test_signatureloss.moc"
