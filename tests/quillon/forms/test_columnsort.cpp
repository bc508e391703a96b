#include "quillon/forms/columnsort.h"

#include <QHeaderView>
#include <QStandardItemModel>
#include <QTest>
#include <QTreeView>

using namespace Qt::StringLiterals;
using quillon::ColumnSort;

namespace {

/// A list of two columns whose rows stand in neither order of any of them.
struct Sample {
    Sample()
    {
        add(u"b"_s, u"2"_s);
        add(u"a"_s, u"3"_s);
        add(u"c"_s, u"1"_s);
        view.setModel(&model);
        view.resize(400, 200);
        view.show();
    }

    void add(const QString &first, const QString &second)
    {
        model.appendRow({new QStandardItem(first), new QStandardItem(second)});
    }
    [[nodiscard]] QString rows() const
    {
        QString text;
        for (int i = 0; i < model.rowCount(); ++i) {
            text += model.item(i)->text();
        }
        return text;
    }
    void click(int column)
    {
        QHeaderView *header = view.header();
        const QPoint middle(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                            header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, middle);
    }

    QStandardItemModel model;
    QTreeView view;
};

} // namespace

class TestColumnSort : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aListThatNobodySortedKeepsItsOrder();
    void aClickSortsByItsColumnAndTheNextReverses();
    void theFirstOrderIsChosenByTheOwner();
    void rowsThatCameSinceAreSortedIn();
};

void TestColumnSort::aListThatNobodySortedKeepsItsOrder()
{
    Sample sample;
    ColumnSort sort(&sample.view);
    sort.again();
    QCOMPARE(sample.rows(), u"bac"_s);
    QVERIFY(!sample.view.header()->isSortIndicatorShown());
    sample.add(u"0"_s, u"0"_s);
    sort.again();
    QCOMPARE(sample.rows(), u"bac0"_s);
}

void TestColumnSort::aClickSortsByItsColumnAndTheNextReverses()
{
    Sample sample;
    const ColumnSort sort(&sample.view);
    sample.click(0);
    QCOMPARE(sample.rows(), u"abc"_s);
    QVERIFY(sample.view.header()->isSortIndicatorShown());
    QCOMPARE(sample.view.header()->sortIndicatorSection(), 0);
    QCOMPARE(sample.view.header()->sortIndicatorOrder(), Qt::AscendingOrder);
    sample.click(0);
    QCOMPARE(sample.rows(), u"cba"_s);
    QCOMPARE(sample.view.header()->sortIndicatorOrder(), Qt::DescendingOrder);
    sample.click(1); // whichever column it is on, a click reverses
    QCOMPARE(sample.rows(), u"cba"_s);
    QCOMPARE(sample.view.header()->sortIndicatorSection(), 1);
    QCOMPARE(sample.view.header()->sortIndicatorOrder(), Qt::AscendingOrder);
    sample.click(1);
    QCOMPARE(sample.rows(), u"abc"_s);
    sample.click(0);
    QCOMPARE(sample.rows(), u"abc"_s);
}

void TestColumnSort::theFirstOrderIsChosenByTheOwner()
{
    Sample sample;
    const ColumnSort sort(&sample.view, Qt::DescendingOrder);
    sample.click(1);
    QCOMPARE(sample.rows(), u"abc"_s);
    sample.click(1);
    QCOMPARE(sample.rows(), u"cba"_s);
}

void TestColumnSort::rowsThatCameSinceAreSortedIn()
{
    Sample sample;
    ColumnSort sort(&sample.view);
    sample.click(1);
    sample.add(u"n"_s, u"15"_s);
    QCOMPARE(sample.rows(), u"cban"_s);
    sort.again();
    QCOMPARE(sample.rows(), u"cnba"_s);
    sample.click(1);
    sample.add(u"z"_s, u"9"_s);
    sort.again(); // in the order of the last click, and without another turn
    QCOMPARE(sample.rows(), u"zabnc"_s);
    sort.again();
    QCOMPARE(sample.rows(), u"zabnc"_s);
}

QTEST_MAIN(TestColumnSort)
#include "test_columnsort.moc"
