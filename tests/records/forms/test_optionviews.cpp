#include "listbench.h"
#include "recorddialogfixture.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

/// How the lists of the options look, and where the focus goes on its tabs and in their dialogs.
class TestOptionViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void columnsStayInTheirOrderAndPortsAreNarrow_data() { addTabs(); }
    void columnsStayInTheirOrderAndPortsAreNarrow();
    void aRowThatIsChosenByACommandIsSeen();
    void headingsAreTheFilesIfItHasAsMany();
    void theEmptyTextBoxSaysWhyItIsClosed();
    void aDialogBeginsInItsFirstBoxEachTime_data();
    void aDialogBeginsInItsFirstBoxEachTime();
    void shiftTabInTheEditorGoesToNoOtherName();
    void withoutASignatureRenameLeavesTheFocus();
    void blanksAreNoTextAndNoPathForTheNextSignature();

private:
    static void translate(OptionsBench &bench, const QByteArray &lines)
    {
        writeFile(bench.tree.path(u"tips.dll"_s), "[frmPubOptions]\r\n" + lines);
        setLanguageFolder(bench.tree.path());
    }
    static QString headings(OptionsBench &bench, int list)
    {
        const QAbstractItemModel *model = bench.lsv(list)->model();
        QStringList texts;
        for (int column = 0; column < model->columnCount(); ++column) {
            texts.append(model->headerData(column, Qt::Horizontal).toString());
        }
        return texts.join(u'|');
    }
};

void TestOptionViews::columnsStayInTheirOrderAndPortsAreNarrow()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    const QHeaderView *header = bench.view()->header();
    QVERIFY(!header->sectionsMovable());
    QVERIFY(header->stretchLastSection());
    // As wide as what they hold: nothing is cut, and a port takes little.
    QCoreApplication::processEvents();
    const QAbstractItemModel *model = bench.view()->model();
    for (int column = 0; column + 1 < model->columnCount(); ++column) {
        int widest = header->sectionSizeHint(column);
        for (int row = 0; row < model->rowCount(); ++row) {
            widest = qMax(widest, bench.view()->sizeHintForIndex(model->index(row, column)).width());
        }
        QCOMPARE(bench.view()->columnWidth(column), widest + bench.view()->fontMetrics().averageCharWidth());
    }
    if (bench.facts.list != 0) {
        QVERIFY(bench.view()->columnWidth(1) < bench.view()->columnWidth(0));
    }
}

void TestOptionViews::aRowThatIsChosenByACommandIsSeen()
{
    ListBench bench(u"senders"_s);
    QStringList lines;
    for (int i = 0; i < 200; ++i) {
        lines.append(u"Name %1\tann%1@x.example\t"_s.arg(i));
    }
    bench.start(lines);
    const auto isSeen = [&bench](int row) {
        const QRect place = bench.view()->visualRect(bench.view()->model()->index(row, 0));
        return place.isValid() && bench.view()->viewport()->rect().contains(place.center());
    };
    bench.clickRow(1);
    bench.clickRow(0, Qt::ControlModifier);
    bench.view()->scrollToBottom();
    QVERIFY(!isSeen(0) && isSeen(199));
    bench.pressWhileAsked(bench.facts.remove, bench.facts.kind.keys[2], quillon::BoxAnswer::Yes);
    QCoreApplication::processEvents();
    QVERIFY(isSeen(0));
}

void TestOptionViews::headingsAreTheFilesIfItHasAsMany()
{
    OptionsBench bench;
    translate(bench, "lsv(0).columns=Name|Adresse\r\nlsv(1).columns=\r\nlsv(2).columns=|Port|Wer\r\n"
                     "lsv(3).columns=Rechner|Tor|Adresse\r\n");
    QCOMPARE(headings(bench, 0), u"Display Name|Email Address|Remark"_s);
    QCOMPARE(headings(bench, 1), u"Signature"_s);
    QCOMPARE(headings(bench, 2), u"Address|Port|User"_s);
    QCOMPARE(headings(bench, 3), u"Rechner|Tor|Adresse"_s);
}

void TestOptionViews::theEmptyTextBoxSaysWhyItIsClosed()
{
    OptionsBench bench;
    translate(bench, "utbSign.none=nothing\r\nutbSign.unreadable=closed\r\n");
    bench.open(Tab::SignaturesTab);
    QCOMPARE(bench.utbSign()->placeholderText(), u"nothing"_s);
    OptionsBench other;
    translate(other, "utbSign.none=nothing\r\nutbSign.unreadable=closed\r\n");
    other.putSignatures("A\t\r\nB\t\r\n", {{u"A"_s, QByteArray("x\0y", 3)}, {u"B"_s, "text"}});
    other.open(Tab::SignaturesTab);
    QCOMPARE(other.utbSign()->placeholderText(), u"closed"_s);
    other.click(1, 1);
    QCOMPARE(other.utbSign()->placeholderText(), QString());
}

void TestOptionViews::aDialogBeginsInItsFirstBoxEachTime_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("other");
    QTest::newRow("account") << u"frmPubSMTP"_s << u"txt(0)"_s << u"txt(5)"_s;
    QTest::newRow("proxy") << u"frmPubProxy"_s << u"txt(0)"_s << u"txt(1)"_s;
    QTest::newRow("sender") << u"frmPubSender"_s << u"txtDisp"_s << u"txtRemark"_s;
}

void TestOptionViews::aDialogBeginsInItsFirstBoxEachTime()
{
    QFETCH(const QString, form);
    QFETCH(const QString, first);
    QFETCH(const QString, other);
    RecordDialogFixture d(form);
    for (const RecordDialog::Mode mode : {RecordDialog::Mode::Add, RecordDialog::Mode::Edit}) {
        d.box(other)->setFocus();
        QCOMPARE(d.focused(), other);
        d.begin(mode);
        QCOMPARE(d.focused(), first);
    }
}

void TestOptionViews::shiftTabInTheEditorGoesToNoOtherName()
{
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        OptionsBench bench;
        bench.putSignatures("A\t\r\nB\t\r\nC\t\r\n");
        bench.open(Tab::SignaturesTab);
        bench.click(1, 1);
        bench.sign(1)->click();
        QVERIFY(bench.nameEditor());
        bench.nameEditor()->setText(u"New"_s);
        QTest::keyClick(bench.nameEditor(), key);
        OptionsBench::settle();
        QVERIFY(!bench.nameEditor());
        QCOMPARE(bench.rows(1), (QStringList{u"A"_s, u"New"_s, u"C"_s}));
    }
}

void TestOptionViews::withoutASignatureRenameLeavesTheFocus()
{
    OptionsBench bench;
    bench.open(Tab::SignaturesTab);
    bench.focus(bench.sbt(2));
    bench.sign(1)->click();
    QCOMPARE(bench.focused(), u"sbt(2)"_s);
    QVERIFY(!bench.nameEditor());
}

void TestOptionViews::blanksAreNoTextAndNoPathForTheNextSignature()
{
    OptionsBench bench;
    bench.putSignatures("A\t\r\n", {{u"A"_s, "text"}});
    bench.open(Tab::SignaturesTab);
    for (const QString &blanks : {u" "_s, u" \n\t"_s}) {
        bench.utbSign()->setPlainText(blanks);
        bench.prompts.expectBox(u"NEED_TEXT"_s, quillon::WarningBox);
        bench.sign(0)->click();
        QCOMPARE(bench.focused(), u"utbSign"_s);
    }
    bench.utbSign()->clear();
    bench.opt(1)->click();
    bench.prompts.expectBox(u"SIGN_NOT_EXIST"_s, quillon::WarningBox);
    bench.txt(11)->setText(u"  "_s);
    bench.focus(bench.sbt(2));
    bench.prompts.expectBox(u"NEED_TEXT"_s, quillon::WarningBox);
    bench.sign(0)->click();
    QCOMPARE(bench.focused(), u"txt(11)"_s);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.rows(1), QStringList{u"A"_s});
}

QTEST_MAIN(TestOptionViews)
#include "test_optionviews.moc"
