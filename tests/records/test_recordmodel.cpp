#include "recordfixture.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace corvane;

/// What a view is told of the rows, and what it may do with them.
class TestRecordModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void justTheRowsThatAreNamedAreTakenOut_data();
    void justTheRowsThatAreNamedAreTakenOut();
    void eachChangeIsToldForJustItsRows();
    void everyChangeKeepsTheViewsInStep_data() { addKinds(true); }
    void everyChangeKeepsTheViewsInStep();
    void anAddedRowComesBehindThoseOfEqualText();
    void withoutAColumnTheOrderIsTheFiles();
    void onlyPortsAreNumbers_data();
    void onlyPortsAreNumbers();
    void onlyTheFirstColumnCanBeEdited();
    void headingsStandAboveTheColumns();
    void cellsHaveNothingBelowThem();
    void portsAreSortedByTheirValue();
    void namesAreSortedAsPeopleSort();
};

namespace {

/// A sender of that name.
QString named(const QString &name)
{
    return name + u'\t' + name.toLower() + u"@x.example\t"_s;
}

/// Senders of one letter each.
QStringList letters(const QString &names)
{
    QStringList lines;
    for (const QChar name : names) {
        lines.append(named(QString(name)));
    }
    return lines;
}

QString shown(RecordFixture &f)
{
    return f.column(0).join(QString());
}

} // namespace

void TestRecordModel::justTheRowsThatAreNamedAreTakenOut_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QString>("left");
    QTest::newRow("none") << QList<int>{} << u"abcde"_s;
    QTest::newRow("the first") << QList<int>{0} << u"bcde"_s;
    QTest::newRow("one between") << QList<int>{3} << u"abce"_s;
    QTest::newRow("the last") << QList<int>{4} << u"abcd"_s;
    QTest::newRow("one behind the last") << QList<int>{5} << u"abcde"_s;
    QTest::newRow("one before the first") << QList<int>{-1} << u"abcde"_s;
    QTest::newRow("upwards") << QList<int>{0, 2, 4} << u"bd"_s;
    QTest::newRow("downwards") << QList<int>{4, 2, 0} << u"bd"_s;
    QTest::newRow("in no order") << QList<int>{3, 0, 4, 1} << u"c"_s;
    QTest::newRow("twice the same") << QList<int>{1, 1} << u"acde"_s;
    QTest::newRow("one that is there and one that is not") << QList<int>{9, 1, -1} << u"acde"_s;
    QTest::newRow("all") << QList<int>{2, 1, 0, 4, 3} << QString();
}

void TestRecordModel::justTheRowsThatAreNamedAreTakenOut()
{
    QFETCH(const QList<int>, rows);
    QFETCH(const QString, left);
    RecordFixture f(senderFacts());
    f.load(letters(u"abcde"_s));
    const QAbstractItemModelTester tester(&f.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    f.model().remove(rows);
    QCOMPARE(shown(f), left);
}

void TestRecordModel::eachChangeIsToldForJustItsRows()
{
    RecordFixture f(senderFacts());
    f.load(letters(u"abc"_s));
    RecordModel &model = f.model();
    const QSignalSpy changed(&model, &RecordModel::dataChanged);
    const QSignalSpy inserted(&model, &RecordModel::rowsInserted);
    const QSignalSpy removed(&model, &RecordModel::rowsRemoved);
    const QSignalSpy sorted(&model, &RecordModel::layoutChanged);
    model.replace(1, named(u"x"_s));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.last().at(0).toModelIndex(), model.index(1, 0));
    QCOMPARE(changed.last().at(1).toModelIndex(), model.index(1, 2));
    model.replace(3, named(u"y"_s));
    QCOMPARE(changed.size(), 1);
    model.mark(2);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.last().at(0).toModelIndex(), model.index(0, 0));
    QCOMPARE(changed.last().at(1).toModelIndex(), model.index(2, 2));
    QVERIFY(changed.last().at(2).value<QList<int>>().contains(Qt::FontRole));
    QVERIFY(changed.last().at(2).value<QList<int>>().contains(RecordModel::DefaultRole));
    QCOMPARE(model.add(named(u"d"_s)), 3);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(inserted.last().at(1).toInt(), 3);
    QCOMPARE(inserted.last().at(2).toInt(), 3);
    model.remove({1});
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.last().at(1).toInt(), 1);
    QCOMPARE(removed.last().at(2).toInt(), 1);
    model.sort(0, Qt::DescendingOrder);
    QCOMPARE(sorted.size(), 1);
    QCOMPARE(shown(f), u"dca"_s);
}

void TestRecordModel::everyChangeKeepsTheViewsInStep()
{
    RecordFixture f(kindOfRow());
    f.load({});
    RecordModel &model = f.model();
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QSignalSpy reset(&model, &RecordModel::modelReset);
    model.mark(0); // of no row at all
    QVERIFY(!model.anyMarked());
    model.setLines(f.facts.records);
    QCOMPARE(reset.size(), 1);
    model.mark(1);
    const QPersistentModelIndex marked = model.index(1, 0);
    model.sort(0, Qt::AscendingOrder);
    QVERIFY(model.isMarked(marked.row()));
    model.add(f.facts.records[1]);
    QVERIFY(model.isMarked(marked.row()));
    model.sort(0, Qt::DescendingOrder);
    QVERIFY(model.isMarked(marked.row()));
    QCOMPARE(f.marked(), QList<int>{marked.row()});
    model.remove({marked.row()});
    QVERIFY(!marked.isValid() && !model.anyMarked());
    model.setLines({});
    QCOMPARE(model.rowCount(), 0);
}

void TestRecordModel::anAddedRowComesBehindThoseOfEqualText()
{
    RecordFixture f(senderFacts());
    f.load({named(u"Bob"_s), named(u"Ann"_s), named(u"Cy"_s)});
    f.model().sort(0, Qt::AscendingOrder);
    QCOMPARE(f.list->add(named(u"ann"_s)), 1);
    QCOMPARE(f.list->add(named(u"BOB"_s)), 3);
    QCOMPARE(f.column(0), (QStringList{u"Ann"_s, u"ann"_s, u"Bob"_s, u"BOB"_s, u"Cy"_s}));
    f.model().sort(0, Qt::DescendingOrder);
    QCOMPARE(f.list->add(named(u"bob"_s)), 3);
    QCOMPARE(f.column(0), (QStringList{u"Cy"_s, u"Bob"_s, u"BOB"_s, u"bob"_s, u"Ann"_s, u"ann"_s}));
}

void TestRecordModel::withoutAColumnTheOrderIsTheFiles()
{
    RecordFixture f(senderFacts());
    f.load(letters(u"cab"_s));
    f.model().sort(0, Qt::AscendingOrder);
    f.model().sort(-1, Qt::AscendingOrder);
    QCOMPARE(shown(f), u"abc"_s); // until the list is filled anew
    QCOMPARE(f.list->add(named(u"a"_s)), 3);
    f.list->load();
    QCOMPARE(shown(f), u"caba"_s);
}

void TestRecordModel::onlyPortsAreNumbers_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QList<bool>>("numbers"); // from the column before the first to the one behind the last
    QTest::newRow("accounts") << u"accounts"_s << QList<bool>{false, false, true, false, false};
    QTest::newRow("proxies") << u"proxies"_s << QList<bool>{false, false, true, false, false};
    QTest::newRow("senders") << u"senders"_s << QList<bool>{false, false, false, false, false};
    QTest::newRow("signatures") << u"signatures"_s << QList<bool>{false, false, false};
}

void TestRecordModel::onlyPortsAreNumbers()
{
    QFETCH(const QList<bool>, numbers);
    RecordFixture f(kindOfRow());
    f.load({});
    QCOMPARE(f.model().columnCount() + 2, numbers.size());
    for (int i = 0; i < numbers.size(); ++i) {
        QCOMPARE(f.model().holdsNumbers(i - 1), numbers.at(i));
    }
}

void TestRecordModel::onlyTheFirstColumnCanBeEdited()
{
    RecordFixture f(senderFacts());
    f.load(letters(u"ab"_s));
    for (const bool editable : {false, true, false}) {
        f.model().setEditable(editable);
        for (int column = 0; column < 3; ++column) {
            const Qt::ItemFlags flags = f.model().flags(f.model().index(1, column));
            QCOMPARE(flags.testFlag(Qt::ItemIsEditable), editable && column == 0);
            QVERIFY(flags.testFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren));
        }
    }
}

void TestRecordModel::headingsStandAboveTheColumns()
{
    const RecordModel model(senderKind(), {u"Name"_s, u"Address"_s});
    const auto heading = [&model](int section, Qt::Orientation orientation, int role = Qt::DisplayRole) {
        return model.headerData(section, orientation, role).toString();
    };
    QCOMPARE(heading(0, Qt::Horizontal), u"Name"_s);
    QCOMPARE(heading(1, Qt::Horizontal), u"Address"_s);
    QCOMPARE(heading(2, Qt::Horizontal), QString());
    QCOMPARE(heading(0, Qt::Vertical), QString());
    QCOMPARE(heading(0, Qt::Horizontal, Qt::ToolTipRole), QString());
}

void TestRecordModel::cellsHaveNothingBelowThem()
{
    RecordFixture f(senderFacts());
    f.load(letters(u"ab"_s));
    QCOMPARE(f.model().rowCount(f.model().index(0, 0)), 0);
    QCOMPARE(f.model().columnCount(f.model().index(0, 0)), 0);
    QCOMPARE(f.model().line(-1) + f.model().line(2), QString());
    QVERIFY(!f.model().isMarked(-1) && !f.model().isMarked(2));
}

void TestRecordModel::portsAreSortedByTheirValue()
{
    for (const KindFacts &facts : {accountFacts(), proxyFacts()}) {
        RecordFixture f(facts);
        QStringList lines;
        for (const QString &port : {u"1080"_s, u"25"_s, u""_s, u"587"_s, u"9"_s}) {
            QStringList fields = facts.records.first().split(u'\t');
            fields[facts.kind().columns[1]] = port;
            lines.append(fields.join(u'\t'));
        }
        f.load(lines);
        f.model().sort(1, Qt::AscendingOrder);
        QCOMPARE(f.column(1), (QStringList{u"9"_s, u"25"_s, u"587"_s, u"1080"_s, u""_s}));
        f.model().sort(1, Qt::DescendingOrder);
        QCOMPARE(f.column(1), (QStringList{u""_s, u"1080"_s, u"587"_s, u"25"_s, u"9"_s}));
    }
}

void TestRecordModel::namesAreSortedAsPeopleSort()
{
    RecordFixture f(senderFacts());
    f.load(
        {u"Zoe\t\t"_s, u"\u00c4nne\t\t"_s, u"anton\t\t"_s, u"Ota\t\t"_s, u"\u00d6zlem\t\t"_s, u"10\t\t"_s, u"9\t\t"_s});
    f.model().sort(0, Qt::AscendingOrder);
    QCOMPARE(f.column(0),
             (QStringList{u"10"_s, u"9"_s, u"\u00c4nne"_s, u"anton"_s, u"Ota"_s, u"\u00d6zlem"_s, u"Zoe"_s}));
}

QTEST_GUILESS_MAIN(TestRecordModel)
#include "test_recordmodel.moc"
