#include "optionsbench.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

class TestSignatureList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstSignatureIsNumberZeroAndTheDefault();
    void theNextSignatureHasTheFirstFreeNumber();
    void anUnfinishedTextHoldsUpTheNext();
    void anUnfinishedFileHoldsUpTheNext();
    void aPathAloneIsEnoughForTheNext();
    void aThousandNumbersTakenAddNothing();
    void anAddedSignatureStandsInItsPlaceOfASortedList();
    void theDefaultIsBold();
    void deleteAsksAndMayBeRefused();
    void deleteAsksEvenWithAnEmptyList();
    void deleteTakesAllSelectedRowsWithTheirTexts();
    void aDeletedDefaultIsFollowedByTheFirstRow();
    void anotherDefaultStaysAfterADeletion();
    void theDefaultIsFoundByItsNameInTheList();
    void deletingTheLastOneLeavesNoDefault();
    void clearAsksAndMayBeRefused();
    void clearAsksEvenWithAnEmptyList();
    void clearDeletesTheWholeFolder();
    void defaultMarksTheSelectedRow();
    void aRowThatIsTheDefaultStaysIt();
    void defaultWithoutARowDoesNothing();
    void editedTextsGoToTheRowThatIsShown();
    void keysPressTheButtons();
    void theDefaultsTickWaitsForSave();

private:
    static void verifyStandard(OptionsBench &bench, const QString &name)
    {
        QCOMPARE(bench.stored(u"Signature"_s, u"Default"_s), name);
        QCOMPARE(bench.globals().settings.text(Setting::DefaultSignature), name);
        QCOMPARE(bench.boldRows(1), name.isEmpty() ? QStringList() : QStringList{name});
    }
    /// Three signatures, of which @p name is the default, on the screen.
    static void openThree(OptionsBench &bench, const QString &name)
    {
        bench.putSignatures("A\t\r\nB\t/no/page.htm\r\nC\t\r\n", {{u"A"_s, "a"}, {u"C"_s, "c"}});
        storeSetting(bench.globals(), Setting::DefaultSignature, name);
        bench.open(Tab::SignaturesTab);
    }
    static void press(OptionsBench &bench, int index, const QString &question, quillon::BoxAnswer answer)
    {
        bench.prompts.expectBox(question, 36, answer);
        bench.sign(index)->click();
        QCOMPARE(bench.prompts.leftOver(), QStringList());
    }
    static void remove(OptionsBench &bench) { press(bench, 2, u"DEL_SIGN_PROMPT"_s, quillon::BoxAnswer::Yes); }
};

void TestSignatureList::theFirstSignatureIsNumberZeroAndTheDefault()
{
    OptionsBench bench;
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    bench.sign(0)->click();
    QCOMPARE(bench.rows(1), QStringList{u"Signature #0"_s});
    QCOMPARE(bench.boldRows(1), bench.rows(1));
    QCOMPARE(bench.selectedRows(1), bench.rows(1));
    QCOMPARE(bench.signs(), QByteArray("Signature #0\t\r\n"));
    QCOMPARE(bench.signText(u"Signature #0"_s), QByteArray(""));
    verifyStandard(bench, u"Signature #0"_s);
    QVERIFY(bench.opt(0)->isChecked());
    QCOMPARE(bench.focused(), u"utbSign"_s);
    QCOMPARE(bench.utbSign()->toPlainText() + bench.txt(11)->text(), QString());
    QTest::keyClicks(bench.utbSign(), u"Ann"_s); // and it can be written at once
    QCOMPARE(bench.signText(u"Signature #0"_s), QByteArray("Ann"));
}

void TestSignatureList::theNextSignatureHasTheFirstFreeNumber()
{
    OptionsBench bench;
    bench.putSignatures("Signature #0\t\r\nSignature #1\t\r\nSignature #3\t\r\n",
                        {{u"Signature #0"_s, "zero"}, {u"Signature #2"_s, "left from before"}});
    bench.open(Tab::SignaturesTab);
    bench.sign(0)->click();
    QCOMPARE(bench.rows(1).last(), u"Signature #2"_s);
    QCOMPARE(bench.selectedRows(1), QStringList{u"Signature #2"_s});
    QCOMPARE(bench.signs(), QByteArray("Signature #0\t\r\nSignature #1\t\r\nSignature #3\t\r\nSignature #2\t\r\n"));
    QCOMPARE(bench.signText(u"Signature #2"_s), QByteArray(""));
    QCOMPARE(bench.utbSign()->toPlainText(), QString());
    QCOMPARE(bench.focused(), u"utbSign"_s);
    verifyStandard(bench, QString()); // only the first one becomes the default by itself
    QTest::keyClicks(bench.utbSign(), u"two"_s);
    bench.sign(0)->click();
    QCOMPARE(bench.rows(1).last(), u"Signature #4"_s);
    QCOMPARE(bench.signText(u"Signature #2"_s), QByteArray("two"));
}

void TestSignatureList::anUnfinishedTextHoldsUpTheNext()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, " \r\n\t"}});
    bench.open(Tab::SignaturesTab);
    bench.focus(bench.lsv(1));
    bench.prompts.expectBox(u"NEED_TEXT"_s, 48);
    bench.sign(0)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.focused(), u"utbSign"_s);
    QCOMPARE(bench.rows(1), QStringList{u"Short"_s});
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\n"));
}

void TestSignatureList::anUnfinishedFileHoldsUpTheNext()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    bench.prompts.expectBox(u"NEED_TEXT"_s, 48);
    bench.sign(0)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.focused(), u"txt(11)"_s);
    QCOMPARE(bench.rows(1), QStringList{u"Short"_s});
}

void TestSignatureList::aPathAloneIsEnoughForTheNext()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(0)->click();
    QCOMPARE(bench.rows(1), (QStringList{u"Page"_s, u"Signature #1"_s}));
    QVERIFY(bench.opt(0)->isChecked());
    QCOMPARE(bench.txt(11)->text(), QString());
    QCOMPARE(bench.signs(), QByteArray("Page\t/no/page.htm\r\nSignature #1\t\r\n"));
}

void TestSignatureList::aThousandNumbersTakenAddNothing()
{
    OptionsBench bench;
    QByteArray list;
    for (int number = 1; number <= 1000; ++number) {
        list += "Signature #" + QByteArray::number(number) + "\t\r\n";
    }
    bench.putSignatures(list, {{u"Signature #1"_s, "one"}});
    bench.open(Tab::SignaturesTab);
    bench.sign(0)->click();
    QCOMPARE(bench.rows(1).size(), 1000);
    QCOMPARE(bench.signs(), list);
}

void TestSignatureList::anAddedSignatureStandsInItsPlaceOfASortedList()
{
    OptionsBench bench;
    bench.putSignatures("Z\t\r\nA\t\r\n", {{u"Z"_s, "z"}, {u"A"_s, "a"}});
    bench.open(Tab::SignaturesTab);
    bench.lsv(1)->model()->sort(0, Qt::AscendingOrder);
    bench.sign(0)->click();
    QCOMPARE(bench.rows(1), (QStringList{u"A"_s, u"Signature #1"_s, u"Z"_s}));
    QCOMPARE(bench.selectedRows(1), QStringList{u"Signature #1"_s});
    QTest::keyClicks(bench.utbSign(), u"one"_s);
    QCOMPARE(bench.signText(u"Signature #1"_s), QByteArray("one"));
}

void TestSignatureList::theDefaultIsBold()
{
    OptionsBench bench;
    openThree(bench, u"B"_s);
    QCOMPARE(bench.boldRows(1), QStringList{u"B"_s});
    QCOMPARE(bench.selectedRows(1), QStringList{u"A"_s});
    OptionsBench inAnotherCase; // is another name
    openThree(inAnotherCase, u"b"_s);
    QCOMPARE(inAnotherCase.boldRows(1), QStringList());
}

void TestSignatureList::deleteAsksAndMayBeRefused()
{
    OptionsBench bench;
    openThree(bench, u"A"_s);
    press(bench, 2, u"DEL_SIGN_PROMPT"_s, quillon::BoxAnswer::No);
    QCOMPARE(bench.signs(), QByteArray("A\t\r\nB\t/no/page.htm\r\nC\t\r\n"));
    QCOMPARE(bench.signText(u"A"_s), QByteArray("a"));
    QCOMPARE(bench.rows(1).size(), 3);
}

void TestSignatureList::deleteAsksEvenWithAnEmptyList()
{
    OptionsBench bench;
    bench.open(Tab::SignaturesTab);
    remove(bench);
    QCOMPARE(bench.signs(), QByteArray());
    QCOMPARE(bench.focused(), u"utbSign"_s);
}

void TestSignatureList::deleteTakesAllSelectedRowsWithTheirTexts()
{
    OptionsBench bench;
    openThree(bench, u"B"_s);
    bench.click(1, 2);
    bench.click(1, 0, Qt::ControlModifier);
    remove(bench);
    QCOMPARE(bench.signs(), QByteArray("B\t/no/page.htm\r\n"));
    QVERIFY(!QFileInfo::exists(bench.signFile(u"A"_s)) && !QFileInfo::exists(bench.signFile(u"C"_s)));
    QCOMPARE(bench.rows(1), QStringList{u"B"_s});
    QCOMPARE(bench.selectedRows(1), QStringList{u"B"_s});
    QCOMPARE(bench.txt(11)->text(), u"/no/page.htm"_s); // its editor shows what is selected
    QVERIFY(bench.opt(1)->isChecked());
}

void TestSignatureList::aDeletedDefaultIsFollowedByTheFirstRow()
{
    OptionsBench bench;
    openThree(bench, u"B"_s);
    bench.click(1, 1);
    remove(bench);
    QCOMPARE(bench.rows(1), (QStringList{u"A"_s, u"C"_s}));
    QCOMPARE(bench.selectedRows(1), QStringList{u"A"_s});
    verifyStandard(bench, u"A"_s);
    QCOMPARE(bench.utbSign()->toPlainText(), u"a"_s);
}

void TestSignatureList::anotherDefaultStaysAfterADeletion()
{
    OptionsBench bench;
    openThree(bench, u"C"_s);
    const QByteArray before = bench.options();
    remove(bench);
    QCOMPARE(bench.selectedRows(1), QStringList{u"B"_s});
    verifyStandard(bench, u"C"_s);
    QCOMPARE(bench.options(), before);
}

void TestSignatureList::theDefaultIsFoundByItsNameInTheList()
{
    OptionsBench bench;
    openThree(bench, u"gone"_s);
    remove(bench);
    verifyStandard(bench, u"B"_s); // no row is bold before, and no row has the name
}

void TestSignatureList::deletingTheLastOneLeavesNoDefault()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\n");
    storeSetting(bench.globals(), Setting::DefaultSignature, u"Page"_s);
    bench.open(Tab::SignaturesTab);
    QVERIFY(bench.opt(1)->isChecked());
    remove(bench);
    QCOMPARE(bench.signs(), QByteArray());
    verifyStandard(bench, QString());
    QVERIFY(bench.opt(0)->isChecked());
    QCOMPARE(bench.utbSign()->toPlainText(), QString());
    QCOMPARE(bench.focused(), u"utbSign"_s);
}

void TestSignatureList::clearAsksAndMayBeRefused()
{
    OptionsBench bench;
    openThree(bench, u"A"_s);
    press(bench, 3, u"CLEAR_SIGN"_s, quillon::BoxAnswer::No);
    QCOMPARE(bench.rows(1).size(), 3);
    QCOMPARE(bench.signs(), QByteArray("A\t\r\nB\t/no/page.htm\r\nC\t\r\n"));
}

void TestSignatureList::clearAsksEvenWithAnEmptyList()
{
    OptionsBench bench;
    bench.open(Tab::SignaturesTab);
    press(bench, 3, u"CLEAR_SIGN"_s, quillon::BoxAnswer::Yes);
    QCOMPARE(bench.signs(), QByteArray(""));
    QVERIFY(QFileInfo::exists(bench.globals().paths.signsFile));
}

void TestSignatureList::clearDeletesTheWholeFolder()
{
    OptionsBench bench;
    openThree(bench, u"A"_s);
    const QString folder = bench.globals().paths.signs;
    QVERIFY(QDir().mkpath(folder + u"/more"_s));
    writeFile(folder + u"/more/file"_s, "x");
    bench.click(1, 1);
    press(bench, 3, u"CLEAR_SIGN"_s, quillon::BoxAnswer::Yes);
    QCOMPARE(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList{u"signs.dll"_s});
    QCOMPARE(bench.signs(), QByteArray(""));
    QVERIFY(bench.rows(1).isEmpty());
    verifyStandard(bench, QString());
    QVERIFY(bench.opt(0)->isChecked());
    QCOMPARE(bench.utbSign()->toPlainText() + bench.txt(11)->text(), QString());
    bench.sign(0)->click(); // and the numbers begin anew
    QCOMPARE(bench.rows(1), QStringList{u"Signature #0"_s});
    verifyStandard(bench, u"Signature #0"_s);
}

void TestSignatureList::defaultMarksTheSelectedRow()
{
    OptionsBench bench;
    openThree(bench, u"A"_s);
    bench.click(1, 2);
    bench.sign(4)->click();
    verifyStandard(bench, u"C"_s);
    QCOMPARE(bench.signs(), QByteArray("A\t\r\nB\t/no/page.htm\r\nC\t\r\n"));
    QCOMPARE(bench.utbSign()->toPlainText(), u"c"_s);
}

void TestSignatureList::aRowThatIsTheDefaultStaysIt()
{
    OptionsBench bench;
    openThree(bench, u"A"_s);
    storeSetting(bench.globals(), Setting::DefaultSignature, u"elsewhere"_s);
    bench.sign(4)->click(); // a bold row is the default already, whatever the file says
    QCOMPARE(bench.stored(u"Signature"_s, u"Default"_s), u"elsewhere"_s);
}

void TestSignatureList::defaultWithoutARowDoesNothing()
{
    OptionsBench bench;
    bench.open(Tab::SignaturesTab);
    const QByteArray before = bench.options();
    bench.sign(4)->click();
    QCOMPARE(bench.options(), before);
}

void TestSignatureList::editedTextsGoToTheRowThatIsShown()
{
    OptionsBench bench;
    openThree(bench, u"A"_s);
    bench.lsv(1)->model()->sort(0, Qt::DescendingOrder);
    QCOMPARE(bench.rows(1).first(), u"C"_s);
    QTest::keyClicks(bench.utbSign(), u"x"_s); // A is shown still
    QCOMPARE(bench.signText(u"A"_s), QByteArray("xa"));
    QCOMPARE(bench.signText(u"C"_s), QByteArray("c"));
    bench.click(1, 0);
    QTest::keyClicks(bench.utbSign(), u"y"_s);
    QCOMPARE(bench.signText(u"C"_s), QByteArray("yc"));
}

void TestSignatureList::keysPressTheButtons()
{
    OptionsBench bench;
    const auto press = [&bench](Qt::Key key) { QTest::keyClick(bench.form()->focusWidget(), key, Qt::AltModifier); };
    openThree(bench, u"C"_s);
    press(Qt::Key_D);
    QCOMPARE(bench.rows(1).size(), 4);
    press(Qt::Key_U);
    verifyStandard(bench, u"Signature #1"_s);
    bench.prompts.expectBox(u"DEL_SIGN_PROMPT"_s, 36, quillon::BoxAnswer::Yes);
    press(Qt::Key_E);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.rows(1).size(), 3);
    press(Qt::Key_R);
    auto *editor = bench.lsv(1)->viewport()->findChild<QLineEdit *>();
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_Escape);
    bench.prompts.expectBox(u"CLEAR_SIGN"_s, 36, quillon::BoxAnswer::No);
    press(Qt::Key_L);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    bench.focus(bench.lsv(1));
    QTest::keyClick(bench.lsv(1), Qt::Key_Delete); // is no key of this tab
    press(Qt::Key_A);
    press(Qt::Key_C);
    QCOMPARE(bench.rows(1).size(), 3);
}

void TestSignatureList::theDefaultsTickWaitsForSave()
{
    OptionsBench bench;
    openThree(bench, u"A"_s);
    bench.cbx(4)->click();
    QCOMPARE(bench.stored(u"Signature"_s, u"AutoAdd"_s), u"True"_s);
    bench.save();
    QCOMPARE(bench.stored(u"Signature"_s, u"AutoAdd"_s), u"False"_s);
    QCOMPARE(bench.globals().settings.text(Setting::AutoAddSignature), u"False"_s);
}

QTEST_MAIN(TestSignatureList)
#include "test_signaturelist.moc"
