#include "composer/windowplacement.h"
#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"
#include "support/temporarytree.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>

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
        tree.prepare();
        placement = new WindowPlacement(&window, tree.globals);
        window.show();
    }

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
    void aPlaceThatReachesOverTheScreensEdgeIsKept_data();
    void aPlaceThatReachesOverTheScreensEdgeIsKept();
    void eachStoredValueIsTakenForItself_data();
    void eachStoredValueIsTakenForItself();
    void allFourValuesAreThoseOfTheWindow();
    void aMinimisedWindowThatWasMaximisedChangesNothing();
    void restoringEndsTheMinimisedState();
    void theTimerWritesOnlyWhatDiffers();
};

void TestStoredPlace::aPlaceThatReachesOverTheScreensEdgeIsKept_data()
{
    QTest::addColumn<QPoint>("stored");
    QTest::addColumn<bool>("kept");
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    constexpr int width = 300;
    constexpr int height = 200;
    QTest::newRow("inside") << room.topLeft() + QPoint(20, 30) << true;
    QTest::newRow("over the left") << QPoint(room.left() - width + 1, 30) << true;
    QTest::newRow("beyond the left") << QPoint(room.left() - width, 30) << false;
    QTest::newRow("over the top") << QPoint(20, room.top() - height + 1) << true;
    QTest::newRow("beyond the top") << QPoint(20, room.top() - height) << false;
    QTest::newRow("over the right") << QPoint(room.right(), 30) << true;
    QTest::newRow("beyond the right") << QPoint(room.right() + 1, 30) << false;
    QTest::newRow("over the bottom") << QPoint(20, room.bottom()) << true;
    QTest::newRow("beyond the bottom") << QPoint(20, room.bottom() + 1) << false;
}

void TestStoredPlace::aPlaceThatReachesOverTheScreensEdgeIsKept()
{
    QFETCH(const QPoint, stored);
    QFETCH(const bool, kept);
    PlacedWindow placed;
    placed.restore({twips(stored.x()), twips(stored.y()), twips(300), twips(200)});
    QCOMPARE(placed.window.pos(), kept ? stored : QGuiApplication::primaryScreen()->availableGeometry().topLeft());
    QCOMPARE(placed.window.size(), QSize(300, 200));
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
