#include "shell/trayicon.h"

#include "core/formnames.h"
#include "quillon/forms/formtexts.h"
#include "quillon/hook.h"
#include "shell/shelltexts.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QWindow>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr qsizetype tipBytes = 63; // the rest of the 64 is the terminating zero of the old structure

struct Forwarded {
    const char16_t *entry;
    const char16_t *mainItem;
    const char16_t *caption;
};

/// The entries that stand for commands of the main window, in the order of the menu.
constexpr std::array<Forwarded, 13> forwarded = {{
    {u"menth", u"menhh", helpItem},
    {u"mento", u"menho", flowchartItem},
    {u"mentf", u"menhf", questionsItem},
    {u"mentw", u"menhw", pageItem},
    {u"mentb", u"menhb", blogItem},
    {u"mentr", u"menhr", feedItem},
    {u"mentc", u"menhc", contactItem},
    {u"mentl", u"menhl", versionItem},
    {u"mentt", u"menht", supportItem},
    {u"mente", u"menhe", recommendItem},
    {u"menta", u"menha", aboutItem},
    {u"mentx", u"menfx", exitItem},
    {u"mentu", u"menfu", exitKeepingItem},
}};

constexpr int watchMilliseconds = 2000;
const QString iconWindow = u"QSystemTrayIconSysWindow"_s; // as Qt calls it

QString productTip()
{
    QByteArray tip = QGuiApplication::applicationDisplayName().toUtf8().left(tipBytes);
    QString text = QString::fromUtf8(tip);
    while (text.endsWith(QChar::ReplacementCharacter)) {
        text.chop(1); // a letter that the limit cut through
    }
    return text;
}

QIcon visibleIcon(const QWidget *window)
{
    const QIcon own = window->windowIcon();
    return own.isNull() ? QApplication::style()->standardIcon(QStyle::SP_DesktopIcon) : own;
}

bool isIconWindow(const QWidget *window)
{
    const QWindow *handle = window->windowHandle();
    return handle && handle->objectName() == iconWindow;
}

} // namespace

TrayIcon::TrayIcon(QWidget *window, Hooks hooks, const QString &menusFile)
    : m_window(window), m_hooks(std::move(hooks)), m_menu(std::make_unique<QMenu>()),
      m_icon(std::make_unique<QSystemTrayIcon>())
{
    quillon::requireHook(m_hooks.mainItem, u"TrayIcon::mainItem"_s);
    quillon::requireHook(m_hooks.setRestoring, u"TrayIcon::setRestoring"_s);
    quillon::requireHook(m_hooks.trayAvailable, u"TrayIcon::trayAvailable"_s);
    m_watch.setObjectName(u"watch"_s);
    m_watch.setInterval(watchMilliseconds);
    connect(&m_watch, &QTimer::timeout, this, [this] {
        if (!m_hooks.trayAvailable()) {
            restore(); // the tray has gone, and the icon in it was the only way back
        }
    });
    buildMenu();
    quillon::applyMenuSection(m_menu.get(), senderForm, menusFile);
    m_icon->setContextMenu(m_menu.get());
    m_icon->setToolTip(productTip());
    connect(m_icon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger) {
            restore();
        }
    });
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::buildMenu()
{
    m_menu->setObjectName(u"ment"_s);
    QAction *show = m_menu->addAction(QString::fromUtf16(showItem));
    show->setObjectName(u"ments"_s);
    connect(show, &QAction::triggered, this, &TrayIcon::restore);
    m_menu->addSeparator();
    for (const Forwarded &line : forwarded) {
        const QString mainItem = QString::fromUtf16(line.mainItem);
        if (mainItem == u"menfx") {
            m_menu->addSeparator();
        }
        QAction *entry = m_menu->addAction(QString::fromUtf16(line.caption));
        entry->setObjectName(QString::fromUtf16(line.entry));
        connect(entry, &QAction::triggered, this, [this, mainItem] {
            if (QAction *item = m_hooks.mainItem(mainItem)) {
                item->trigger();
            }
        });
    }
    connect(m_menu.get(), &QMenu::aboutToShow, this, &TrayIcon::updateEntries);
}

void TrayIcon::updateEntries()
{
    for (const Forwarded &line : forwarded) {
        const QAction *item = m_hooks.mainItem(QString::fromUtf16(line.mainItem));
        m_menu->findChild<QAction *>(QString::fromUtf16(line.entry))->setEnabled(item && item->isEnabled());
    }
}

bool TrayIcon::minimised()
{
    if (inTray()) {
        return true;
    }
    if (!m_hooks.trayAvailable()) {
        return false;
    }
    updateEntries();
    m_icon->setIcon(visibleIcon(m_window));
    setWatching(true); // a modal form that is open already blocks the icon from its first moment
    m_icon->show();
    m_window->hide();
    return true;
}

void TrayIcon::restore()
{
    if (!inTray()) {
        return;
    }
    // The window's own handling of the change of state must keep still meanwhile.
    m_hooks.setRestoring(true);
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    bringBackOthers();
    setWatching(false);
    m_icon->hide();
    m_hooks.setRestoring(false);
}

void TrayIcon::bringBackOthers() const
{
    QWidget *waiting = QApplication::activeModalWidget();
    QWidgetList others;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        const bool managed = window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
        if (window != m_window && window != waiting && window->isVisible() && managed && !isIconWindow(window)) {
            others.append(window);
        }
    }
    if (waiting) {
        others.append(waiting);
    }
    for (QWidget *window : others) {
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
        window->raise();
    }
    if (waiting) {
        waiting->activateWindow();
    }
}

void TrayIcon::setWatching(bool on)
{
    if (on) {
        m_watch.start();
        qApp->installEventFilter(this);
    } else {
        m_watch.stop();
        qApp->removeEventFilter(this);
    }
}

bool TrayIcon::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked && watched->objectName() == iconWindow) {
        if (auto *window = qobject_cast<QWindow *>(watched)) {
            window->setTransientParent(QGuiApplication::modalWindow());
        }
    }
    return QObject::eventFilter(watched, event);
}

void TrayIcon::takeDown()
{
    setWatching(false);
    m_icon->hide();
}

bool TrayIcon::inTray() const
{
    return m_icon->isVisible();
}

} // namespace corvane
