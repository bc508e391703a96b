#include "composer/growingboxes.h"

#include <QApplication>
#include <QGridLayout>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTest>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;
using corvane::GrowingBoxes;

namespace {

/// Three boxes and a list in a header, below each other, with room under it.
struct Sample {
    Sample()
    {
        header = new QWidget(&ground);
        auto *outer = new QVBoxLayout(&ground);
        outer->addWidget(header);
        below = new QWidget(&ground);
        outer->addWidget(below, 1);
        auto *rows = new QVBoxLayout(header);
        auto *grid = new QGridLayout; // a layout within a layout, as the real header has
        rows->addLayout(grid);
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            boxes.at(i) = new QPlainTextEdit(header);
            grid->addWidget(boxes.at(i), static_cast<int>(i), 0);
        }
        list = new QListWidget(header);
        grid->addWidget(list, 3, 0);
        growing = new GrowingBoxes(boxes, list, header, &ground);
        ground.resize(500, 600);
        ground.show();
        QCoreApplication::processEvents();
    }

    /// The heights of all four in twips, as told and as seen.
    [[nodiscard]] QList<int> twips() const
    {
        QList<int> all;
        for (const QAbstractScrollArea *box : areas()) {
            all.append(growing->height(box));
            if (box->height() * GrowingBoxes::OneRow != all.last() * row()) {
                all.append(-box->height());
            }
        }
        return all;
    }
    [[nodiscard]] QList<QAbstractScrollArea *> areas() const { return {boxes[0], boxes[1], boxes[2], list}; }
    /// Of a box's place in the layout, which no growing changes.
    [[nodiscard]] int row() const { return header->layout()->itemAt(0)->layout()->itemAt(0)->geometry().height(); }

    QWidget ground;
    QWidget *header;
    QWidget *below;
    std::array<QPlainTextEdit *, 3> boxes{};
    QListWidget *list;
    GrowingBoxes *growing;
};

constexpr int row = GrowingBoxes::OneRow;
constexpr int box = GrowingBoxes::LargeBox;
constexpr int list = GrowingBoxes::LargeList;

} // namespace

class TestGrowingBoxes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachToggleShrinksWhatStoodInItsWay();
    void aDoubleClickInABoxIsItsToggle();
    void onlyALargeBoxScrollsAndLiesOnTop();
    void theLayoutKeepsItsRows();
    void boxesFollowTheirPlaces();
    void inALowWindowABoxEndsWithItButKeepsItsRow();
    void aBoxKeepsFocusAndCursorWhileItGrowsAndShrinks();
    void boxesStandBesideTheirPlacesAgain();
    void boxesComeAndGoWithTheHeader();
    void aRowFollowsTheFont();
};

void TestGrowingBoxes::eachToggleShrinksWhatStoodInItsWay()
{
    const Sample sample;
    QCOMPARE(sample.twips(), (QList<int>{row, row, row, row}));
    const QList<QPair<int, QList<int>>> steps = {
        {0, {box, row, row, row}},  {0, {row, row, row, row}},  {1, {row, box, row, row}},
        {2, {row, row, box, row}},  {3, {row, row, row, list}}, {3, {row, row, row, row}},
        {3, {row, row, row, list}}, {0, {box, row, row, list}}, // the open list stays beside a box
        {2, {row, row, box, list}}, {2, {row, row, row, list}}, {1, {row, box, row, list}},
        {3, {row, row, row, row}},
    };
    for (const auto &[index, expected] : steps) {
        sample.growing->toggle(sample.areas().at(index));
        QCOMPARE(sample.twips(), expected);
    }
    QCOMPARE(row, 300);
    QCOMPARE(box, 1500);
    QCOMPARE(list, 2100);
    sample.growing->toggle(sample.below); // none of the boxes
    QCOMPARE(sample.growing->height(sample.below), 0);
    QCOMPARE(sample.twips(), (QList<int>{row, row, row, row}));
}

void TestGrowingBoxes::aDoubleClickInABoxIsItsToggle()
{
    const Sample sample;
    for (int i = 0; i < 4; ++i) {
        QWidget *viewport = sample.areas().at(i)->viewport();
        QTest::mouseClick(viewport, Qt::LeftButton);
        QCOMPARE(sample.growing->height(sample.areas().at(i)), row);
        QTest::mouseDClick(viewport, Qt::LeftButton);
        QCOMPARE(sample.growing->height(sample.areas().at(i)), i < 3 ? box : list);
        QTest::mouseDClick(viewport, Qt::LeftButton);
        QCOMPARE(sample.twips(), (QList<int>{row, row, row, row}));
    }
    QTest::mouseDClick(sample.below, Qt::LeftButton);
    QTest::mouseDClick(sample.header, Qt::LeftButton);
    QCOMPARE(sample.twips(), (QList<int>{row, row, row, row}));
}

void TestGrowingBoxes::onlyALargeBoxScrollsAndLiesOnTop()
{
    const Sample sample;
    for (QAbstractScrollArea *area : sample.areas()) {
        sample.growing->toggle(area);
        QCOMPARE(area->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
        QCOMPARE(sample.ground.childAt(area->geometry().center()), area->viewport());
        QVERIFY(area->isVisible());
        sample.growing->toggle(area);
        QCOMPARE(area->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    }
    sample.growing->toggle(sample.list);
    sample.growing->toggle(sample.boxes[2]); // the later one lies over the list
    QCOMPARE(sample.ground.childAt(sample.list->geometry().center()), sample.boxes[2]->viewport());
    sample.growing->toggle(sample.boxes[1]);
    QCOMPARE(sample.boxes[2]->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

void TestGrowingBoxes::theLayoutKeepsItsRows()
{
    const Sample sample;
    const int header = sample.header->height();
    const int rowHeight = sample.row();
    QVERIFY(rowHeight >= 20);
    for (QAbstractScrollArea *area : sample.areas()) {
        QCOMPARE(area->parentWidget(), sample.header);
        sample.growing->toggle(area);
        QCoreApplication::processEvents();
        QCOMPARE(area->parentWidget(), &sample.ground);
        QCOMPARE(sample.header->height(), header);
        QCOMPARE(sample.row(), rowHeight);
        sample.growing->toggle(area);
        QCOMPARE(area->parentWidget(), sample.header);
    }
}

void TestGrowingBoxes::boxesFollowTheirPlaces()
{
    Sample sample;
    sample.growing->toggle(sample.boxes[1]);
    const int width = sample.boxes[0]->width();
    QList<QPoint> before;
    for (const QAbstractScrollArea *area : sample.areas()) {
        before.append(area->pos());
    }
    sample.ground.resize(sample.ground.width() + 60, sample.ground.height());
    QCoreApplication::processEvents();
    for (const QAbstractScrollArea *area : sample.areas()) {
        QCOMPARE(area->width(), width + 60);
    }
    QCOMPARE(sample.growing->height(sample.boxes[1]), box);
    // The header moves as a whole: no place within it hears of that.
    sample.ground.layout()->setEnabled(false);
    sample.header->move(sample.header->pos() + QPoint(7, 30));
    for (int i = 0; i < 4; ++i) {
        // A box in the header moves along with it.
        const bool grown = sample.areas().at(i)->parentWidget() == &sample.ground;
        QCOMPARE(grown, i == 1);
        QCOMPARE(sample.areas().at(i)->pos(), before.at(i) + (grown ? QPoint(7, 30) : QPoint(0, 0)));
    }
}

void TestGrowingBoxes::inALowWindowABoxEndsWithItButKeepsItsRow()
{
    Sample sample;
    const int rowHeight = sample.row();
    sample.ground.layout()->setSizeConstraint(QLayout::SetNoConstraint);
    sample.ground.setMinimumSize(1, 1);
    sample.growing->toggle(sample.list);
    sample.growing->toggle(sample.boxes[1]);
    const int top = sample.boxes[1]->y();
    // Room for three of its five rows, for just one, for less than one, and none at all.
    for (const auto &[room, height] : {std::pair(3 * rowHeight, 3 * rowHeight), std::pair(rowHeight, rowHeight),
                                       std::pair(rowHeight - 1, rowHeight), std::pair(1 - top, rowHeight)}) {
        sample.ground.layout()->setEnabled(false); // the rows stay where they are
        sample.ground.resize(500, top + room);
        QCOMPARE(sample.ground.height(), top + room);
        QCOMPARE(sample.boxes[1]->y(), top);
        QCOMPARE(sample.boxes[1]->height(), height);
        QCOMPARE(sample.boxes[0]->height(), rowHeight);
        QCOMPARE(sample.boxes[2]->height(), rowHeight);
        QVERIFY(sample.list->height() >= rowHeight);
    }
}

void TestGrowingBoxes::aBoxKeepsFocusAndCursorWhileItGrowsAndShrinks()
{
    Sample sample;
    sample.ground.activateWindow();
    sample.boxes[1]->setPlainText(u"ann@example.com"_s);
    sample.boxes[1]->setFocus();
    QTRY_VERIFY(sample.boxes[1]->hasFocus());
    sample.boxes[1]->moveCursor(QTextCursor::End);
    for (int i = 0; i < 3; ++i) {
        sample.growing->toggle(sample.boxes[1]);
        QVERIFY(sample.boxes[1]->hasFocus());
        QCOMPARE(sample.boxes[1]->textCursor().position(), 15);
    }
    sample.growing->toggle(sample.boxes[0]); // the focus stays where it is
    QVERIFY(sample.boxes[1]->hasFocus());
}

void TestGrowingBoxes::boxesStandBesideTheirPlacesAgain()
{
    const Sample sample;
    const auto order = [&sample] {
        QList<qsizetype> found;
        for (QAbstractScrollArea *area : sample.areas()) {
            found.append(sample.header->children().indexOf(area));
        }
        return found;
    };
    const QList<qsizetype> before = order();
    QVERIFY(std::is_sorted(before.begin(), before.end()));
    for (const int box : {0, 3, 1, 1, 2, 3, 0, 0}) {
        sample.growing->toggle(sample.areas().at(box));
    }
    const QList<qsizetype> after = order();
    QCOMPARE(after.count(-1), 0);
    QVERIFY(std::is_sorted(after.begin(), after.end()));
}

void TestGrowingBoxes::boxesComeAndGoWithTheHeader()
{
    const Sample sample;
    sample.growing->toggle(sample.boxes[1]);
    sample.header->hide();
    for (const QAbstractScrollArea *area : sample.areas()) {
        QVERIFY(!area->isVisible());
    }
    sample.header->show();
    for (const QAbstractScrollArea *area : sample.areas()) {
        QVERIFY(area->isVisible());
    }
}

void TestGrowingBoxes::aRowFollowsTheFont()
{
    const Sample sample;
    const int before = sample.row();
    sample.growing->toggle(sample.boxes[0]);
    QFont large = sample.header->font();
    large.setPointSizeF(large.pointSizeF() * 3);
    for (QPlainTextEdit *text : sample.boxes) {
        text->setFont(large);
    }
    sample.header->setFont(large);
    QCoreApplication::processEvents();
    QVERIFY2(sample.row() >= QFontMetrics(large).height(), qPrintable(QString::number(sample.row())));
    QVERIFY(sample.row() > before);
    QCOMPARE(sample.twips(), (QList<int>{box, row, row, row}));
    // One line stands in the middle of its row.
    const QPlainTextEdit *text = sample.boxes[1];
    const double margins = text->height() - 2 * text->frameWidth() - QFontMetrics(large).lineSpacing();
    QCOMPARE(text->document()->documentMargin(), std::max(1.0, std::floor(margins) / 2.0));
}

QTEST_MAIN(TestGrowingBoxes)
#include "test_growingboxes.moc"
