#include "recordfixture.h"
#include "support/expectedprompts.h"

#include <QPersistentModelIndex>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestRecordRows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachKindShowsItsFields_data();
    void eachKindShowsItsFields();
    void theDefaultsRowIsShownInItsFont_data() { addKinds(true); }
    void theDefaultsRowIsShownInItsFont();
    void withoutADefaultNoRowIsBold_data() { addKinds(true); }
    void withoutADefaultNoRowIsBold();
    void defaultThatMatchesNoRecordMarksNone_data() { addKinds(true); }
    void defaultThatMatchesNoRecordMarksNone();
    void defaultLineIsComparedInLowerCaseAndTheFirstMatchIsBold_data() { addKindsOfWholeLines(); }
    void defaultLineIsComparedInLowerCaseAndTheFirstMatchIsBold();
    void defaultSenderIsComparedExactlyInBothFields();
    void defaultSenderMayHaveOnlyANameOrAnAddress();
    void defaultSignatureIsComparedExactly();
    void noPasswordIsInACell();

    void oddLinesGiveRowsWithEmptyCells_data() { addKinds(true); }
    void oddLinesGiveRowsWithEmptyCells();
    void oddLinesStayInTheFileWhenOthersChange_data() { addKinds(); }
    void oddLinesStayInTheFileWhenOthersChange();
    void senderLineOfTwoFieldsIsNotFoundByAnEdit();
    void senderLineOfFourFieldsIsNotFoundByAnEdit();
    void blankRowsOfAnAccountsFileAreDeletedByTheEmptyLine();
    void fileThatCannotBeReadGivesAnEmptyListAndStays_data() { addKinds(); }
    void fileThatCannotBeReadGivesAnEmptyListAndStays();
    void fileThatIsMissingGivesAnEmptyList_data() { addKinds(true); }
    void fileThatIsMissingGivesAnEmptyList();
    void unusualTextsStayAsTheyAre_data();
    void unusualTextsStayAsTheyAre();
    void linesOfAnOlderCodePageAreReadAndKept();

    void sortingIgnoresCaseAndKeepsEqualRowsInOrder();
    void sortingTakesSelectionAndMarkAlong_data() { addKinds(true); }
    void sortingTakesSelectionAndMarkAlong();
    void sortingChangesNoFile();
    void aSortedListStaysSortedWhenFilledAnewOrAddedTo();
};

namespace {

const QStringList oddLines = {
    u"word"_s, QString(), u"a\tb"_s, u"a\tb\tc\td"_s, u"1\t2\t3\t4\t5\t6\t7\t8\t9\t10\t11\t12\t13"_s,
    u"\t\t"_s, u" "_s};

} // namespace

void TestRecordRows::eachKindShowsItsFields_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QString>("kept");
    QTest::newRow("accounts") << u"accounts"_s << QStringList{u"smtp.ann.example"_s, u"587"_s, u"zann@one.example"_s}
                              << accountFacts().records[0];
    QTest::newRow("proxies") << u"proxies"_s << QStringList{u"zeta.example"_s, u"1080"_s, u"ann"_s}
                             << proxyFacts().records[0];
    QTest::newRow("senders") << u"senders"_s << QStringList{u"Zoe"_s, u"zoe@one.example"_s, u"first"_s}
                             << senderFacts().records[0];
    QTest::newRow("signatures") << u"signatures"_s << QStringList{u"Work"_s} << u"Work"_s;
}

void TestRecordRows::eachKindShowsItsFields()
{
    QFETCH(QStringList, cells);
    QFETCH(QString, kept);
    RecordFixture f(kindOfRow());
    f.load(f.facts.records);
    QCOMPARE(f.model().rowCount(), 3);
    QCOMPARE(f.cells(0), cells);
    QCOMPARE(f.model().index(0, 0).data(RecordModel::LineRole).toString(), kept);
    QCOMPARE(f.list->present(), 0);
}

void TestRecordRows::theDefaultsRowIsShownInItsFont()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    f.model().setDefaultFont(u"bold"_s);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < f.model().columnCount(); ++column) {
            const QModelIndex cell = f.model().index(row, column);
            QCOMPARE(cell.data(Qt::FontRole).toString(), row == 1 ? u"bold"_s : QString());
            QCOMPARE(cell.data(RecordModel::DefaultRole).toBool(), row == 1);
        }
    }
}

void TestRecordRows::withoutADefaultNoRowIsBold()
{
    RecordFixture f(kindOfRow());
    f.setDefault({});
    f.load(f.facts.records + QStringList{QString(), u"\t"_s}); // an empty line is no default either
    QCOMPARE(f.marked(), QList<int>());
}

void TestRecordRows::defaultThatMatchesNoRecordMarksNone()
{
    RecordFixture f(kindOfRow());
    f.setDefault(u"x"_s + f.facts.records[0]);
    f.load(f.facts.records);
    QCOMPARE(f.marked(), QList<int>());
    f.verifyDefault(u"x"_s + f.facts.records[0]);
}

void TestRecordRows::defaultLineIsComparedInLowerCaseAndTheFirstMatchIsBold()
{
    RecordFixture f(kindOfRow());
    const QString record = f.facts.records[0];
    const QString otherPassword = QString(record).replace(u"pass"_s, u"PASS"_s);
    f.setDefault(record);
    f.load({f.facts.records[1], otherPassword, record});
    QCOMPARE(f.marked(), QList<int>{1});
    f.setDefault(record.toUpper());
    f.load({f.facts.records[1], record, record});
    QCOMPARE(f.marked(), QList<int>{1});
}

void TestRecordRows::defaultSenderIsComparedExactlyInBothFields()
{
    RecordFixture f(senderFacts());
    f.setDefault(u"Ann\tann@x.example"_s);
    f.load({u"ann\tann@x.example\t"_s, u"Ann\tAnn@x.example\t"_s, u"Ann\tann@y.example\t"_s});
    QCOMPARE(f.marked(), QList<int>());
    f.load({u"ann\tann@x.example\t"_s, u"Ann\tann@x.example\tone"_s, u"Ann\tann@x.example\ttwo"_s});
    QCOMPARE(f.marked(), QList<int>{1}); // whatever the remark
}

void TestRecordRows::defaultSenderMayHaveOnlyANameOrAnAddress()
{
    RecordFixture f(senderFacts());
    const QStringList lines = {QString(), u"Ann"_s, u"\tann@x.example\t"_s};
    f.setDefault(u"\tann@x.example"_s);
    f.load(lines);
    QCOMPARE(f.marked(), QList<int>{2});
    f.setDefault(u"Ann\t"_s);
    f.load(lines);
    QCOMPARE(f.marked(), QList<int>{1});
}

void TestRecordRows::defaultSignatureIsComparedExactly()
{
    RecordFixture f(signatureFacts());
    f.setDefault(u"Work"_s);
    f.load({u"work\t"_s, u"Work 2\t"_s, u"Work\t/x.txt"_s});
    QCOMPARE(f.marked(), QList<int>{2});
}

void TestRecordRows::noPasswordIsInACell()
{
    for (const KindFacts &facts : {accountFacts(), proxyFacts()}) {
        RecordFixture f(facts);
        f.loadAll(0);
        for (int column = 0; column < f.model().columnCount(); ++column) {
            const QModelIndex cell = f.model().index(0, column);
            for (int role = 0; role < Qt::UserRole; ++role) {
                QVERIFY2(!cell.data(role).toString().contains("pass-of-ann"_L1), qPrintable(u"%1"_s.arg(role)));
            }
        }
        QCOMPARE(f.cells(0).size(), 3);
    }
}

void TestRecordRows::oddLinesGiveRowsWithEmptyCells()
{
    RecordFixture f(kindOfRow());
    f.load(oddLines);
    QCOMPARE(f.model().rowCount(), oddLines.size());
    const std::vector<int> &fields = f.facts.kind().columns;
    for (int row = 0; row < oddLines.size(); ++row) {
        const QStringList values = oddLines[row].split(u'\t');
        for (std::size_t column = 0; column < fields.size(); ++column) {
            QCOMPARE(f.cells(row).value(static_cast<int>(column)), values.value(fields[column]));
        }
    }
    QCOMPARE(f.file(), octetsOf(oddLines));
}

void TestRecordRows::oddLinesStayInTheFileWhenOthersChange()
{
    RecordFixture f(kindOfRow());
    f.load(QStringList{f.facts.records[1]} + oddLines + QStringList{f.facts.records[0]});
    f.list->select(0);
    f.list->change(f.facts.edited);
    QCOMPARE(f.file(), octetsOf(QStringList{f.facts.edited} + oddLines + QStringList{f.facts.records[0]}));
    f.list->add(f.facts.records[2]);
    f.list->select(0);
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], 36, quillon::BoxAnswer::Yes);
    f.list->deleteSelected();
    QCOMPARE(f.file(), octetsOf(oddLines + QStringList{f.facts.records[0], f.facts.records[2]}));
}

void TestRecordRows::senderLineOfTwoFieldsIsNotFoundByAnEdit()
{
    // The old line is put together from the row, which has a third field that the file has not.
    RecordFixture f(senderFacts());
    f.load({u"Ann\tann@x.example"_s});
    const Rewrites rewrites(f.path());
    f.list->change(f.facts.edited);
    QCOMPARE(f.file(), octetsOf({u"Ann\tann@x.example"_s}));
    QCOMPARE(rewrites.count(), 0);
    QCOMPARE(f.model().lines(), QStringList{f.facts.edited});
}

void TestRecordRows::senderLineOfFourFieldsIsNotFoundByAnEdit()
{
    RecordFixture f(senderFacts());
    f.load({u"Ann\tann@x.example\tr\tmore"_s});
    f.list->change(f.facts.edited);
    QCOMPARE(f.file(), octetsOf({u"Ann\tann@x.example\tr\tmore"_s}));
    QCOMPARE(f.model().lines(), QStringList{f.facts.edited});
}

void TestRecordRows::blankRowsOfAnAccountsFileAreDeletedByTheEmptyLine()
{
    RecordFixture f(accountFacts());
    f.load({QString(), f.facts.records[0], QString(), u"\t"_s});
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], 36, quillon::BoxAnswer::Yes);
    f.list->deleteSelected();
    QCOMPARE(f.file(), octetsOf({f.facts.records[0], u"\t"_s}));
    QCOMPARE(f.model().lines(), (QStringList{f.facts.records[0], QString(), u"\t"_s}));
}

void TestRecordRows::fileThatCannotBeReadGivesAnEmptyListAndStays()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    f.select({1});
    QVERIFY(QFile::remove(f.path()));
    QVERIFY(QDir().mkpath(f.path() + u"/kept"_s));
    // No command gets through, and none shows what is not so.
    QCOMPARE(f.list->add(f.facts.records[0]), -1);
    QVERIFY(!f.list->change(f.facts.edited));
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], 36, quillon::BoxAnswer::Yes);
    f.list->deleteSelected();
    prompts.expectBox(f.facts.keys[4], 36, quillon::BoxAnswer::Yes);
    f.list->clear();
    QCOMPARE(f.model().lines(), f.facts.records);
    QCOMPARE(f.marked(), QList<int>{1});
    QVERIFY(QFileInfo(f.path() + u"/kept"_s).isDir());
    f.list = std::make_unique<RecordList>(f.facts.kind(), QStringList(), f.globals());
    f.list->load();
    QVERIFY(f.list->isEmpty());
    QCOMPARE(f.list->add(f.facts.records[0]), -1);
    QVERIFY(f.list->isEmpty());
}

void TestRecordRows::fileThatIsMissingGivesAnEmptyList()
{
    RecordFixture f(kindOfRow());
    QVERIFY(QFile::remove(f.path()));
    f.list = std::make_unique<RecordList>(f.facts.kind(), QStringList(), f.globals());
    f.list->load();
    QVERIFY(f.list->isEmpty());
    QVERIFY(!QFileInfo::exists(f.path()));
    f.list->add(f.facts.records[0]);
    QVERIFY(f.file().startsWith(f.facts.records[0].section(u'\t', 0, 0).toUtf8()));
}

void TestRecordRows::unusualTextsStayAsTheyAre_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("300 letters") << QString(300, u'x');
    QTest::newRow("Greek") << u"Ἑλένη Παπαδοπούλου"_s;
    QTest::newRow("Chinese") << u"王小明"_s;
    QTest::newRow("beyond the first plane") << u"𐌀𝔸😀"_s;
    QTest::newRow("address in another script") << u"почта@пример.рф"_s;
    QTest::newRow("address with encoded labels") << u"info@xn--e1afmkfd.xn--p1ai"_s;
    QTest::newRow("quotes and signs") << u"a\"b'c;d=e[f]\\n%1/#"_s;
    QTest::newRow("right to left") << u"שלום \u202bעולם\u202c"_s;
}

void TestRecordRows::unusualTextsStayAsTheyAre()
{
    QFETCH(QString, text);
    for (const KindFacts &facts : {accountFacts(), proxyFacts(), senderFacts()}) {
        RecordFixture f(facts);
        const QString record = facts.kind == senderKind ? QStringList(QList<QString>(3, text)).join(u'\t')
                                                        : QStringList(QList<QString>(11, text)).join(u'\t');
        f.load({facts.records[0]});
        f.list->add(record);
        QCOMPARE(f.file(), octetsOf({facts.records[0], record}));
        f.list->load();
        QCOMPARE(f.cells(1), QStringList(QList<QString>(3, text)));
        f.list->select(1);
        f.list->makeDefault();
        f.verifyDefault(record);
        f.list->change(facts.edited);
        f.list->change(record);
        QCOMPARE(f.file(), octetsOf({facts.records[0], record}));
        f.verifyDefault(record);
        LoadSettings(f.globals());
        f.list->load();
        QCOMPARE(f.marked(), QList<int>{1});
    }
}

void TestRecordRows::linesOfAnOlderCodePageAreReadAndKept()
{
    RecordFixture f(senderFacts());
    f.load({});
    writeFile(f.path(), "M\xfcller\tmueller@x.example\t\r\nWei\xdf\tweiss@x.example\tcaf\xe9\nZoe\tzoe@x.example\t");
    f.list->load();
    QCOMPARE(f.column(0), (QStringList{u"Müller"_s, u"Weiß"_s, u"Zoe"_s}));
    f.list->select(1);
    f.list->change(u"Weiß\tweiss@y.example\t"_s);
    QCOMPARE(
        f.file(),
        QByteArray("M\xfcller\tmueller@x.example\t\r\nWei\xc3\x9f\tweiss@y.example\t\r\nZoe\tzoe@x.example\t\r\n"));
}

void TestRecordRows::sortingIgnoresCaseAndKeepsEqualRowsInOrder()
{
    RecordFixture f(senderFacts());
    f.load({u"bea\t2@x.example\t"_s, u"Ann\t1@x.example\t"_s, u"ann\t0@x.example\t"_s, u"Bea\t3@x.example\t"_s});
    f.model().sort(0, Qt::AscendingOrder);
    QCOMPARE(f.column(1), (QStringList{u"1@x.example"_s, u"0@x.example"_s, u"2@x.example"_s, u"3@x.example"_s}));
    f.model().sort(0, Qt::DescendingOrder);
    QCOMPARE(f.column(1), (QStringList{u"2@x.example"_s, u"3@x.example"_s, u"1@x.example"_s, u"0@x.example"_s}));
    f.model().sort(1, Qt::AscendingOrder);
    QCOMPARE(f.column(1), (QStringList{u"0@x.example"_s, u"1@x.example"_s, u"2@x.example"_s, u"3@x.example"_s}));
}

void TestRecordRows::sortingTakesSelectionAndMarkAlong()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    f.select({1, 0});
    const QString present = f.list->presentLine();
    f.model().sort(0, Qt::AscendingOrder);
    QCOMPARE(f.list->presentLine(), present);
    QCOMPARE(f.list->present(), 2);
    QList<int> selected = f.selected();
    std::sort(selected.begin(), selected.end());
    const int other = f.facts.kind == signatureKind ? 1 : 0;
    QCOMPARE(selected, (QList<int>{other, 2}));
    QCOMPARE(f.marked(), QList<int>{2});
}

void TestRecordRows::sortingChangesNoFile()
{
    RecordFixture f(accountFacts());
    f.loadAll(0);
    const Rewrites rewrites(f.path());
    f.model().sort(1, Qt::DescendingOrder);
    QCOMPARE(rewrites.count(), 0);
    QCOMPARE(f.file(), octetsOf(f.facts.records));
}

void TestRecordRows::aSortedListStaysSortedWhenFilledAnewOrAddedTo()
{
    RecordFixture f(senderFacts());
    f.loadAll(0);
    f.model().sort(0, Qt::AscendingOrder);
    f.list->load();
    QCOMPARE(f.column(0), (QStringList{u"Ann"_s, u"Mia"_s, u"Zoe"_s}));
    QCOMPARE(f.marked(), QList<int>{2});
    QCOMPARE(f.list->add(u"Ben\tben@x.example\t"_s), 1);
    QCOMPARE(f.column(0), (QStringList{u"Ann"_s, u"Ben"_s, u"Mia"_s, u"Zoe"_s}));
    QCOMPARE(f.marked(), QList<int>{3});
    QCOMPARE(f.file(), octetsOf(f.facts.records + QStringList{u"Ben\tben@x.example\t"_s}));
}

QTEST_GUILESS_MAIN(TestRecordRows)
#include "test_recordrows.moc"
