#include "quillon/forms/listlooks.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QStandardItemModel>
#include <QTest>
#include <QToolTip>
#include <QTreeView>
#include <QTreeWidget>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// A list of three columns.
struct Bench {
    explicit Bench(const QList<QStringList> &rows = {})
    {
        model.setHorizontalHeaderLabels({u"Name"_s, u"Port"_s, u"Remark"_s});
        for (const QStringList &row : rows) {
            add(row);
        }
        view.setObjectName(u"lsv"_s);
        view.setRootIsDecorated(false);
        view.setModel(&model);
        view.header()->setStretchLastSection(true);
        columns = new quillon::FittedColumns(&view);
        new quillon::CellTips(&view);
        new quillon::EmptyListText(&view, u"Nothing <b>yet</b>."_s);
        view.resize(600, 300);
        view.show();
    }
    void add(const QStringList &row)
    {
        QList<QStandardItem *> items;
        for (const QString &text : row) {
            items.append(new QStandardItem(text));
        }
        model.appendRow(items);
    }
    /// What is told when the mouse rests on a cell.
    QString tip(int row, int column)
    {
        QToolTip::hideText();
        const QPoint place = view.visualRect(model.index(row, column)).center();
        QHelpEvent help(QEvent::ToolTip, place, view.viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(view.viewport(), &help);
        return QToolTip::text();
    }
    /// The width that a cell makes its column have.
    int wanted(int row, int column)
    {
        return view.sizeHintForIndex(model.index(row, column)).width() + view.fontMetrics().averageCharWidth();
    }

    QStandardItemModel model;
    QTreeView view;
    quillon::FittedColumns *columns = nullptr;
};

} // namespace

class TestListLooks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void columnsAreAsWideAsTheirContent();
    void columnsFollowTheirContent();
    void noColumnTakesMoreThanHalf();
    void aWidthOfTheUsersStays();
    void aCutCellTellsItsText();
    void aWholeCellTellsNothing();
    void theTextStandsWhileTheListIsEmpty();
    void theTextFillsTheList();
    void aListMayGoWithItsModel();
};

void TestListLooks::columnsAreAsWideAsTheirContent()
{
    Bench b({{u"a name that is longer"_s, u"25"_s, u"x"_s}});
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    QCOMPARE(b.view.columnWidth(0), b.wanted(0, 0));
    QVERIFY(b.view.columnWidth(1) < b.view.columnWidth(0));
    QVERIFY(b.view.columnWidth(1) >= b.view.header()->sectionSizeHint(1)); // the heading is content, too
}

void TestListLooks::columnsFollowTheirContent()
{
    Bench b({{u"short"_s, u"25"_s, u"x"_s}});
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    const int before = b.view.columnWidth(0);
    b.add({u"a name that is longer than the other"_s, u"25"_s, u"x"_s});
    QTRY_COMPARE(b.view.columnWidth(0), b.wanted(1, 0));
    QVERIFY(b.view.columnWidth(0) > before);
    b.model.item(0, 1)->setText(u"a thousand and eighty"_s);
    QTRY_COMPARE(b.view.columnWidth(1), b.wanted(0, 1));
}

void TestListLooks::noColumnTakesMoreThanHalf()
{
    Bench b({{QString(300, u'W'), u"25"_s, u"x"_s}});
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    QCOMPARE(b.view.columnWidth(0), b.view.viewport()->width() / 2);
    b.view.resize(900, 300);
    QTRY_COMPARE(b.view.columnWidth(0), b.view.viewport()->width() / 2);
}

void TestListLooks::aWidthOfTheUsersStays()
{
    Bench b({{u"short"_s, u"25"_s, u"x"_s}});
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    b.view.setColumnWidth(0, 222);
    b.add({u"a name that is longer than the other"_s, u"25"_s, u"x"_s});
    QCoreApplication::processEvents();
    QCOMPARE(b.view.columnWidth(0), 222);
}

void TestListLooks::aCutCellTellsItsText()
{
    const QString text = u"<b>"_s + QString(200, u'W');
    Bench b({{text, u"25"_s, QString(300, u'm')}});
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    QCOMPARE(b.tip(0, 0), Qt::convertFromPlainText(text));
    QCOMPARE(b.tip(0, 2), Qt::convertFromPlainText(QString(300, u'm')));
}

void TestListLooks::aWholeCellTellsNothing()
{
    Bench b({{u"short"_s, u"25"_s, u"x"_s}});
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    QCOMPARE(b.tip(0, 0), QString());
    QCOMPARE(b.tip(0, 2), QString());
    b.view.setToolTip(u"The list."_s);
    QVERIFY(!b.tip(0, 0).contains(u"short"_s));
}

void TestListLooks::theTextStandsWhileTheListIsEmpty()
{
    Bench b;
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    const auto *label = b.view.findChild<QLabel *>(u"lsv.empty"_s);
    QVERIFY(label && label->isVisible());
    QCOMPARE(label->text(), u"Nothing <b>yet</b>."_s);
    QCOMPARE(label->textFormat(), Qt::PlainText);
    b.add({u"a"_s, u"b"_s, u"c"_s});
    QTRY_VERIFY(!label->isVisible());
    b.model.removeRow(0);
    QTRY_VERIFY(label->isVisible());
    b.add({u"a"_s, u"b"_s, u"c"_s});
    QTRY_VERIFY(!label->isVisible());
    b.model.clear();
    QTRY_VERIFY(label->isVisible());
}

void TestListLooks::theTextFillsTheList()
{
    Bench b;
    QVERIFY(QTest::qWaitForWindowExposed(&b.view));
    const auto *label = b.view.findChild<QLabel *>(u"lsv.empty"_s);
    QTRY_COMPARE(label->size(), b.view.viewport()->size());
    b.view.resize(700, 400);
    QTRY_COMPARE(label->size(), b.view.viewport()->size());
    QCOMPARE(label->alignment(), Qt::AlignCenter);
    QVERIFY(label->testAttribute(Qt::WA_TransparentForMouseEvents)); // a click is the list's
}

void TestListLooks::aListMayGoWithItsModel()
{
    auto list = std::make_unique<QTreeWidget>();
    list->setColumnCount(3);
    new quillon::FittedColumns(list.get());
    new quillon::EmptyListText(list.get(), u"Nothing."_s);
    list->addTopLevelItem(new QTreeWidgetItem({u"a"_s, u"b"_s, u"c"_s}));
    list->show();
    QVERIFY(QTest::qWaitForWindowExposed(list.get()));
    list.reset(); // which empties its model first
    QCoreApplication::processEvents();
}

QTEST_MAIN(TestListLooks)
#include "test_listlooks.moc"
