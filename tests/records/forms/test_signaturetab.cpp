#include "core/forms/artwork.h"
#include "optionsbench.h"
#include "records/signaturerecords.h"

#include <QClipboard>
#include <QStyle>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

class TestSignatureTab : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstRowIsShownAtLoad();
    void aRowOfATextShowsItsText();
    void aRowOfAFileShowsItsPath();
    void aPathOfBlanksIsAText();
    void aRowWithoutALineShowsAnEmptyText();
    void showingRowsSavesNothing();
    void withoutASignatureNothingCanBeTyped();
    void eachLetterIsSaved();
    void lineEndsAreWrittenAsCrLf();
    void aTextIsWrittenAsUtf8();
    void aChangeMovesTheSignatureToTheEndOfTheFile();
    void emptyingATextSavesNothing();
    void blanksAloneAreNotSaved();
    void theKindEnablesItsBoxes();
    void theTextBoxLooksLikeTheFormWhileItIsDisabled();
    void choosingTextPutsTheFocusInItsBox();
    void switchingSavesTheOtherKindAtOnce();
    void switchingToAnEmptyBoxSavesNothing();
    void aPathThatExistsIsSaved();
    void oddRuleAPathIsToldAtEachChangeUntilItExists();
    void oddRuleSwitchingTellsOfAPathThatDoesNotExist();
    void aFolderIsNoSignatureFile();
    void oddRuleAFileSignatureDeletesTheTextsOfNamesThatBeginWithItsOwn();
    void tabsInAPathBecomeBlanks();
    void controlAWithTheListInFocusSelectsTheText();
    void theButtonsOfAFileBearTheProgramsOwnDrawings();

private:
    /// An existing file that a signature can name.
    static QString someFile(OptionsBench &bench, const QString &name = u"mine.htm"_s)
    {
        writeFile(bench.tree.path(name), "<b>me</b>");
        return bench.tree.path(name);
    }
};

void TestSignatureTab::theFirstRowIsShownAtLoad()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Short"_s, "Ann"}, {u"Long"_s, "Ann Lee"}});
    QCOMPARE(bench.selectedRows(1), QStringList{u"Short"_s});
    QCOMPARE(bench.utbSign()->toPlainText(), u"Ann"_s);
}

void TestSignatureTab::aRowOfATextShowsItsText()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\nShort\t\r\n", {{u"Short"_s, "Gr\303\274\303\237e\r\n\r\n\tAnn "}});
    bench.open(Tab::SignaturesTab);
    bench.click(1, 1);
    QVERIFY(bench.opt(0)->isChecked() && !bench.opt(1)->isChecked());
    QCOMPARE(bench.utbSign()->toPlainText(), u"Grüße\n\n\tAnn "_s);
    QCOMPARE(bench.txt(11)->text(), QString());
    QVERIFY(bench.utbSign()->isEnabled() && !bench.utbSign()->isReadOnly());
}

void TestSignatureTab::aRowOfAFileShowsItsPath()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nPage\t/no/page.htm\r\n", {{u"Short"_s, "Ann"}, {u"Page"_s, "left from before"}});
    bench.open(Tab::SignaturesTab);
    bench.click(1, 1); // no box tells that the file is not there: it is only shown
    QVERIFY(bench.opt(1)->isChecked() && !bench.opt(0)->isChecked());
    QCOMPARE(bench.txt(11)->text(), u"/no/page.htm"_s);
    QCOMPARE(bench.utbSign()->toPlainText(), QString());
}

void TestSignatureTab::aPathOfBlanksIsAText()
{
    OptionsBench bench;
    bench.putSignatures("Short\t  \r\n", {{u"Short"_s, "Ann"}});
    QVERIFY(bench.opt(0)->isChecked());
    QCOMPARE(bench.utbSign()->toPlainText(), u"Ann"_s);
    QCOMPARE(bench.txt(11)->text(), QString());
}

void TestSignatureTab::aRowWithoutALineShowsAnEmptyText()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\nGone\t/no/page.htm\r\n", {{u"Gone"_s, "left from before"}});
    bench.open(Tab::SignaturesTab);
    writeFile(bench.globals().paths.signsFile, "Page\t/no/page.htm\r\n");
    bench.click(1, 1);
    QVERIFY(bench.opt(0)->isChecked());
    QCOMPARE(bench.utbSign()->toPlainText(), QString());
    QCOMPARE(bench.txt(11)->text(), QString());
}

void TestSignatureTab::showingRowsSavesNothing()
{
    OptionsBench bench;
    const QByteArray list = "A\t\r\nPage\t/no/page.htm\r\nB\t\r\n";
    bench.putSignatures(list, {{u"A"_s, "one\ntwo"}, {u"B"_s, "\357\273\277three"}, {u"Pages"_s, "kept"}});
    bench.open(Tab::SignaturesTab);
    for (const int row : {2, 1, 0, 1, 2, 0}) {
        bench.click(1, row);
    }
    QCOMPARE(bench.signs(), list); // a save would have moved the line
    QCOMPARE(bench.signText(u"A"_s), QByteArray("one\ntwo"));
    QCOMPARE(bench.signText(u"B"_s), QByteArray("\357\273\277three"));
    QCOMPARE(bench.signText(u"Pages"_s), QByteArray("kept"));
}

void TestSignatureTab::withoutASignatureNothingCanBeTyped()
{
    OptionsBench bench;
    bench.open(Tab::SignaturesTab);
    QVERIFY(bench.utbSign()->isReadOnly());
    QVERIFY(!bench.utbSign()->placeholderText().isEmpty());
    QTest::keyClicks(bench.utbSign(), u"lost"_s);
    QCOMPARE(bench.utbSign()->toPlainText(), QString());
    bench.opt(1)->click();
    bench.txt(11)->setText(someFile(bench));
    QCOMPARE(bench.signs(), QByteArray());
}

void TestSignatureTab::eachLetterIsSaved()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, ""}});
    bench.open(Tab::SignaturesTab);
    bench.focus(bench.utbSign());
    const QString text = u"Ann Lee"_s;
    for (qsizetype length = 1; length <= text.size(); ++length) {
        QTest::keyClicks(bench.utbSign(), text.mid(length - 1, 1));
        QCOMPARE(bench.signText(u"Short"_s), text.first(length).toUtf8());
    }
    QTest::keyClick(bench.utbSign(), Qt::Key_Backspace);
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann Le"));
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\n"));
}

void TestSignatureTab::lineEndsAreWrittenAsCrLf()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "one\ntwo\r\n"}});
    bench.open(Tab::SignaturesTab);
    bench.utbSign()->moveCursor(QTextCursor::End);
    QTest::keyClick(bench.utbSign(), Qt::Key_Return);
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("one\r\ntwo\r\n\r\n"));
    QTest::keyClicks(bench.utbSign(), u"x"_s);
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("one\r\ntwo\r\n\r\nx"));
    QTest::keyClick(bench.utbSign(), Qt::Key_Return, Qt::ShiftModifier); // a line end of another kind
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("one\r\ntwo\r\n\r\nx\r\n"));
}

void TestSignatureTab::aTextIsWrittenAsUtf8()
{
    OptionsBench bench;
    bench.putSignatures("Gr\303\274\303\237e\t\r\n");
    bench.open(Tab::SignaturesTab);
    QApplication::clipboard()->setText(u"\u20ac \u0416 \U0001F600\t."_s);
    bench.utbSign()->paste();
    QCOMPARE(bench.signText(u"Grüße"_s), QByteArray("\342\202\254 \320\226 \360\237\230\200\t."));
    QCOMPARE(bench.signs(), QByteArray("Gr\303\274\303\237e\t\r\n"));
}

void TestSignatureTab::aChangeMovesTheSignatureToTheEndOfTheFile()
{
    OptionsBench bench;
    bench.putSignatures("A\t\r\nB\t\r\nC\t\r\n", {{u"A"_s, "a"}, {u"B"_s, "b"}, {u"C"_s, "c"}});
    bench.open(Tab::SignaturesTab);
    QTest::keyClicks(bench.utbSign(), u"x"_s);
    QCOMPARE(bench.signs(), QByteArray("B\t\r\nC\t\r\nA\t\r\n"));
    QCOMPARE(bench.rows(1), (QStringList{u"A"_s, u"B"_s, u"C"_s})); // the list stays as it is
    bench.click(1, 1);
    QTest::keyClicks(bench.utbSign(), u"x"_s);
    QCOMPARE(bench.signs(), QByteArray("C\t\r\nA\t\r\nB\t\r\n"));
    QCOMPARE(bench.signText(u"A"_s) + bench.signText(u"B"_s) + bench.signText(u"C"_s), QByteArray("xaxbc"));
}

void TestSignatureTab::emptyingATextSavesNothing()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    bench.utbSign()->selectAll();
    QTest::keyClick(bench.utbSign(), Qt::Key_Delete);
    QCOMPARE(bench.utbSign()->toPlainText(), QString());
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann"));
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\nLong\t\r\n"));
    bench.click(1, 1);
    bench.click(1, 0);
    QCOMPARE(bench.utbSign()->toPlainText(), u"Ann"_s); // so it comes back
}

void TestSignatureTab::blanksAloneAreNotSaved()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    bench.utbSign()->setPlainText(u" \n\t "_s);
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann"));
}

void TestSignatureTab::theKindEnablesItsBoxes()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    for (const bool text : {true, false, true}) {
        bench.opt(text ? 0 : 1)->click();
        QCOMPARE(bench.utbSign()->isEnabled(), text);
        QCOMPARE(bench.txt(11)->isEnabled(), !text);
        QCOMPARE(bench.sign(5)->isEnabled(), !text);
        QCOMPARE(bench.sign(6)->isEnabled(), !text);
        QVERIFY(bench.sign(7)->isEnabled());
    }
}

void TestSignatureTab::theTextBoxLooksLikeTheFormWhileItIsDisabled()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    const auto background = [&bench] { return bench.utbSign()->palette().color(QPalette::Base); };
    QCOMPARE(background(), bench.form()->palette().color(QPalette::Active, QPalette::Base));
    bench.opt(1)->click();
    QCOMPARE(background(), bench.form()->palette().color(QPalette::Active, QPalette::Button));
    QVERIFY(background() != bench.form()->palette().color(QPalette::Active, QPalette::Base));
    bench.opt(0)->click();
    QCOMPARE(background(), bench.form()->palette().color(QPalette::Active, QPalette::Base));
}

void TestSignatureTab::choosingTextPutsTheFocusInItsBox()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    QTest::mouseClick(bench.opt(1), Qt::LeftButton);
    QCOMPARE(bench.focused(), u"opt(1)"_s);
    QTest::mouseClick(bench.opt(0), Qt::LeftButton);
    QCOMPARE(bench.focused(), u"utbSign"_s);
}

void TestSignatureTab::switchingSavesTheOtherKindAtOnce()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, ""}});
    bench.open(Tab::SignaturesTab);
    const QByteArray path = someFile(bench).toUtf8();
    QTest::keyClicks(bench.utbSign(), u"Ann"_s);
    bench.opt(1)->click();
    bench.txt(11)->setText(QString::fromUtf8(path));
    QCOMPARE(bench.signs(), "Short\t" + path + "\r\n");
    QVERIFY(!QFileInfo::exists(bench.signFile(u"Short"_s)));
    bench.opt(0)->click();
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\n"));
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann"));
    bench.opt(1)->click();
    QCOMPARE(bench.signs(), "Short\t" + path + "\r\n");
    QVERIFY(!QFileInfo::exists(bench.signFile(u"Short"_s)));
}

void TestSignatureTab::switchingToAnEmptyBoxSavesNothing()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nPage\t/no/page.htm\r\n", {{u"Short"_s, "Ann"}});
    const QByteArray list = bench.signs();
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    bench.click(1, 1);
    bench.opt(0)->click();
    QCOMPARE(bench.signs(), list);
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann"));
    QVERIFY(!QFileInfo::exists(bench.signFile(u"Page"_s)));
    bench.click(1, 0);
    QVERIFY(bench.opt(0)->isChecked()); // no more than a look
}

void TestSignatureTab::aPathThatExistsIsSaved()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    const QString path = someFile(bench, u"a grüße, 1.txt"_s);
    bench.opt(1)->click();
    bench.txt(11)->setText(path);
    QCOMPARE(bench.signs(), "Long\t\r\nShort\t" + path.toUtf8() + "\r\n");
    QVERIFY(!QFileInfo::exists(bench.signFile(u"Short"_s)));
    bench.txt(11)->clear(); // is no change to keep
    QCOMPARE(bench.signs(), "Long\t\r\nShort\t" + path.toUtf8() + "\r\n");
}

void TestSignatureTab::oddRuleAPathIsToldAtEachChangeUntilItExists()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    const QString path = someFile(bench, u"abc"_s);
    bench.opt(1)->click();
    bench.prompts.expectBox(u"SIGN_NOT_EXIST"_s, 48, quillon::BoxAnswer::Ok, path.chopped(2))
        .expectBox(u"SIGN_NOT_EXIST"_s, 48, quillon::BoxAnswer::Ok, path.chopped(1));
    bench.txt(11)->setText(path.chopped(2));
    bench.focus(bench.txt(11));
    bench.txt(11)->end(false);
    QTest::keyClicks(bench.txt(11), path.right(2).first(1));
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\n"));
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann"));
    QTest::keyClicks(bench.txt(11), path.right(1));
    QCOMPARE(bench.signs(), "Short\t" + path.toUtf8() + "\r\n");
    bench.prompts.expectBox(u"SIGN_NOT_EXIST"_s, 48, quillon::BoxAnswer::Ok, path + u'd');
    QTest::keyClicks(bench.txt(11), u"d"_s);
    QCOMPARE(bench.signs(), "Short\t" + path.toUtf8() + "\r\n"); // the last one that was there stays
}

void TestSignatureTab::oddRuleSwitchingTellsOfAPathThatDoesNotExist()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\n");
    bench.open(Tab::SignaturesTab);
    bench.opt(0)->click();
    bench.prompts.expectBox(u"SIGN_NOT_EXIST"_s, 48, quillon::BoxAnswer::Ok, u"/no/page.htm"_s);
    bench.opt(1)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.signs(), QByteArray("Page\t/no/page.htm\r\n"));
}

void TestSignatureTab::aFolderIsNoSignatureFile()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    bench.prompts.expectBox(u"SIGN_NOT_EXIST"_s, 48, quillon::BoxAnswer::Ok, bench.tree.path());
    bench.txt(11)->setText(bench.tree.path());
    QCOMPARE(bench.signs(), QByteArray("Short\t\r\n"));
}

void TestSignatureTab::oddRuleAFileSignatureDeletesTheTextsOfNamesThatBeginWithItsOwn()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nShort and sweet\t\r\nA Short\t\r\n",
                        {{u"Short"_s, "1"}, {u"Short and sweet"_s, "2"}, {u"A Short"_s, "3"}});
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    bench.txt(11)->setText(someFile(bench));
    QVERIFY(!QFileInfo::exists(bench.signFile(u"Short"_s)));
    QVERIFY(!QFileInfo::exists(bench.signFile(u"Short and sweet"_s)));
    QCOMPARE(bench.signText(u"A Short"_s), QByteArray("3"));
    bench.click(1, 1);
    QCOMPARE(bench.utbSign()->toPlainText(), QString());
}

void TestSignatureTab::tabsInAPathBecomeBlanks()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    QApplication::clipboard()->setText(u"/no\tsuch\r\nfile"_s);
    bench.prompts.expectBox(u"SIGN_NOT_EXIST"_s, 48, quillon::BoxAnswer::Ok, u"/no such file"_s);
    bench.txt(11)->paste();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.txt(11)->text(), u"/no such file"_s);
    QApplication::clipboard()->setText(someFile(bench, u"one two"_s).replace(u' ', u'\t'));
    bench.txt(11)->selectAll();
    bench.txt(11)->paste();
    QCOMPARE(bench.signs(), "Short\t" + bench.tree.path(u"one two"_s).toUtf8() + "\r\n");
}

void TestSignatureTab::controlAWithTheListInFocusSelectsTheText()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Short"_s, "Ann"}});
    bench.open(Tab::SignaturesTab);
    bench.focus(bench.lsv(1));
    QTest::keyClick(bench.lsv(1), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(bench.utbSign()->textCursor().selectedText(), u"Ann"_s);
    QCOMPARE(bench.selectedRows(1), QStringList{u"Short"_s});
}

void TestSignatureTab::theButtonsOfAFileBearTheProgramsOwnDrawings()
{
    OptionsBench bench;
    const auto drawing = [](const QIcon &icon) { return icon.pixmap(QSize(32, 32)).toImage(); };
    QVERIFY(!drawing(themeIcon(u"open"_s)).isNull());
    QCOMPARE(drawing(bench.sign(5)->icon()), drawing(themeIcon(u"fileadd"_s)));
    QCOMPARE(drawing(bench.sign(6)->icon()), drawing(themeIcon(u"open"_s)));
    QVERIFY(drawing(bench.sign(5)->icon()) != drawing(bench.sign(6)->icon()));
}

QTEST_MAIN(TestSignatureTab)
#include "test_signaturetab.moc"
