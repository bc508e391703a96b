#include "optionsbench.h"
#include "support/testopener.h"

#include <QMenu>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

class TestSignatureFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void browseOffersThreeKindsOfFilesAndTakesOne();
    void aBrowseThatIsCancelledChangesNothing();
    void moreThanOneFileIsNotTaken();
    void openOpensAFileThatExists();
    void openOpensNothingElse();
    void macroOpensTheMenuBelowItsButton();
    void macroGoesIntoATextOnly();
    void aMacroThatIsInsertedIsSaved();
    void aTextThatCannotBeReadIsNotWrittenOver_data();
    void aTextThatCannotBeReadIsNotWrittenOver();
    void aHugeTextIsNotReadAtAll();
    void aNameThatNoFileCanHaveStandsWithoutAText_data();
    void aNameThatNoFileCanHaveStandsWithoutAText();
    void anUnreadableTextDoesNotHoldUpTheNext();

private:
    static void verifyNothingCanBeTyped(OptionsBench &bench)
    {
        QCOMPARE(bench.utbSign()->toPlainText(), QString());
        QVERIFY(bench.utbSign()->isReadOnly() && bench.utbSign()->isEnabled());
        QVERIFY(!bench.utbSign()->placeholderText().isEmpty());
        const QByteArray list = bench.signs();
        QTest::keyClicks(bench.utbSign(), u"lost"_s);
        QCOMPARE(bench.utbSign()->toPlainText(), QString());
        QCOMPARE(bench.signs(), list);
    }
};

void TestSignatureFiles::browseOffersThreeKindsOfFilesAndTakesOne()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    const QString path = bench.tree.path(u"mine.htm"_s);
    writeFile(path, "me");
    QVERIFY(!LookupText(u"CSF"_s).isEmpty());
    bench.prompts.expectFiles({path}, LookupText(u"CSF"_s));
    bench.sign(5)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    const quillon::FileRequest request = bench.prompts.fileRequests().constFirst();
    QVERIFY(!request.Many);
    QStringList filters;
    for (const quillon::FileFilter &filter : request.Filters) {
        filters.append(filter.Name + u'|' + filter.Pattern);
    }
    QCOMPARE(filters, (QStringList{u"Text Files (*.txt)|*.txt"_s, u"HTML Files (*.htm; *.html)|*.htm; *.html"_s,
                                   u"All Files (*.*)|*.*"_s}));
    QCOMPARE(bench.txt(11)->text(), path);
    QCOMPARE(bench.signs(), "Short\t" + path.toUtf8() + "\r\n");
}

void TestSignatureFiles::aBrowseThatIsCancelledChangesNothing()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\n");
    bench.open(Tab::SignaturesTab);
    bench.prompts.expectFiles({});
    bench.sign(5)->click();
    QCOMPARE(bench.txt(11)->text(), u"/no/page.htm"_s);
}

void TestSignatureFiles::moreThanOneFileIsNotTaken()
{
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\n");
    bench.open(Tab::SignaturesTab);
    const QString path = bench.tree.path(u"mine.htm"_s);
    writeFile(path, "me");
    bench.prompts.expectFiles({path, path});
    bench.sign(5)->click();
    QCOMPARE(bench.txt(11)->text(), u"/no/page.htm"_s);
}

void TestSignatureFiles::openOpensAFileThatExists()
{
    TestOpener opener;
    OptionsBench bench;
    const QString path = bench.tree.path(u"mine grüße.htm"_s);
    writeFile(path, "me");
    bench.putSignatures("Page\t" + path.toUtf8() + "\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(6)->click();
    QCOMPARE(opener.opened, QStringList{path});
}

void TestSignatureFiles::openOpensNothingElse()
{
    TestOpener opener;
    OptionsBench bench;
    bench.putSignatures("Page\t/no/page.htm\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(6)->click();
    bench.txt(11)->clear();
    bench.sign(6)->click();
    QCOMPARE(opener.opened, QStringList());
}

void TestSignatureFiles::macroOpensTheMenuBelowItsButton()
{
    OptionsBench bench;
    QAction item(u"{Date}"_s);
    QAction another(u"{Time}"_s);
    bench.macroItems = {&item, &another};
    bench.putSignatures("Short\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(7)->click();
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QCOMPARE(menu->actions(), bench.macroItems);
    QCOMPARE(menu->pos(), bench.sign(7)->mapToGlobal(QPoint(0, bench.sign(7)->height())));
    menu->close();
    bench.macroItems = {&another}; // the items are asked for at each time
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_M, Qt::AltModifier);
    menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QCOMPARE(menu->actions(), bench.macroItems);
    menu->close();
}

void TestSignatureFiles::macroGoesIntoATextOnly()
{
    OptionsBench bench;
    bench.open(Tab::SignaturesTab);
    bench.opt(1)->click();
    bench.prompts.expectBox(u"NEED_SIGN"_s, 64);
    bench.sign(7)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    bench.opt(0)->click();
    bench.sign(0)->click();
    bench.opt(1)->click();
    bench.prompts.expectBox(u"INSERT_MACRO"_s, 64);
    bench.sign(7)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QVERIFY(!QApplication::activePopupWidget());
}

void TestSignatureFiles::aMacroThatIsInsertedIsSaved()
{
    OptionsBench bench;
    QAction item(u"{Date}"_s);
    connect(&item, &QAction::triggered, &item, [&bench] { bench.utbSign()->insertPlainText(u"{Date}"_s); });
    bench.macroItems = {&item};
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann, "}});
    bench.open(Tab::SignaturesTab);
    bench.utbSign()->moveCursor(QTextCursor::End);
    bench.sign(7)->click();
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("Ann, {Date}"));
}

void TestSignatureFiles::aTextThatCannotBeReadIsNotWrittenOver_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("a folder") << static_cast<int>(S_IFDIR);
    QTest::newRow("a pipe") << static_cast<int>(S_IFIFO);
}

void TestSignatureFiles::aTextThatCannotBeReadIsNotWrittenOver()
{
    QFETCH(const int, kind);
    OptionsBench bench;
    bench.putSignatures("Short\t\r\nLong\t\r\n", {{u"Long"_s, "Ann Lee"}});
    const QByteArray path = QFile::encodeName(bench.signFile(u"Short"_s));
    QCOMPARE(kind == S_IFDIR ? ::mkdir(path.constData(), S_IRWXU) : ::mkfifo(path.constData(), S_IRUSR | S_IWUSR), 0);
    bench.open(Tab::SignaturesTab); // and does not wait for anybody to write
    verifyNothingCanBeTyped(bench);
    struct stat status {};
    QCOMPARE(::lstat(path.constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & S_IFMT), kind);
    bench.click(1, 1); // the others can be edited
    QCOMPARE(bench.utbSign()->toPlainText(), u"Ann Lee"_s);
    QVERIFY(!bench.utbSign()->isReadOnly());
    QCOMPARE(bench.utbSign()->placeholderText(), QString());
}

void TestSignatureFiles::aHugeTextIsNotReadAtAll()
{
    OptionsBench bench;
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "x"}});
    constexpr qint64 gigabyte = 1 << 30;
    QVERIFY(QFile::resize(bench.signFile(u"Short"_s), gigabyte));
    bench.open(Tab::SignaturesTab);
    verifyNothingCanBeTyped(bench);
    QCOMPARE(QFileInfo(bench.signFile(u"Short"_s)).size(), gigabyte);
}

void TestSignatureFiles::aNameThatNoFileCanHaveStandsWithoutAText_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a slash") << u"a/b"_s;
    QTest::newRow("out of the folder") << u"/../../options"_s;
    QTest::newRow("300 letters") << QString(300, u'n');
}

void TestSignatureFiles::aNameThatNoFileCanHaveStandsWithoutAText()
{
    QFETCH(const QString, name);
    OptionsBench bench;
    bench.putSignatures(name.toUtf8() + "\t\r\n");
    const QByteArray options = bench.options();
    bench.open(Tab::SignaturesTab);
    QCOMPARE(bench.rows(1), QStringList{name});
    verifyNothingCanBeTyped(bench);
    QCOMPARE(bench.signs(), name.toUtf8() + "\t\r\n");
    QCOMPARE(bench.options(), options);
    const QDir folder(bench.globals().paths.signs);
    QCOMPARE(folder.entryList(QDir::Files | QDir::Hidden), QStringList{u"signs.dll"_s});
    // Its file, however, is no matter of its name.
    const QString path = bench.tree.path(u"mine.htm"_s);
    writeFile(path, "me");
    bench.opt(1)->click();
    bench.txt(11)->setText(path);
    QCOMPARE(bench.signs(), name.toUtf8() + '\t' + path.toUtf8() + "\r\n");
}

void TestSignatureFiles::anUnreadableTextDoesNotHoldUpTheNext()
{
    OptionsBench bench;
    bench.putSignatures("a/b\t\r\n");
    bench.open(Tab::SignaturesTab);
    bench.sign(0)->click(); // nothing could be typed there, so nothing is asked for
    QCOMPARE(bench.rows(1), (QStringList{u"a/b"_s, u"Signature #1"_s}));
    QVERIFY(!bench.utbSign()->isReadOnly());
}

QTEST_MAIN(TestSignatureFiles)
#include "test_signaturefiles.moc"
