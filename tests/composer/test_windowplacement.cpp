#include "mainfixture.h"
#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"
#include "quillon/forms/screenfit.h"

#include <QScopeGuard>
#include <QScreen>
#include <QTimer>

#include <array>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

QString stored(MainFixture &main, const char *key)
{
    return quillon::SettingsFile(main.globals().paths.optionsFile).value(u"Position"_s, QString::fromLatin1(key));
}

constexpr std::array<Setting, 4> position = {Setting::Left, Setting::Top, Setting::Width, Setting::Height};

/// Puts a place in memory: left, top, width, height.
void place(MainFixture &main, const std::array<QString, 4> &values)
{
    for (std::size_t i = 0; i < position.size(); ++i) {
        main.globals().settings.set(position[i], values[i]);
    }
}

QString twips(int pixels)
{
    return QString::number(pixels * 15);
}

} // namespace

class TestWindowPlacement : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aResizeStoresThePosition();
    void aMaximisedWindowBlanksAllFourValues();
    void aMinimisedWindowStoresNothing();
    void theTimerStoresAMove();
    void anEmptyStoredPositionCountsAsZeroForTheTimer();
    void theTimerWritesNothingWhileMinimised();
    void restoringAppliesTheStoredPosition();
    void restoringWithoutAWidthMaximises();
    void restoringWithNumbersThatAreNoneKeepsTheWindowUsable();
    void aPositionOffEveryScreenIsBroughtBack();
    void aWindowThatWasClosedIsToldAgainWhenItIsMinimised();
    void startupMaxMaximises();
    void startupSysMinimisesAndTellsTheTray();
    void theCloseBoxMinimises();
    void theCloseBoxLeavesTheStateOfAWindowThatTheTrayHides();
    void theExitTagLetsTheWindowClose();
    void aMoveBeforeTheTrayIsStored();
};

void TestWindowPlacement::aResizeStoresThePosition()
{
    MainFixture main;
    main.window->resize(900, 640);
    QCOMPARE(main.globals().settings.text(Setting::Width), twips(900));
    QCOMPARE(stored(main, "Left"), twips(main.window->x()));
    QCOMPARE(stored(main, "Top"), twips(main.window->y()));
    QCOMPARE(stored(main, "Width"), twips(900));
    QCOMPARE(stored(main, "Height"), twips(640));
}

void TestWindowPlacement::aMaximisedWindowBlanksAllFourValues()
{
    MainFixture main;
    main.window->resize(900, 640);
    QVERIFY(!stored(main, "Width").isEmpty());
    main.window->setWindowState(Qt::WindowMaximized);
    for (const char *key : {"Left", "Top", "Width", "Height"}) {
        QCOMPARE(stored(main, key), QString());
    }
    for (const Setting key : position) {
        QCOMPARE(main.globals().settings.text(key), QString());
    }
}

void TestWindowPlacement::aMinimisedWindowStoresNothing()
{
    MainFixture main;
    main.window->resize(900, 640);
    main.globals().settings.set(Setting::Width, u"12345"_s);
    main.window->setWindowState(Qt::WindowMinimized);
    QCOMPARE(main.globals().settings.text(Setting::Width), u"12345"_s);
    QCOMPARE(stored(main, "Width"), twips(900));
    QCOMPARE(main.minimised, 1);
}

void TestWindowPlacement::theTimerStoresAMove()
{
    MainFixture main;
    auto *timer = main.get<QWidget>(u"central"_s)->window()->findChild<QTimer *>(u"timPos"_s);
    QVERIFY(timer);
    QVERIFY2(!timer->isActive(), "it waits for the start to set its interval");
    main.window->resize(900, 640);
    main.window->move(40, 30);
    const QString width = stored(main, "Width");
    Q_EMIT timer->timeout({});
    QCOMPARE(stored(main, "Left"), twips(40));
    QCOMPARE(stored(main, "Top"), twips(30));
    QCOMPARE(main.globals().settings.text(Setting::Left), twips(40));
    QCOMPARE(stored(main, "Width"), width);
}

void TestWindowPlacement::anEmptyStoredPositionCountsAsZeroForTheTimer()
{
    MainFixture main;
    main.window->move(0, 30);
    place(main, {});
    quillon::SettingsFile file(main.globals().paths.optionsFile);
    file.removeSection(u"Position"_s);
    QVERIFY(file.save());
    Q_EMIT main.window->findChild<QTimer *>(u"timPos"_s)->timeout({});
    QVERIFY(!quillon::SettingsFile(main.globals().paths.optionsFile).contains(u"Position"_s, u"Left"_s));
    QCOMPARE(main.globals().settings.text(Setting::Left), QString());
    QCOMPARE(stored(main, "Top"), twips(30));
}

void TestWindowPlacement::theTimerWritesNothingWhileMinimised()
{
    MainFixture main;
    main.window->setWindowState(Qt::WindowMinimized);
    main.globals().settings.set(Setting::Left, u"99999"_s);
    Q_EMIT main.window->findChild<QTimer *>(u"timPos"_s)->timeout({});
    QCOMPARE(main.globals().settings.text(Setting::Left), u"99999"_s);
}

void TestWindowPlacement::restoringAppliesTheStoredPosition()
{
    MainFixture main({}, false);
    place(main, {u"600"_s, u"450"_s, u"10500"_s, u"7500"_s});
    main.globals().RestoringFromLast = true;
    main.window->show();
    main.globals().RestoringFromLast = false;
    QCOMPARE(main.window->pos(), QPoint(40, 30));
    QCOMPARE(main.window->size(), QSize(700, 500));
    QVERIFY(!main.window->isMaximized());
    QCOMPARE(stored(main, "Width"), u"10500"_s);
    QCOMPARE(main.globals().settings.text(Setting::Left), u"600"_s);
}

void TestWindowPlacement::restoringWithoutAWidthMaximises()
{
    MainFixture main({}, false);
    place(main, {});
    main.globals().RestoringFromLast = true;
    main.window->show();
    main.globals().RestoringFromLast = false;
    QVERIFY(main.window->isMaximized());
    QCOMPARE(stored(main, "Width"), QString());
}

void TestWindowPlacement::restoringWithNumbersThatAreNoneKeepsTheWindowUsable()
{
    quillon::setScreenRooms([] { return QList<QRect>{QRect(0, 0, 1400, 1000)}; });
    const auto back = qScopeGuard([] { quillon::setScreenRooms({}); });
    MainFixture main({}, false);
    const QSize before = main.window->size();
    place(main, {u"left"_s, u"1e400"_s, u"wide"_s, u"-300"_s});
    main.globals().RestoringFromLast = true;
    const int faults = quillon::faultCount();
    main.window->show();
    main.globals().RestoringFromLast = false;
    QCOMPARE(main.window->size(), before);
    QVERIFY(quillon::faultCount() > faults);
}

void TestWindowPlacement::aPositionOffEveryScreenIsBroughtBack()
{
    MainFixture main({}, false);
    place(main, {u"900000"_s, u"900000"_s, u"10500"_s, u"7500"_s});
    main.globals().RestoringFromLast = true;
    main.window->show();
    main.globals().RestoringFromLast = false;
    QVERIFY(main.window->screen()->geometry().contains(main.window->frameGeometry()));
    QCOMPARE(main.window->size(), QSize(700, 500));
}

void TestWindowPlacement::startupMaxMaximises()
{
    MainFixture main([](MainFixture &m) { m.globals().settings.set(Setting::Startup, u"Max"_s); });
    QVERIFY(main.window->isMaximized());
    MainFixture last([](MainFixture &m) { m.globals().settings.set(Setting::Startup, u"Last"_s); });
    QVERIFY(!last.window->isMaximized());
}

void TestWindowPlacement::startupSysMinimisesAndTellsTheTray()
{
    MainFixture main([](MainFixture &m) { m.globals().settings.set(Setting::Startup, u"Sys"_s); });
    QVERIFY(main.window->isMinimized());
    QTRY_COMPARE(main.minimised, 1);
}

void TestWindowPlacement::theCloseBoxMinimises()
{
    MainFixture main;
    QVERIFY(!main.window->close());
    QVERIFY(main.window->isMinimized());
    QCOMPARE(main.minimised, 1);
    QCOMPARE(main.closed, 0);
}

void TestWindowPlacement::theCloseBoxLeavesTheStateOfAWindowThatTheTrayHides()
{
    MainFixture main([](MainFixture &m) {
        m.hooks.minimised = [&m] {
            ++m.minimised;
            m.window->hide();
        };
    });
    main.window->setWindowState(Qt::WindowMaximized);
    QVERIFY(!main.window->close());
    QCOMPARE(main.minimised, 1);
    QVERIFY(!main.window->isVisible());
    QCOMPARE(main.window->windowState() & (Qt::WindowMinimized | Qt::WindowMaximized), Qt::WindowMaximized);
}

void TestWindowPlacement::theExitTagLetsTheWindowClose()
{
    MainFixture main;
    main.window->Tag = u"EXITWITHMENU"_s;
    QVERIFY(main.window->close());
    QCOMPARE(main.closed, 1);
    QCOMPARE(main.window->Tag, QString());
    QVERIFY(!main.window->isVisible());
}

void TestWindowPlacement::aWindowThatWasClosedIsToldAgainWhenItIsMinimised()
{
    MainFixture main;
    main.window->Tag = u"exitwithmenu"_s; // another tag than that of the exit
    QVERIFY(!main.window->close());
    QCOMPARE(main.minimised, 1);
    main.window->setWindowState(Qt::WindowNoState);
    main.window->setWindowState(Qt::WindowMinimized);
    QCOMPARE(main.minimised, 2);
    main.window->hide();
    main.window->setWindowState(Qt::WindowNoState);
    QVERIFY(!main.window->close());
    QVERIFY2(!main.window->isMinimized(), "a window in the tray keeps its state");
    QCOMPARE(main.minimised, 2);
}

void TestWindowPlacement::aMoveBeforeTheTrayIsStored()
{
    MainFixture main;
    main.window->resize(700, 500);
    main.window->move(40, 30);
    QVERIFY(!main.window->close());
    QCOMPARE(stored(main, "Left"), twips(40));
    main.window->setWindowState(Qt::WindowNoState);
    main.window->move(50, 60);
    main.window->setWindowState(Qt::WindowMinimized);
    QCOMPARE(stored(main, "Left"), twips(50));
    QCOMPARE(stored(main, "Top"), twips(60));
}

QTEST_MAIN(TestWindowPlacement)
#include "test_windowplacement.moc"
