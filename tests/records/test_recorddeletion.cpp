#include "recordfixture.h"
#include "support/expectedprompts.h"

#include <QElapsedTimer>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

class TestRecordDeletion : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void deleteThatIsNotConfirmedChangesNothing_data() { addKinds(true); }
    void deleteThatIsNotConfirmedChangesNothing();
    void deleteOfAnEmptyListAsksNothing_data() { addKinds(); }
    void deleteOfAnEmptyListAsksNothing();
    void deleteOfAnEmptyListOfSignaturesStillAsks();
    void deleteTakesTheSelectedRowsAndLines_data() { addKinds(); }
    void deleteTakesTheSelectedRowsAndLines();
    void deleteSelectsTheFirstRow_data() { addKinds(); }
    void deleteSelectsTheFirstRow();
    void deletedDefaultPassesToTheFirstRow_data() { addKinds(true); }
    void deletedDefaultPassesToTheFirstRow();
    void deletedDefaultPassesToTheFirstRowOfASortedList_data() { addKinds(); }
    void deletedDefaultPassesToTheFirstRowOfASortedList();
    void deleteOfAnotherRowLeavesTheSettingsAlone_data() { addKinds(true); }
    void deleteOfAnotherRowLeavesTheSettingsAlone();
    void theLastDeletedRowEmptiesTheDefault_data() { addKinds(true); }
    void theLastDeletedRowEmptiesTheDefault();
    void deleteWithNothingSelectedStillGivesTheListADefault_data() { addKinds(); }
    void deleteWithNothingSelectedStillGivesTheListADefault();
    void boldnessTellsWhetherADefaultIsLeft_data() { addKinds(); }
    void boldnessTellsWhetherADefaultIsLeft();
    void theDefaultsNameTellsWhetherASignatureIsLeft();
    void accountThatBecomesDefaultByADeletionFillsTheMacros();

    void sendersOfOneAddressLeaveTheFileTogether();
    void senderIsDeletedByItsAddressInItsCase();
    void equalLinesLeaveTheFileTogether_data() { addKindsOfWholeLines(); }
    void equalLinesLeaveTheFileTogether();

    void clearOfAnEmptyListTellsSo_data() { addKinds(); }
    void clearOfAnEmptyListTellsSo();
    void clearThatIsNotConfirmedChangesNothing_data() { addKinds(true); }
    void clearThatIsNotConfirmedChangesNothing();
    void clearEmptiesListFileAndDefault_data() { addKinds(true); }
    void clearEmptiesListFileAndDefault();

    void thousandsAreDeletedWithOneRewrite_data();
    void thousandsAreDeletedWithOneRewrite();
};

namespace {

void deleteRows(RecordFixture &f, const QList<int> &rows)
{
    f.select(rows);
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], 36, BoxAnswer::Yes);
    f.list->deleteSelected();
}

} // namespace

void TestRecordDeletion::deleteThatIsNotConfirmedChangesNothing()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    const QByteArray options = f.options();
    f.select({0, 1, 2});
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], 36, BoxAnswer::No);
    f.list->deleteSelected();
    QCOMPARE(f.model().rowCount(), 3);
    QCOMPARE(f.file(), octetsOf(f.facts.records));
    QCOMPARE(f.options(), options);
    QCOMPARE(f.selected().size(), 3);
}

void TestRecordDeletion::deleteOfAnEmptyListAsksNothing()
{
    RecordFixture f(kindOfRow());
    f.load({});
    f.setDefault(f.facts.records[0]);
    const ExpectedPrompts none;
    f.list->deleteSelected();
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordDeletion::deleteOfAnEmptyListOfSignaturesStillAsks()
{
    RecordFixture f(signatureFacts());
    f.load({});
    f.setDefault(f.facts.records[0]);
    const QSignalSpy emptied(f.list.get(), &RecordList::emptied);
    deleteRows(f, {});
    f.verifyDefault({});
    QCOMPARE(emptied.size(), 1);
}

void TestRecordDeletion::deleteTakesTheSelectedRowsAndLines()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    deleteRows(f, {2, 0});
    QCOMPARE(f.model().lines(), QStringList{f.facts.records[1]});
    QCOMPARE(f.file(), octetsOf({f.facts.records[1]}));
    QCOMPARE(f.marked(), QList<int>{0});
}

void TestRecordDeletion::deleteSelectsTheFirstRow()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    deleteRows(f, {2});
    QCOMPARE(f.selected(), QList<int>{0});
    QCOMPARE(f.list->present(), 0);
}

void TestRecordDeletion::deletedDefaultPassesToTheFirstRow()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    deleteRows(f, {1});
    QCOMPARE(f.marked(), QList<int>{0});
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordDeletion::deletedDefaultPassesToTheFirstRowOfASortedList()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    f.model().sort(0, Qt::AscendingOrder);
    QCOMPARE(f.model().lines(), (QStringList{f.facts.records[1], f.facts.records[2], f.facts.records[0]}));
    deleteRows(f, {2});
    QCOMPARE(f.marked(), QList<int>{0});
    f.verifyDefault(f.facts.records[1]);
}

void TestRecordDeletion::deleteOfAnotherRowLeavesTheSettingsAlone()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    const QByteArray options = f.options();
    const Rewrites rewrites(f.optionsPath());
    deleteRows(f, {0});
    QCOMPARE(f.model().rowCount(), 2);
    QCOMPARE(f.marked(), QList<int>{0});
    QCOMPARE(f.model().line(0), f.facts.kind().rowOf(f.facts.records[1]));
    QCOMPARE(f.options(), options);
    QCOMPARE(rewrites.count(), 0);
    f.verifyDefault(f.facts.records[1]);
}

void TestRecordDeletion::theLastDeletedRowEmptiesTheDefault()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    const QSignalSpy emptied(f.list.get(), &RecordList::emptied);
    deleteRows(f, {0, 1, 2});
    QCOMPARE(f.model().rowCount(), 0);
    QVERIFY(QFileInfo(f.path()).isFile());
    QCOMPARE(f.file(), QByteArray(""));
    f.verifyDefault({});
    QCOMPARE(emptied.size(), 1);
}

void TestRecordDeletion::deleteWithNothingSelectedStillGivesTheListADefault()
{
    RecordFixture f(kindOfRow());
    f.load(f.facts.records);
    QCOMPARE(f.marked(), QList<int>());
    deleteRows(f, {});
    QCOMPARE(f.file(), octetsOf(f.facts.records));
    QCOMPARE(f.marked(), QList<int>{0});
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordDeletion::boldnessTellsWhetherADefaultIsLeft()
{
    // A default that is in no row leaves none of them bold, so a deletion gives the list another one.
    RecordFixture f(kindOfRow());
    f.setDefault(f.facts.edited);
    f.load(f.facts.records);
    deleteRows(f, {2});
    QCOMPARE(f.marked(), QList<int>{0});
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordDeletion::theDefaultsNameTellsWhetherASignatureIsLeft()
{
    RecordFixture f(signatureFacts());
    f.load(f.facts.records);
    f.setDefault(f.facts.records[1]); // no row was marked when the list was filled
    deleteRows(f, {0});
    QCOMPARE(f.marked(), QList<int>());
    f.verifyDefault(f.facts.records[1]);
}

void TestRecordDeletion::accountThatBecomesDefaultByADeletionFillsTheMacros()
{
    RecordFixture f(accountFacts());
    f.loadAll(0);
    writeFile(f.globals().paths.macrosFile, "{My Email Address}\t\t/MIS\r\n");
    deleteRows(f, {0});
    const QByteArray macros = contentOf(f.globals().paths.macrosFile);
    QVERIFY2(macros.contains("{My Email Address}\tbob@two.example\t"), macros.constData());
}

void TestRecordDeletion::sendersOfOneAddressLeaveTheFileTogether()
{
    RecordFixture f(senderFacts());
    const QStringList lines = {u"Ann\tann@x.example\t"_s, u"Bob\tbob@x.example\t"_s, u"Anna\tann@x.example\told"_s};
    f.load(lines);
    deleteRows(f, {0});
    QCOMPARE(f.file(), octetsOf({lines[1]}));
    QCOMPARE(f.model().lines(), (QStringList{lines[1], lines[2]})); // what is shown follows at the next load
    f.list->load();
    QCOMPARE(f.model().lines(), QStringList{lines[1]});
}

void TestRecordDeletion::senderIsDeletedByItsAddressInItsCase()
{
    RecordFixture f(senderFacts());
    const QStringList lines = {u"Ann\tann@x.example\t"_s, u"Ann\tANN@x.example\tann@x.example"_s};
    f.load(lines);
    deleteRows(f, {0});
    QCOMPARE(f.file(), octetsOf({lines[1]}));
}

void TestRecordDeletion::equalLinesLeaveTheFileTogether()
{
    RecordFixture f(kindOfRow());
    const QString twice = f.facts.records[0];
    const QString longer = twice + u"\tmore"_s;
    f.load({twice, longer, twice, twice.toUpper()});
    deleteRows(f, {2});
    QCOMPARE(f.file(), octetsOf({longer, twice.toUpper()}));
    QCOMPARE(f.model().lines(), (QStringList{twice, longer, twice.toUpper()}));
}

void TestRecordDeletion::clearOfAnEmptyListTellsSo()
{
    RecordFixture f(kindOfRow());
    f.load({});
    f.setDefault(f.facts.records[0]);
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[3], 64);
    f.list->clear();
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordDeletion::clearThatIsNotConfirmedChangesNothing()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    const QByteArray options = f.options();
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[4], 36, BoxAnswer::No);
    f.list->clear();
    QCOMPARE(f.model().rowCount(), 3);
    QCOMPARE(f.file(), octetsOf(f.facts.records));
    QCOMPARE(f.options(), options);
}

void TestRecordDeletion::clearEmptiesListFileAndDefault()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    f.select({0}); // clearing does not depend on what is selected
    const QSignalSpy emptied(f.list.get(), &RecordList::emptied);
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[4], 36, BoxAnswer::Yes);
    f.list->clear();
    QCOMPARE(f.model().rowCount(), 0);
    QVERIFY(QFileInfo(f.path()).isFile());
    QCOMPARE(f.file(), QByteArray(""));
    QCOMPARE(emptied.size(), 1);
    QCOMPARE(QFileInfo(f.path()).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    f.verifyDefault({});
}

void TestRecordDeletion::thousandsAreDeletedWithOneRewrite_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("step");
    for (const QString &kind : {u"accounts"_s, u"senders"_s, u"signatures"_s}) {
        QTest::addRow("all %s", qPrintable(kind)) << kind << 1;
        QTest::addRow("every second of %s", qPrintable(kind)) << kind << 2;
    }
}

void TestRecordDeletion::thousandsAreDeletedWithOneRewrite()
{
    QFETCH(int, step);
    RecordFixture f(kindOfRow());
    QStringList lines;
    QItemSelection rows;
    for (int i = 0; i < 5000; ++i) {
        lines.append(f.facts.kind == accountKind
                         ? u"h%1\t25\tN\tY\tu\tp\tn\tann%1@x.example\t\t\t/SAEND"_s.arg(i)
                         : u"Ann %1\tann%1@x.example"_s.arg(i) + (f.facts.kind == senderKind ? u"\t"_s : QString()));
    }
    QElapsedTimer clock;
    clock.start();
    f.load(lines);
    qInfo("5,000 %s: loaded after %lld ms", qPrintable(f.facts.name), clock.elapsed());
    QCOMPARE(f.model().rowCount(), 5000);
    const int columns = f.model().columnCount();
    if (step == 1) {
        rows.select(f.model().index(0, 0), f.model().index(4999, columns - 1));
        lines.clear();
    }
    for (int row = 4999 - 4999 % step; step > 1 && row >= 0; row -= step) {
        rows.select(f.model().index(row, 0), f.model().index(row, columns - 1));
        lines.removeAt(row);
    }
    f.list->selection().select(rows, QItemSelectionModel::ClearAndSelect);
    const Rewrites rewrites(f.path());
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], 36, BoxAnswer::Yes);
    clock.restart();
    f.list->deleteSelected();
    qInfo("%lld of them deleted after %lld ms", static_cast<long long>(5000 - lines.size()), clock.elapsed());
    QCOMPARE(rewrites.count(), 1);
    QCOMPARE(f.file(), octetsOf(lines));
    QCOMPARE(f.model().rowCount(), lines.size());
}

QTEST_GUILESS_MAIN(TestRecordDeletion)
#include "test_recorddeletion.moc"
