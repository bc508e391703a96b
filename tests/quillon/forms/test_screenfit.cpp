#include "quillon/forms/screenfit.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>
#include <QWindow>

using namespace quillon;

namespace {

const QRect left(0, 20, 1000, 780);     // a panel above
const QRect right(1000, 0, 1280, 1024); // a second screen beside it

} // namespace

class TestScreenFit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setScreenRooms({}); }
    void aFrameIsBroughtIntoItsScreen_data();
    void aFrameIsBroughtIntoItsScreen();
    void aFrameBelongsToTheScreenThatShowsTheMostOfIt();
    void withoutAScreenNothingIsMoved();
    void roomsAreThoseOfTheDesktopUnlessTold();
    void aWindowIsMovedAndMadeSmaller();
    void aWindowThatFitsIsLeftAlone();
    void aFrameThatIsNotKnownYetIsReckonedByTheStyle();
    void aHiddenWindowIsPutWhereItWasBefore();
    void aChangeOfAScreenIsTold();
};

void TestScreenFit::aFrameIsBroughtIntoItsScreen_data()
{
    QTest::addColumn<QRect>("frame");
    QTest::addColumn<QRect>("fitted");
    const auto row = [](const char *name, const QRect &frame, const QRect &fitted) {
        QTest::newRow(name) << frame << fitted;
    };
    row("inside", {10, 30, 300, 200}, {10, 30, 300, 200});
    row("in the corner", {0, 20, 300, 200}, {0, 20, 300, 200});
    row("above the corner", {0, 19, 300, 200}, {0, 20, 300, 200});
    row("left of the corner", {-1, 20, 300, 200}, {0, 20, 300, 200});
    row("in the lower corner", {700, 600, 300, 200}, {700, 600, 300, 200});
    row("below the lower corner", {500, 601, 300, 200}, {500, 600, 300, 200});
    row("far above", {100, -1000, 900, 770}, {100, 20, 900, 770});
    row("far above, and too high", {100, -1000, 900, 1010}, {100, 20, 900, 780});
    row("too wide and too high", {-100, 30, 1001, 781}, {0, 20, 1000, 780});
    row("as large as the screen", {-5, 5, 1000, 780}, {0, 20, 1000, 780});
    row("over both screens", {800, 30, 400, 200}, {800, 30, 400, 200});
    row("over both, and below the first", {800, 700, 300, 200}, {700, 600, 300, 200});
    row("over both, and below the first, mostly in the second", {850, 700, 400, 200}, {1000, 700, 400, 200});
    row("beyond the right of all", {2280, 30, 300, 200}, {700, 30, 300, 200});
    row("over the right of all", {2279, 30, 300, 200}, {1980, 30, 300, 200});
    row("below all", {1500, 5000, 300, 200}, {700, 600, 300, 200});
}

void TestScreenFit::aFrameIsBroughtIntoItsScreen()
{
    QFETCH(const QRect, frame);
    QTEST(fittedFrame(frame, {left, right}), "fitted");
}

void TestScreenFit::aFrameBelongsToTheScreenThatShowsTheMostOfIt()
{
    QCOMPARE(roomFor({800, 30, 400, 200}, {left, right}), left); // half and half: the primary one
    QCOMPARE(roomFor({801, 30, 400, 200}, {left, right}), right);
    QCOMPARE(roomFor({801, 30, 400, 200}, {right, left}), right);
    QCOMPARE(roomFor({5000, 30, 400, 200}, {left, right}), left);
    // Apart from it on both axes, where two differences below nothing would make something.
    QCOMPARE(roomFor({5000, 5000, 400, 200}, {right, left}), right);
    QCOMPARE(roomFor({}, {left, right}), left);
}

void TestScreenFit::withoutAScreenNothingIsMoved()
{
    QCOMPARE(fittedFrame({-10, -10, 300, 200}, {}), QRect(-10, -10, 300, 200));
    QCOMPARE(fittedFrame({-10, -10, 300, 200}, {QRect()}), QRect(-10, -10, 300, 200));
    QVERIFY(roomFor({1, 1, 5, 5}, {}).isNull());
}

void TestScreenFit::roomsAreThoseOfTheDesktopUnlessTold()
{
    const QList<QRect> desktop = {QGuiApplication::primaryScreen()->availableGeometry()};
    QCOMPARE(screenRooms(), desktop);
    setScreenRooms([] { return QList<QRect>{left, right}; });
    QCOMPARE(screenRooms(), (QList<QRect>{left, right}));
    setScreenRooms({});
    QCOMPARE(screenRooms(), desktop);
}

void TestScreenFit::aWindowIsMovedAndMadeSmaller()
{
    QWidget window;
    window.resize(300, 200);
    window.show();
    window.move(40, 50);
    QCOMPARE(window.frameGeometry().topLeft(), QPoint(40, 50));
    const QSize frame = window.frameGeometry().size();
    const QMargins margins = frameMargins(&window);
    QCOMPARE(window.size().grownBy(margins), frame);
    setScreenRooms([&frame] { return QList<QRect>{QRect(100, 120, frame.width(), frame.height() - 20)}; });
    fitIntoScreens(&window);
    QCOMPARE(window.frameGeometry(), QRect(100, 120, frame.width(), frame.height() - 20));
}

void TestScreenFit::aWindowThatFitsIsLeftAlone()
{
    QWidget window;
    window.resize(300, 200);
    window.show();
    window.setAttribute(Qt::WA_Moved, false);
    window.setAttribute(Qt::WA_Resized, false);
    fitIntoScreens(&window);
    QVERIFY(!window.testAttribute(Qt::WA_Moved)); // the window manager keeps its say
    QVERIFY(!window.testAttribute(Qt::WA_Resized));
    QCOMPARE(window.size(), QSize(300, 200));
}

void TestScreenFit::aFrameThatIsNotKnownYetIsReckonedByTheStyle()
{
    const QWidget window;
    const QMargins margins = frameMargins(&window);
    QVERIFY(margins.top() > 10);
    QVERIFY(margins.left() > 0 && margins.left() == margins.right() && margins.left() == margins.bottom());
    QVERIFY(margins.top() > margins.bottom());
}

void TestScreenFit::aHiddenWindowIsPutWhereItWasBefore()
{
    QWidget window;
    window.resize(300, 200);
    moveFrame(&window, {30, 40}); // no window of the desktop yet
    window.show();
    QCOMPARE(window.pos(), QPoint(30, 40));
    moveFrame(&window, {50, 60});
    QCOMPARE(window.pos(), QPoint(50, 60));
    window.hide();
    window.setAttribute(Qt::WA_Moved, false);
    moveFrame(&window, {50, 60}); // also when it stands there: it has to be asked for
    QVERIFY(window.testAttribute(Qt::WA_Moved));
    QCOMPARE(window.windowHandle()->framePosition(), QPoint(50, 60));
    moveFrame(&window, {70, 80});
    QCOMPARE(window.windowHandle()->framePosition(), QPoint(70, 80));
}

void TestScreenFit::aChangeOfAScreenIsTold()
{
    QObject owner;
    const ScreenWatch watch(&owner);
    QSignalSpy told(&watch, &ScreenWatch::changed);
    QScreen *screen = QGuiApplication::primaryScreen();
    Q_EMIT screen->availableGeometryChanged(screen->availableGeometry());
    QCOMPARE(told.size(), 1);
    Q_EMIT qGuiApp->screenRemoved(screen);
    QCOMPARE(told.size(), 2);
    Q_EMIT qGuiApp->screenAdded(screen);
    QCOMPARE(told.size(), 3);
}

QTEST_MAIN(TestScreenFit)
#include "test_screenfit.moc"
