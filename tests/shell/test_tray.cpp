#include "quillon/fault.h"
#include "shell/trayicon.h"

#include <QAction>
#include <QDialog>
#include <QFile>
#include <QMainWindow>
#include <QMenu>
#include <QShowEvent>
#include <QSystemTrayIcon>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <array>

using namespace Qt::StringLiterals;
using corvane::TrayIcon;

namespace {

/// Each entry of the tray's menu and the command that it stands for.
const std::array<std::pair<QString, QString>, 13> pairs = {{
    {u"menth"_s, u"menhh"_s},
    {u"mento"_s, u"menho"_s},
    {u"mentf"_s, u"menhf"_s},
    {u"mentw"_s, u"menhw"_s},
    {u"mentb"_s, u"menhb"_s},
    {u"mentr"_s, u"menhr"_s},
    {u"mentc"_s, u"menhc"_s},
    {u"mentl"_s, u"menhl"_s},
    {u"mentt"_s, u"menht"_s},
    {u"mente"_s, u"menhe"_s},
    {u"menta"_s, u"menha"_s},
    {u"mentx"_s, u"menfx"_s},
    {u"mentu"_s, u"menfu"_s},
}};

/// Records whether it is shown while the restoring flag is set.
class Window : public QMainWindow {
    Q_OBJECT

public:
    bool restoring = false;
    QList<bool> shows;

protected:
    void showEvent(QShowEvent *event) override
    {
        // The window system adds an event of its own when a window is no longer minimised.
        if (!event->spontaneous()) {
            shows.append(restoring);
        }
    }
};

} // namespace

class TestTray : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void minimisingHidesTheWindowBehindTheIcon();
    void withoutATrayTheWindowStaysMinimised();
    void aLeftClickBringsTheWindowBack();
    void aRightClickLeavesTheWindowWhereItIs();
    void theMenuBringsTheWindowBack();
    void theFlagIsSetWhileTheWindowIsShown();
    void aMaximisedWindowComesBackMaximised();
    void aHookThatIsNotSetIsAFaultByItsName();
    void aSecondMinimiseAddsTheIconAgain();
    void minimisingTwiceIsOneMinimise();
    void entriesForwardToTheMainCommands();
    void entriesAreDisabledWithTheirCommands();
    void captionsComeFromTheDialogsSection();
    void everyEntryHasACaptionOfItsOwn();
    void takingDownRemovesTheIcon();
    void theMenuHasItsOrder();
    void theTipIsTheProductsTitleWithinItsBytes_data();
    void theTipIsTheProductsTitleWithinItsBytes();
    void theIconIsTheWindowsOwn();
    void onlyTheLeftButtonBringsTheWindowBack();
    void theWatchRunsInTheTrayOnly();
    void theWindowComesBackWhenTheTrayGoes();
    void aModalFormDoesNotBlockTheIcon();
    void whatIsOpenComesBackWithTheWindow();

private:
    TrayIcon::Hooks hooks();
    QAction *entry(const QString &name) { return m_tray->menu()->findChild<QAction *>(name); }

    std::unique_ptr<Window> m_window;
    std::unique_ptr<TrayIcon> m_tray;
    bool m_available = true;
    QStringList m_triggered;
    QTemporaryDir m_folder;
};

TrayIcon::Hooks TestTray::hooks()
{
    TrayIcon::Hooks hooks;
    hooks.mainItem = [this](const QString &name) { return m_window->findChild<QAction *>(name); };
    hooks.setRestoring = [this](bool on) { m_window->restoring = on; };
    hooks.trayAvailable = [this] { return m_available; };
    return hooks;
}

void TestTray::init()
{
    m_available = true;
    m_triggered.clear();
    m_window = std::make_unique<Window>();
    for (const auto &[name, main] : pairs) {
        auto *item = new QAction(m_window.get());
        item->setObjectName(main);
        connect(item, &QAction::triggered, this, [this, item] { m_triggered.append(item->objectName()); });
    }
    m_tray = std::make_unique<TrayIcon>(m_window.get(), hooks(), m_folder.filePath(u"none.dll"_s));
    m_window->showMinimized();
    m_window->shows.clear();
}

void TestTray::cleanup()
{
    m_tray.reset();
    m_window.reset();
}

void TestTray::minimisingHidesTheWindowBehindTheIcon()
{
    QVERIFY(!m_tray->inTray());
    QVERIFY(m_tray->minimised());
    QVERIFY(m_tray->inTray());
    QVERIFY(!m_window->isVisible());
    QVERIFY(!m_tray->icon()->icon().isNull());
}

void TestTray::theWindowComesBackWhenTheTrayGoes()
{
    auto *watch = m_tray->findChild<QTimer *>(u"watch"_s);
    QVERIFY(watch && !watch->isActive());
    QVERIFY(m_tray->minimised());
    QVERIFY(watch->isActive());
    watch->setInterval(0);
    QCoreApplication::processEvents();
    QVERIFY(!m_window->isVisible());
    m_available = false;
    QTRY_VERIFY(m_window->isVisible());
    QVERIFY(!watch->isActive());
}

void TestTray::withoutATrayTheWindowStaysMinimised()
{
    m_available = false;
    QVERIFY(!m_tray->minimised());
    QVERIFY(!m_tray->inTray());
    QVERIFY(m_window->isVisible());
    QVERIFY(m_window->isMinimized());
}

void TestTray::aLeftClickBringsTheWindowBack()
{
    m_tray->minimised();
    Q_EMIT m_tray->icon()->activated(QSystemTrayIcon::Trigger);
    QVERIFY(m_window->isVisible());
    QVERIFY(!m_window->isMinimized());
    QVERIFY(!m_tray->inTray());
}

void TestTray::aRightClickLeavesTheWindowWhereItIs()
{
    m_tray->minimised();
    QCOMPARE(m_tray->icon()->contextMenu(), m_tray->menu());
    QCOMPARE(m_tray->menu()->objectName(), u"ment"_s);
    Q_EMIT m_tray->icon()->activated(QSystemTrayIcon::Context);
    QVERIFY(!m_window->isVisible());
    QVERIFY(m_tray->inTray());
}

void TestTray::theMenuBringsTheWindowBack()
{
    m_tray->minimised();
    entry(u"ments"_s)->trigger();
    QVERIFY(m_window->isVisible());
    QVERIFY(!m_window->isMinimized());
    QVERIFY(!m_tray->inTray());
}

void TestTray::theFlagIsSetWhileTheWindowIsShown()
{
    m_tray->minimised();
    entry(u"ments"_s)->trigger();
    QCOMPARE(m_window->shows, QList<bool>{true});
    QVERIFY(!m_window->restoring);

    m_window->shows.clear();
    m_tray->minimised();
    Q_EMIT m_tray->icon()->activated(QSystemTrayIcon::Trigger);
    QCOMPARE(m_window->shows, QList<bool>{true});
    QVERIFY(!m_window->restoring);
}

void TestTray::aMaximisedWindowComesBackMaximised()
{
    m_window->setWindowState(Qt::WindowMinimized | Qt::WindowMaximized);
    m_tray->minimised();
    m_tray->restore();
    QVERIFY(m_window->isVisible());
    QVERIFY(m_window->isMaximized());
    QVERIFY(!m_window->isMinimized());
}

void TestTray::aHookThatIsNotSetIsAFaultByItsName()
{
    for (const char *name : {"mainItem", "setRestoring", "trayAvailable"}) {
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: TrayIcon::"_s + QString::fromLatin1(name)));
    }
    const int before = quillon::faultCount();
    TrayIcon tray(m_window.get(), {}, QString());
    QCOMPARE(quillon::faultCount() - before, 3);
    QVERIFY(!tray.minimised());
}

void TestTray::aSecondMinimiseAddsTheIconAgain()
{
    m_tray->minimised();
    m_tray->restore();
    m_window->showMinimized();
    QVERIFY(m_tray->minimised());
    QVERIFY(m_tray->inTray());
    QVERIFY(!m_window->isVisible());
}

void TestTray::minimisingTwiceIsOneMinimise()
{
    QVERIFY(m_tray->minimised());
    QVERIFY(m_tray->minimised());
    m_tray->restore();
    QVERIFY(!m_tray->inTray());
    QCOMPARE(m_window->shows.size(), 1);
    m_tray->restore();
    QCOMPARE(m_window->shows.size(), 1);
}

void TestTray::entriesForwardToTheMainCommands()
{
    m_tray->minimised();
    for (const auto &[name, main] : pairs) {
        m_triggered.clear();
        QVERIFY2(entry(name), qPrintable(name));
        entry(name)->trigger();
        QCOMPARE(m_triggered, QStringList{main});
    }
}

void TestTray::entriesAreDisabledWithTheirCommands()
{
    m_window->findChild<QAction *>(u"menhl"_s)->setEnabled(false);
    delete m_window->findChild<QAction *>(u"menha"_s);
    m_tray->minimised();
    QVERIFY(!entry(u"mentl"_s)->isEnabled());
    QVERIFY(!entry(u"menta"_s)->isEnabled());
    QVERIFY(entry(u"mentx"_s)->isEnabled());
    QVERIFY(entry(u"ments"_s)->isEnabled());

    m_window->findChild<QAction *>(u"menhl"_s)->setEnabled(true);
    Q_EMIT m_tray->menu()->aboutToShow();
    QVERIFY(entry(u"mentl"_s)->isEnabled());
}

void TestTray::captionsComeFromTheDialogsSection()
{
    QFile file(m_folder.filePath(u"menus.dll"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[frmPubSender]\r\nments=&Zeigen\r\nmentx=&Beenden\r\n[frmPubMain]\r\nmenta=falsch\r\n");
    file.close();
    m_tray = std::make_unique<TrayIcon>(m_window.get(), hooks(), file.fileName());
    QCOMPARE(entry(u"ments"_s)->text(), u"&Zeigen"_s);
    QCOMPARE(entry(u"mentx"_s)->text(), u"&Beenden"_s);
    QCOMPARE(entry(u"menta"_s)->text(), u"&About Corvane"_s);
}

void TestTray::everyEntryHasACaptionOfItsOwn()
{
    QStringList captions;
    QStringList mnemonics;
    const QList<QAction *> items = m_tray->menu()->actions();
    for (const QAction *item : items) {
        if (!item->isSeparator()) {
            captions.append(item->text());
            mnemonics.append(item->text().mid(item->text().indexOf(u'&') + 1, 1).toUpper());
        }
    }
    QCOMPARE(captions.size(), 14);
    QCOMPARE(captions.removeDuplicates(), 0);
    QCOMPARE(mnemonics.removeDuplicates(), 0);
}

void TestTray::takingDownRemovesTheIcon()
{
    m_tray->minimised();
    m_tray->takeDown();
    QVERIFY(!m_tray->inTray());
    QVERIFY(!m_window->isVisible());
    m_tray->takeDown();
    QVERIFY(!m_tray->inTray());
}

void TestTray::theMenuHasItsOrder()
{
    QStringList names;
    const QList<QAction *> items = m_tray->menu()->actions();
    for (const QAction *item : items) {
        names.append(item->isSeparator() ? u"-"_s : item->objectName());
    }
    QStringList expected = {u"ments"_s, u"-"_s};
    for (const auto &[name, main] : pairs) {
        if (name == u"mentx") {
            expected.append(u"-"_s);
        }
        expected.append(name);
    }
    QCOMPARE(names, expected);
}

void TestTray::theTipIsTheProductsTitleWithinItsBytes_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("tip");
    QTest::newRow("short") << u"Corvane"_s << u"Corvane"_s;
    QTest::newRow("63 bytes") << QString(63, u'x') << QString(63, u'x');
    QTest::newRow("64 bytes") << QString(64, u'x') << QString(63, u'x');
    QTest::newRow("a letter up to the limit") << QString(61, u'x') + u'é' << QString(61, u'x') + u'é';
    QTest::newRow("a letter over the limit") << QString(62, u'x') + u"éy"_s << QString(62, u'x');
    QTest::newRow("a long letter over the limit") << QString(60, u'x') + u"\U0001F426"_s << QString(60, u'x');
}

void TestTray::theTipIsTheProductsTitleWithinItsBytes()
{
    QFETCH(const QString, title);
    QGuiApplication::setApplicationDisplayName(title);
    const TrayIcon tray(m_window.get(), hooks(), QString());
    QGuiApplication::setApplicationDisplayName(QString());
    QTEST(tray.icon()->toolTip(), "tip");
}

void TestTray::theIconIsTheWindowsOwn()
{
    m_tray->minimised();
    const QImage standard = m_tray->icon()->icon().pixmap(16).toImage();
    m_tray->restore();
    QPixmap red(16, 16);
    red.fill(Qt::red);
    m_window->setWindowIcon(red);
    m_tray->minimised();
    const QImage own = m_tray->icon()->icon().pixmap(16).toImage();
    QCOMPARE(own.pixelColor(8, 8), QColor(Qt::red));
    QVERIFY(standard != own);
}

void TestTray::onlyTheLeftButtonBringsTheWindowBack()
{
    m_tray->minimised();
    for (const auto reason : {QSystemTrayIcon::Unknown, QSystemTrayIcon::Context, QSystemTrayIcon::MiddleClick}) {
        Q_EMIT m_tray->icon()->activated(reason);
        QVERIFY(m_tray->inTray());
        QVERIFY(!m_window->isVisible());
    }
    Q_EMIT m_tray->icon()->activated(QSystemTrayIcon::Trigger);
    QVERIFY(!m_tray->inTray());
}

void TestTray::theWatchRunsInTheTrayOnly()
{
    const auto *watch = m_tray->findChild<QTimer *>(u"watch"_s);
    QCOMPARE(watch->interval(), 2000);
    m_tray->minimised();
    QVERIFY(watch->isActive());
    m_tray->restore();
    QVERIFY(!watch->isActive());
    m_tray->minimised();
    m_tray->takeDown();
    QVERIFY(!watch->isActive());
    m_available = false;
    QVERIFY(!m_tray->minimised());
    QVERIFY(!watch->isActive());
}

void TestTray::aModalFormDoesNotBlockTheIcon()
{
    class Pressed : public QWindow {
    public:
        explicit Pressed(const QString &name)
        {
            setObjectName(name);
            resize(20, 20);
            create();
        }
        /// Whether a press reaches it.
        bool hears()
        {
            m_presses = 0;
            QTest::mouseClick(this, Qt::LeftButton);
            return m_presses > 0;
        }

    protected:
        void mousePressEvent(QMouseEvent * /*event*/) override { ++m_presses; }

    private:
        int m_presses = 0;
    };
    m_tray->minimised();
    // The window that Qt makes for an icon in a tray which takes in windows; the offscreen desktop has no such tray.
    Pressed icon(u"QSystemTrayIconSysWindow"_s);
    Pressed other(u"otherWindow"_s);
    QVERIFY(icon.hears() && other.hears());
    QDialog form;
    form.setModal(true);
    form.show();
    QVERIFY(icon.hears() && !other.hears());
    QDialog above; // a box over the form
    above.setModal(true);
    above.show();
    QVERIFY(icon.hears());
    above.hide();
    QVERIFY(icon.hears());
    m_tray->restore();
    form.hide();
    icon.setTransientParent(nullptr);
    form.show();
    QVERIFY2(!icon.hears(), "only in the tray the icon has to be reached");
    form.hide();
    m_tray->minimised();
    m_tray->takeDown();
    form.show();
    QVERIFY(!icon.hears());
}

void TestTray::whatIsOpenComesBackWithTheWindow()
{
    QDialog progress;
    progress.show();
    QDialog options;
    options.setModal(true);
    options.show();
    QDialog closed;
    QWidget tip(nullptr, Qt::ToolTip);
    tip.show();
    progress.setWindowState(Qt::WindowMinimized);
    options.setWindowState(Qt::WindowMinimized | Qt::WindowMaximized);
    tip.setWindowState(Qt::WindowMinimized);
    m_tray->minimised();
    m_tray->restore();
    QVERIFY(!m_window->isMinimized());
    QVERIFY(!progress.isMinimized());
    QCOMPARE(options.windowState() & (Qt::WindowMinimized | Qt::WindowMaximized), Qt::WindowMaximized);
    QVERIFY(!closed.isVisible());
    QVERIFY(tip.isMinimized());                     // no window of the user's
    QVERIFY(QTest::qWaitForWindowActive(&options)); // what waits for an answer has the keyboard
    options.hide();
    m_tray->minimised();
    m_tray->restore();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

QTEST_MAIN(TestTray)
#include "test_tray.moc"
