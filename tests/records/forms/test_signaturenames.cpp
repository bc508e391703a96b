#include "optionsbench.h"
#include "records/signaturerecords.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

class TestSignatureNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNumberOfARenamedSignatureIsFreeAgain();
    void renameByButton();
    void renameByF2();
    void f2ElsewhereRenamesNothing();
    void aNameThatStaysChangesNothing();
    void escapeLeavesTheName();
    void leavingTheEditorTakesTheName();
    void anEmptyNameIsRefusedAndEditedAgain();
    void aTakenNameIsRefusedAndEditedAgain();
    void namesThatDifferInCaseAreTwo();
    void theDefaultFollowsItsName();
    void renamingAnotherLeavesTheDefault();
    void renamingKeepsAFilesPath();
    void aNameIsKeptOnOneLineAndTrimmed();
    void aNameWithASlashStandsAndItsTextIsKept();
    void closingTakesTheNameThatIsEdited();
    void closingTellsOfANameThatIsTaken();

private:
    /// Types a name in the editor that is open, and Enter.
    static void type(OptionsBench &bench, const QString &name)
    {
        QVERIFY(bench.nameEditor());
        QCOMPARE(QApplication::focusWidget(), bench.nameEditor());
        bench.nameEditor()->selectAll();
        QTest::keyClick(bench.nameEditor(), Qt::Key_Delete);
        QTest::keyClicks(bench.nameEditor(), name);
        QTest::keyClick(bench.nameEditor(), Qt::Key_Return);
        OptionsBench::settle();
    }
    static void rename(OptionsBench &bench, const QString &name)
    {
        bench.sign(1)->click();
        type(bench, name);
    }
    static QString standard(OptionsBench &bench)
    {
        const QString inFile = bench.stored(u"Signature"_s, u"Default"_s);
        const QString inMemory = bench.globals().settings.text(Setting::DefaultSignature);
        return inFile == inMemory ? inFile : u"file %1, memory %2"_s.arg(inFile, inMemory);
    }
};

void TestSignatureNames::theNumberOfARenamedSignatureIsFreeAgain()
{
    OptionsBench bench;
    bench.putSignatures("Signature #0\t\r\nSignature #1\t\r\n", {{u"Signature #1"_s, "one"}});
    bench.open(Tab::SignaturesTab);
    bench.click(1, 1);
    rename(bench, u"Other"_s);
    bench.sign(0)->click();
    QCOMPARE(bench.rows(1), (QStringList{u"Signature #0"_s, u"Other"_s, u"Signature #1"_s}));
    QCOMPARE(bench.signText(u"Other"_s), QByteArray("one"));
}

void TestSignatureNames::renameByButton()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Short"_s, "Ann"}, {u"Long"_s, "Ann Lee"}});
    bench.open(Tab::SignaturesTab);
    bench.sign(1)->click();
    QVERIFY(bench.nameEditor());
    QCOMPARE(bench.nameEditor()->text(), u"Short"_s);
    QCOMPARE(bench.nameEditor()->selectedText(), u"Short"_s);
    type(bench, u"Brief"_s);
    QCOMPARE(bench.rows(1), (QStringList{u"Brief"_s, u"Long"_s}));
    QCOMPARE(bench.signs(), QByteArray("Brief\t\r\nLong\t\r\n")); // in its place
    QCOMPARE(bench.signText(u"Brief"_s), QByteArray("Ann"));
    QVERIFY(!QFileInfo::exists(bench.signFile(u"Short"_s)));
    QCOMPARE(bench.utbSign()->toPlainText(), u"Ann"_s);
    QVERIFY(!bench.nameEditor());
    QTest::keyClicks(bench.utbSign(), u"x"_s); // what is typed goes to the new name
    QCOMPARE(bench.signText(u"Brief"_s), QByteArray("xAnn"));
}

void TestSignatureNames::renameByF2()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.click(1, 1);
    QTest::keyClick(bench.lsv(1), Qt::Key_F2);
    type(bench, u"Brief"_s);
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\nBrief\t\r\n"));
    QCOMPARE(bench.rows(1), (QStringList{u"Short"_s, u"Brief"_s}));
}

void TestSignatureNames::f2ElsewhereRenamesNothing()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.focus(bench.utbSign());
    QTest::keyClick(bench.utbSign(), Qt::Key_F2);
    QVERIFY(!bench.nameEditor());
    bench.sbt(2)->click();
    OptionsBench empty;
    empty.open(Tab::SignaturesTab);
    empty.sign(1)->click();
    QVERIFY(!empty.nameEditor());
}

void TestSignatureNames::aNameThatStaysChangesNothing()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\nLong\t\r\n", {{u"Short"_s, "Ann\n"}});
    bench.open(Tab::SignaturesTab);
    rename(bench, u"Short"_s);
    QCOMPARE(bench.signs(), QByteArray("Short\t\nLong\t\r\n"));
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann\n"));
    QVERIFY(!bench.nameEditor());
}

void TestSignatureNames::escapeLeavesTheName()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(1)->click();
    QTest::keyClicks(bench.nameEditor(), u"Brief"_s);
    QTest::keyClick(bench.nameEditor(), Qt::Key_Escape);
    OptionsBench::settle();
    QVERIFY(!bench.nameEditor());
    QVERIFY(bench.form()->isVisible());
    QCOMPARE(bench.rows(1), QStringList{u"Short"_s});
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\n"));
}

void TestSignatureNames::leavingTheEditorTakesTheName()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(1)->click();
    QTest::keyClicks(bench.nameEditor(), u"Brief"_s);
    QTest::mouseClick(bench.utbSign()->viewport(), Qt::LeftButton);
    OptionsBench::settle();
    QCOMPARE(bench.signs(), QByteArray("Brief\t\r\n"));
    QCOMPARE(bench.focused(), u"utbSign"_s);
}

void TestSignatureNames::anEmptyNameIsRefusedAndEditedAgain()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    for (const QString &name : {u""_s, u"   "_s}) {
        bench.prompts.expectBox(u"NEED_SIGN"_s, 48);
        rename(bench, name);
        QCOMPARE(bench.prompts.leftOver(), QStringList());
        QVERIFY(bench.nameEditor());
        QCOMPARE(bench.nameEditor()->text(), u"Short"_s);
        QCOMPARE(bench.signs(), QByteArray("Short\t\r\n"));
        QTest::keyClick(bench.nameEditor(), Qt::Key_Escape);
        OptionsBench::settle();
    }
    QCOMPARE(bench.rows(1), QStringList{u"Short"_s});
}

void TestSignatureNames::aTakenNameIsRefusedAndEditedAgain()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Short"_s, "Ann"}, {u"Long"_s, "Ann Lee"}});
    bench.open(Tab::SignaturesTab);
    bench.prompts.expectBox(u"SENDER_EXISTS"_s, 48, quillon::BoxAnswer::Ok, u"Long"_s);
    rename(bench, u"Long"_s);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QVERIFY(bench.nameEditor());
    QCOMPARE(bench.rows(1), (QStringList{u"Short"_s, u"Long"_s}));
    type(bench, u"Longer"_s); // the edit that goes on
    QCOMPARE(bench.signs(), QByteArray("Longer\t\r\nLong\t\r\n"));
    QCOMPARE(bench.signText(u"Longer"_s) + bench.signText(u"Long"_s), QByteArray("AnnAnn Lee"));
}

void TestSignatureNames::namesThatDifferInCaseAreTwo()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Short"_s, "Ann"}, {u"Long"_s, "Ann Lee"}});
    bench.open(Tab::SignaturesTab);
    rename(bench, u"long"_s);
    QCOMPARE(bench.signs(), QByteArray("long\t\r\nLong\t\r\n"));
    QCOMPARE(bench.signText(u"long"_s), QByteArray("Ann"));
    QCOMPARE(bench.signText(u"Long"_s), QByteArray("Ann Lee"));
    rename(bench, u"LONG"_s);
    QCOMPARE(bench.signs(), QByteArray("LONG\t\r\nLong\t\r\n"));
    QCOMPARE(bench.signText(u"LONG"_s), QByteArray("Ann"));
}

void TestSignatureNames::theDefaultFollowsItsName()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n");
    storeSetting(bench.globals(), Setting::DefaultSignature, u"Short"_s);
    bench.open(Tab::SignaturesTab);
    rename(bench, u"Brief"_s);
    QCOMPARE(standard(bench), u"Brief"_s);
    QCOMPARE(bench.boldRows(1), QStringList{u"Brief"_s});
}

void TestSignatureNames::renamingAnotherLeavesTheDefault()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n");
    storeSetting(bench.globals(), Setting::DefaultSignature, u"Short"_s);
    const QByteArray before = bench.options();
    bench.open(Tab::SignaturesTab);
    bench.click(1, 1);
    rename(bench, u"Brief"_s);
    QCOMPARE(standard(bench), u"Short"_s);
    QCOMPARE(bench.boldRows(1), QStringList{u"Short"_s});
    QCOMPARE(bench.options(), before);
}

void TestSignatureNames::renamingKeepsAFilesPath()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\n");
    bench.open(Tab::SignaturesTab);
    rename(bench, u"Site"_s);
    QCOMPARE(bench.signs(), QByteArray("Site\t/no/page.htm\r\n"));
    QCOMPARE(bench.txt(11)->text(), u"/no/page.htm"_s);
    QVERIFY(bench.opt(1)->isChecked());
}

void TestSignatureNames::aNameIsKeptOnOneLineAndTrimmed()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(1)->click();
    bench.nameEditor()->setText(u"  one\ttwo "_s);
    QTest::keyClick(bench.nameEditor(), Qt::Key_Return);
    OptionsBench::settle();
    QCOMPARE(bench.rows(1), QStringList{u"one two"_s});
    QCOMPARE(bench.signs(), QByteArray("one two\t\r\n"));
}

void TestSignatureNames::aNameWithASlashStandsAndItsTextIsKept()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    rename(bench, u"work/home"_s);
    QCOMPARE(bench.signs(), QByteArray("work/home\t\r\n"));
    QVERIFY(bench.utbSign()->isReadOnly());
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann")); // what was written is not thrown away
    rename(bench, u"Short"_s);
    QCOMPARE(bench.utbSign()->toPlainText(), u"Ann"_s);
    QVERIFY(!bench.utbSign()->isReadOnly());
}

void TestSignatureNames::closingTakesTheNameThatIsEdited()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    bench.sign(1)->click();
    QTest::keyClicks(bench.nameEditor(), u"Brief"_s);
    QByteArray whenRefilled;
    bench.refilled = [&] { whenRefilled = bench.signs(); };
    bench.form()->close();
    QVERIFY(!bench.isLoaded());
    QCOMPARE(whenRefilled, QByteArray("Brief\t\r\n")); // before the main window reads the names
    QCOMPARE(bench.signText(u"Brief"_s), QByteArray("Ann"));
}

void TestSignatureNames::closingTellsOfANameThatIsTaken()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(1)->click();
    QTest::keyClicks(bench.nameEditor(), u"Long"_s);
    bench.prompts.expectBox(u"SENDER_EXISTS"_s, 48, quillon::BoxAnswer::Ok, u"Long"_s);
    bench.form()->close();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QVERIFY(!bench.isLoaded());
    OptionsBench::settle();
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\nLong\t\r\n"));
}

QTEST_MAIN(TestSignatureNames)
#include "test_signaturenames.moc"
