#include "composer/popups.h"

#include <QComboBox>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>

using namespace Qt::StringLiterals;
using corvane::PopUps;

namespace {

/// Two pop-ups side by side over a window, the first with a control of its own.
struct Sample {
    Sample()
    {
        form.setCentralWidget(content);
        bar = form.addToolBar(u"Bar"_s);
        bar->addAction(u"Send"_s);
        first->setGeometry(50, 100, 80, 60);
        second->setGeometry(200, 100, 80, 60);
        inside->setGeometry(10, 10, 40, 30);
        combo->setGeometry(10, 200, 80, 30);
        tabs->setGeometry(10, 240, 200, 60);
        tabs->addTab(new QWidget, u"1"_s);
        tabs->addTab(new QWidget, u"2"_s);
        combo->addItems({u"a"_s, u"b"_s});
        form.resize(400, 400);
        popUps = new PopUps(&form, {first, second});
        form.show();
    }

    void open() const
    {
        first->show();
        second->show();
    }
    /// Which of the two are shown.
    [[nodiscard]] QString seen() const
    {
        return (first->isHidden() ? QString() : u"1"_s) + (second->isHidden() ? QString() : u"2"_s);
    }
    void click(const QPoint &place)
    {
        QWidget *under = form.childAt(place);
        QTest::mouseClick(under ? under : &form, Qt::LeftButton, {}, under ? under->mapFrom(&form, place) : place);
    }

    QMainWindow form;
    QWidget *content = new QWidget;
    QToolBar *bar = nullptr;
    QComboBox *combo = new QComboBox(content);
    QTabWidget *tabs = new QTabWidget(content);
    QWidget *first = new QWidget(&form);
    QWidget *second = new QWidget(&form);
    QPushButton *inside = new QPushButton(first);
    PopUps *popUps;
};

} // namespace

class TestPopUps : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theyAreHiddenAtFirst();
    void onlyAPressOutsideHidesThem();
    void theEdgesBelongToThem();
    void theAreaOfAHiddenOneIsOutside();
    void aPickAndAChangeOfTabHideThem();
};

void TestPopUps::theyAreHiddenAtFirst()
{
    Sample sample;
    QCOMPARE(sample.seen(), QString());
    sample.open();
    const PopUps again(&sample.form, {sample.first});
    QCOMPARE(sample.seen(), u"2"_s);
}

void TestPopUps::onlyAPressOutsideHidesThem()
{
    Sample sample;
    for (QWidget *outside : {static_cast<QWidget *>(sample.content), static_cast<QWidget *>(sample.bar),
                             static_cast<QWidget *>(&sample.form)}) {
        sample.open();
        const QPoint corner(2, outside->height() - 3);
        QTest::mouseMove(outside, corner);
        QTest::mouseRelease(outside, Qt::LeftButton, {}, corner);
        QTest::keyClick(outside, Qt::Key_Space);
        QCOMPARE(sample.seen(), u"12"_s);
        QTest::mousePress(outside, Qt::LeftButton, {}, corner);
        QCOMPARE(sample.seen(), QString());
        QTest::mouseRelease(outside, Qt::LeftButton, {}, corner);
    }
    for (QWidget *within : {sample.first, sample.second, static_cast<QWidget *>(sample.inside)}) {
        sample.open();
        QTest::mouseClick(within, Qt::LeftButton);
        QCOMPARE(sample.seen(), u"12"_s);
    }
}

void TestPopUps::theEdgesBelongToThem()
{
    Sample sample;
    const QRect area = sample.first->geometry();
    for (const QPoint &place : {area.topLeft(), area.topRight(), area.bottomLeft(), area.bottomRight()}) {
        sample.open();
        sample.click(place);
        QCOMPARE(sample.seen(), u"12"_s);
    }
    for (const QPoint &place : {area.topLeft() - QPoint(1, 0), area.topLeft() - QPoint(0, 1),
                                area.bottomRight() + QPoint(1, 0), area.bottomRight() + QPoint(0, 1)}) {
        sample.open();
        sample.click(place);
        QCOMPARE(sample.seen(), QString());
    }
}

void TestPopUps::theAreaOfAHiddenOneIsOutside()
{
    Sample sample;
    sample.first->show();
    sample.click(sample.second->geometry().center());
    QCOMPARE(sample.seen(), QString());
    sample.second->show();
    sample.click(sample.second->geometry().center());
    QCOMPARE(sample.seen(), u"2"_s);
}

void TestPopUps::aPickAndAChangeOfTabHideThem()
{
    const Sample sample;
    sample.open();
    Q_EMIT sample.combo->activated(0); // also of the entry that stood there
    QCOMPARE(sample.seen(), QString());
    sample.open();
    sample.combo->setCurrentIndex(1); // by the program: nobody picked
    QCOMPARE(sample.seen(), u"12"_s);
    sample.tabs->setCurrentIndex(1);
    QCOMPARE(sample.seen(), QString());
    sample.open();
    sample.popUps->hide();
    QCOMPARE(sample.seen(), QString());
}

QTEST_MAIN(TestPopUps)
#include "test_popups.moc"
