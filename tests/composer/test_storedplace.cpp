#include "composer/windowplacement.h"
#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"
#include "quillon/forms/screenfit.h"
#include "support/temporarytree.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <array>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

constexpr std::array<Setting, 4> position = {Setting::Left, Setting::Top, Setting::Width, Setting::Height};

constexpr int own = -10000; // for a number of pixels: that of the window itself

QString twips(int pixels)
{
    return QString::number(pixels * 15);
}

/// A placement over a window of its own.
struct PlacedWindow {
    PlacedWindow()
    {
        // Screens of any size: the limits of one are a matter of their own.
        quillon::setScreenRooms([] { return QList<QRect>{QRect(-2000, -2000, 6000, 6000)}; });
        tree.prepare();
        placement = new WindowPlacement(&window, tree.globals);
        window.show();
    }

    ~PlacedWindow() { quillon::setScreenRooms({}); }
    PlacedWindow(const PlacedWindow &) = delete;
    PlacedWindow &operator=(const PlacedWindow &) = delete;

    [[nodiscard]] QMargins margins() const { return quillon::frameMargins(&window); }
    void setValues(const std::array<QString, 4> &values)
    {
        for (std::size_t i = 0; i < position.size(); ++i) {
            tree.globals.settings.set(position[i], values[i]);
        }
    }
    void restore(const std::array<QString, 4> &values)
    {
        setValues(values);
        tree.globals.RestoringFromLast = true;
        placement->resized();
        tree.globals.RestoringFromLast = false;
    }

    TemporaryTree tree;
    QWidget window;
    WindowPlacement *placement;
};

} // namespace

/// What is stored of a window's place, value by value, and where the window stands by it.
class TestStoredPlace : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStoredPlaceIsLimitedToItsScreen_data();
    void aStoredPlaceIsLimitedToItsScreen();
    void aWindowThatComesBackIsPutWhereItWasLast();
    void aMaximisedWindowThatLeavesStoresNoPlace();
    void aScreenThatShrinksTakesTheWindowAlong();
    void eachStoredValueIsTakenForItself_data();
    void eachStoredValueIsTakenForItself();
    void allFourValuesAreThoseOfTheWindow();
    void aMinimisedWindowThatWasMaximisedChangesNothing();
    void restoringEndsTheMinimisedState();
    void theTimerWritesOnlyWhatDiffers();
};

void TestStoredPlace::aStoredPlaceIsLimitedToItsScreen_data()
{
    QTest::addColumn<QRect>("stored");  // corner of the frame, size of the inside
    QTest::addColumn<QPoint>("corner"); // of the frame
    QTest::addColumn<QSize>("frame");
    const QMargins margins = PlacedWindow().margins();
    const QSize usual = QSize(300, 200).grownBy(margins);
    const int right = 1024 - usual.width();
    const int bottom = 768 - usual.height();
    QTest::newRow("inside") << QRect(20, 30, 300, 200) << QPoint(20, 30) << usual;
    QTest::newRow("over the left") << QRect(-1, 30, 300, 200) << QPoint(0, 30) << usual;
    QTest::newRow("over the top") << QRect(20, -1, 300, 200) << QPoint(20, 0) << usual;
    QTest::newRow("far above") << QRect(20, -1000, 300, 200) << QPoint(20, 0) << usual;
    QTest::newRow("at the right") << QRect(right, 30, 300, 200) << QPoint(right, 30) << usual;
    QTest::newRow("over the right") << QRect(right + 1, 30, 300, 200) << QPoint(right, 30) << usual;
    QTest::newRow("at the bottom") << QRect(20, bottom, 300, 200) << QPoint(20, bottom) << usual;
    QTest::newRow("over the bottom") << QRect(20, bottom + 1, 300, 200) << QPoint(20, bottom) << usual;
    QTest::newRow("beyond the right") << QRect(5000, 30, 300, 200) << QPoint(right, 30) << usual;
    QTest::newRow("too high, far above") << QRect(100, -1000, 900, 1010) << QPoint(100, 0)
                                         << QSize(900 + usual.width() - 300, 768);
    QTest::newRow("of a larger screen") << QRect(0, 0, 1900, 1050) << QPoint(0, 0) << QSize(1024, 768);
}

void TestStoredPlace::aStoredPlaceIsLimitedToItsScreen()
{
    QFETCH(const QRect, stored);
    QFETCH(const QPoint, corner);
    QFETCH(const QSize, frame);
    for (const bool hidden : {false, true}) {
        PlacedWindow placed;
        quillon::setScreenRooms([] { return QList<QRect>{QRect(0, 0, 1024, 768)}; });
        placed.window.setVisible(!hidden);
        placed.restore({twips(stored.x()), twips(stored.y()), twips(stored.width()), twips(stored.height())});
        QCOMPARE(placed.window.windowHandle()->framePosition(), corner);
        QCOMPARE(placed.window.size(), frame.shrunkBy(placed.margins()));
        QCOMPARE(placed.tree.globals.settings.text(Setting::Top), twips(stored.y())); // until the window is moved
    }
}

void TestStoredPlace::aWindowThatComesBackIsPutWhereItWasLast()
{
    PlacedWindow placed;
    placed.window.move(40, 50);
    placed.window.resize(300, 200);
    placed.placement->resized();
    placed.window.move(60, 70); // which the timer has not seen
    placed.placement->leaving();
    QCOMPARE(placed.tree.globals.settings.text(Setting::Left), twips(60));
    const quillon::SettingsFile file(placed.tree.globals.paths.optionsFile);
    QCOMPARE(file.value(u"Position"_s, u"Top"_s), twips(70));
    placed.window.hide();
    placed.window.setAttribute(Qt::WA_Moved, false); // it was the window manager that had put it there
    placed.tree.globals.RestoringFromLast = true;
    placed.placement->resized();
    placed.tree.globals.RestoringFromLast = false;
    QCOMPARE(placed.window.windowHandle()->framePosition(), QPoint(60, 70));
    QVERIFY2(placed.window.testAttribute(Qt::WA_Moved), "the window manager is asked for the place");
}

void TestStoredPlace::aMaximisedWindowThatLeavesStoresNoPlace()
{
    PlacedWindow placed;
    placed.window.setWindowState(Qt::WindowMaximized);
    placed.placement->resized();
    for (const Qt::WindowStates state :
         {Qt::WindowStates(Qt::WindowMaximized), Qt::WindowMaximized | Qt::WindowMinimized}) {
        placed.window.setWindowState(state);
        placed.window.move(60, 70);
        placed.window.setWindowState(state);
        placed.placement->leaving();
        QCOMPARE(placed.tree.globals.settings.text(Setting::Left), QString());
        QCOMPARE(placed.tree.globals.settings.text(Setting::Top), QString());
    }
}

void TestStoredPlace::aScreenThatShrinksTakesTheWindowAlong()
{
    PlacedWindow placed;
    quillon::setScreenRooms([] { return QList<QRect>{QRect(0, 0, 640, 480)}; });
    QScreen *screen = QGuiApplication::primaryScreen();
    const auto shrink = [screen] { Q_EMIT screen->availableGeometryChanged(QRect(0, 0, 640, 480)); };
    placed.window.move(600, 400);
    placed.window.resize(300, 700);
    shrink();
    const QRect frame = placed.window.frameGeometry();
    QCOMPARE(frame.size(), QSize(300 + placed.margins().left() + placed.margins().right(), 480));
    QCOMPARE(frame.topLeft(), QPoint(640 - frame.width(), 0));
    // What is not in its normal state has its place from elsewhere, and a hidden one gets it when it comes back.
    placed.window.move(600, 400);
    placed.window.hide();
    shrink();
    QCOMPARE(placed.window.windowHandle()->framePosition(), QPoint(600, 400));
    placed.window.show();
    for (const Qt::WindowState state : {Qt::WindowMinimized, Qt::WindowMaximized, Qt::WindowFullScreen}) {
        placed.window.setWindowState(state);
        const QRect before = placed.window.geometry();
        shrink();
        QCOMPARE(placed.window.geometry(), before);
    }
}

void TestStoredPlace::eachStoredValueIsTakenForItself_data()
{
    QTest::addColumn<int>("changed"); // the one that is not as it should be
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("pixels"); // or that the window's own stays
    QTest::addColumn<int>("faults");
    for (const int index : {0, 1}) {
        QTest::addRow("%d in words", index) << index << u"left"_s << own << 1;
        QTest::addRow("%d empty", index) << index << u""_s << 0 << 0;
        QTest::addRow("%d too far", index) << index << u"1000000001"_s << own << 1;
        QTest::addRow("%d too far back", index) << index << u"-1000000001"_s << own << 1;
        QTest::addRow("%d negative", index) << index << u"-75"_s << -5 << 0;
        QTest::addRow("%d below the half", index) << index << u"607"_s << 40 << 0;
        QTest::addRow("%d above the half", index) << index << u"608"_s << 41 << 0;
        QTest::addRow("%d with a fraction", index) << index << u"600.5"_s << 40 << 0;
    }
    for (const int index : {2, 3}) {
        QTest::addRow("%d in words", index) << index << u"wide"_s << own << 1;
        QTest::addRow("%d negative", index) << index << u"-300"_s << own << 0;
        QTest::addRow("%d nothing", index) << index << u"0"_s << own << 0;
        QTest::addRow("%d too large", index) << index << u"1000000001"_s << own << 1;
        QTest::addRow("%d of a number", index) << index << u"1800"_s << 120 << 0;
    }
    QTest::addRow("3 empty") << 3 << u""_s << own << 0;
}

void TestStoredPlace::eachStoredValueIsTakenForItself()
{
    QFETCH(const int, changed);
    QFETCH(const QString, value);
    QFETCH(const int, pixels);
    PlacedWindow placed;
    placed.window.move(11, 22);
    placed.window.resize(333, 244);
    std::array<int, 4> expected = {33, 44, 355, 266};
    std::array<QString, 4> values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = twips(expected[i]);
    }
    const auto index = static_cast<std::size_t>(changed);
    const std::array<int, 4> before = {11, 22, 333, 244};
    values[index] = value;
    expected[index] = pixels != own ? pixels : before[index];
    const int faults = quillon::faultCount();
    placed.restore(values);
    QTEST(quillon::faultCount() - faults, "faults");
    QCOMPARE(placed.window.pos(), QPoint(expected[0], expected[1]));
    QCOMPARE(placed.window.size(), QSize(expected[2], expected[3]));
    // Memory and file keep what was stored, whatever came of it.
    for (std::size_t i = 0; i < values.size(); ++i) {
        QCOMPARE(placed.tree.globals.settings.text(position[i]), values[i]);
    }
    const quillon::SettingsFile file(placed.tree.globals.paths.optionsFile);
    QCOMPARE(file.value(u"Position"_s, u"Left"_s), values[0]);
    QCOMPARE(file.value(u"Position"_s, u"Height"_s), values[3]);
}

void TestStoredPlace::allFourValuesAreThoseOfTheWindow()
{
    PlacedWindow placed;
    placed.window.move(11, 22);
    placed.window.resize(333, 244);
    placed.placement->resized();
    const quillon::SettingsFile file(placed.tree.globals.paths.optionsFile);
    const std::array<int, 4> pixels = {11, 22, 333, 244};
    const std::array<QString, 4> keys = {u"Left"_s, u"Top"_s, u"Width"_s, u"Height"_s};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        QCOMPARE(placed.tree.globals.settings.text(position[i]), twips(pixels[i]));
        QCOMPARE(file.value(u"Position"_s, keys[i]), twips(pixels[i]));
    }
}

void TestStoredPlace::aMinimisedWindowThatWasMaximisedChangesNothing()
{
    PlacedWindow placed;
    placed.setValues({u"15"_s, u"30"_s, u"4500"_s, u"3000"_s});
    const QByteArray before = contentOf(placed.tree.globals.paths.optionsFile);
    for (const Qt::WindowStates state :
         {Qt::WindowStates(Qt::WindowMinimized), Qt::WindowMinimized | Qt::WindowMaximized}) {
        placed.window.setWindowState(state);
        placed.placement->resized();
        QCOMPARE(placed.tree.globals.settings.text(Setting::Left), u"15"_s);
        QCOMPARE(placed.tree.globals.settings.text(Setting::Height), u"3000"_s);
        QCOMPARE(contentOf(placed.tree.globals.paths.optionsFile), before);
    }
    placed.window.setWindowState(Qt::WindowMaximized);
    placed.placement->resized();
    for (const Setting key : position) {
        QCOMPARE(placed.tree.globals.settings.text(key), QString());
    }
}

void TestStoredPlace::restoringEndsTheMinimisedState()
{
    constexpr Qt::WindowStates both = Qt::WindowMinimized | Qt::WindowMaximized;
    PlacedWindow placed;
    placed.window.setWindowState(both);
    placed.restore({u"600"_s, u"450"_s, u"4500"_s, u"3000"_s});
    QCOMPARE(placed.window.windowState() & both, Qt::WindowNoState);
    QCOMPARE(placed.window.pos(), QPoint(40, 30));
    placed.window.setWindowState(Qt::WindowMinimized);
    placed.restore({u"600"_s, u"450"_s, QString(), u"3000"_s});
    QCOMPARE(placed.window.windowState() & both, Qt::WindowMaximized);
}

void TestStoredPlace::theTimerWritesOnlyWhatDiffers()
{
    PlacedWindow placed;
    placed.window.move(11, 22);
    placed.window.resize(333, 244);
    const QString &path = placed.tree.globals.paths.optionsFile;
    for (const bool left : {true, false}) {
        quillon::SettingsFile file(path);
        file.removeSection(u"Position"_s);
        QVERIFY(file.save());
        placed.setValues({twips(left ? 10 : 11), twips(left ? 22 : 21), u"w"_s, u"h"_s});
        placed.placement->checkPosition();
        const quillon::SettingsFile written(path);
        QCOMPARE(written.contains(u"Position"_s, u"Left"_s), left);
        QCOMPARE(written.contains(u"Position"_s, u"Top"_s), !left);
        QVERIFY(!written.contains(u"Position"_s, u"Width"_s));
        QCOMPARE(placed.tree.globals.settings.text(Setting::Left), twips(11));
        QCOMPARE(placed.tree.globals.settings.text(Setting::Top), twips(22));
        QCOMPARE(placed.tree.globals.settings.text(Setting::Width), u"w"_s);
    }
}

QTEST_MAIN(TestStoredPlace)
#include "test_storedplace.moc"
