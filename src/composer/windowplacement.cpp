#include "composer/windowplacement.h"

#include "core/settings.h"
#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWidget>

#include <array>
#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

const QString section = u"Position"_s;

enum Value { Left, Top, Width, Height };
constexpr std::array<const char16_t *, 4> keys = {u"Left", u"Top", u"Width", u"Height"};

constexpr double farthestTwips = 1e9; // what still can be reckoned with as a whole number

/// A stored value in pixels; nothing, with a fault, for one that is no number.
std::optional<int> toPixels(const QString &stored)
{
    bool number = false;
    const double twips = stored.isEmpty() ? 0 : stored.toDouble(&number);
    if ((!number && !stored.isEmpty()) || !std::isfinite(twips) || std::abs(twips) > farthestTwips) {
        quillon::reportFault(u"a window cannot stand at "_s + stored);
        return {};
    }
    return static_cast<int>(std::lround(twips / WindowPlacement::TwipsPerPixel));
}

/// The place itself when some of the window would be seen there, else the nearest screen's corner: a screen that the
/// window stood on may be gone.
QPoint onScreen(const QRect &place)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        if (screen->availableGeometry().intersects(place)) {
            return place.topLeft();
        }
    }
    return screens.isEmpty() ? place.topLeft() : QGuiApplication::primaryScreen()->availableGeometry().topLeft();
}

} // namespace

WindowPlacement::WindowPlacement(QWidget *window, ApplicationGlobals &globals)
    : QObject(window), m_window(window), m_globals(globals)
{
    auto *timer = new QTimer(window);
    timer->setObjectName(u"timPos"_s);
    connect(timer, &QTimer::timeout, this, &WindowPlacement::checkPosition);
}

void WindowPlacement::resized()
{
    if (m_restoring) {
        return; // the restoring itself changes size and state
    }
    auto &stored = m_globals.settings.position;
    if (m_globals.RestoringFromLast) {
        m_restoring = true;
        restore();
        m_restoring = false;
    } else if (m_window->isMaximized() && !m_window->isMinimized()) {
        stored.fill(QString());
    } else if (!m_window->isMinimized()) {
        stored = {inTwips(m_window->x()), inTwips(m_window->y()), inTwips(m_window->width()),
                  inTwips(m_window->height())};
    }
    if (!m_window->isMinimized()) {
        storeAll();
    }
}

void WindowPlacement::storeAll() const
{
    // One rewrite for all four, and none where nothing changes: a drag of the frame brings many resizes.
    quillon::SettingsFile file(m_globals.paths.optionsFile);
    bool differs = false;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const QString key = QString::fromUtf16(keys[i]);
        const QString &value = m_globals.settings.position[i];
        if (!file.contains(section, key) || file.value(section, key) != value) {
            file.setValue(section, key, value);
            differs = true;
        }
    }
    if (differs) {
        file.save();
    }
}

void WindowPlacement::restore()
{
    const auto &stored = m_globals.settings.position;
    if (stored[Width].isEmpty()) {
        m_window->setWindowState((m_window->windowState() & ~Qt::WindowMinimized) | Qt::WindowMaximized);
        return;
    }
    m_window->setWindowState(m_window->windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized));
    QRect place(m_window->pos(), m_window->size());
    place.moveLeft(toPixels(stored[Left]).value_or(place.left()));
    place.moveTop(toPixels(stored[Top]).value_or(place.top()));
    if (const int width = toPixels(stored[Width]).value_or(0); width > 0) {
        place.setWidth(width);
    }
    if (const int height = toPixels(stored[Height]).value_or(0); height > 0) {
        place.setHeight(height);
    }
    // A place that is right already is not set again: between creation and showing, Qt takes it for that of the inside.
    if (const QPoint corner = onScreen(place); m_window->pos() != corner || !m_window->testAttribute(Qt::WA_Moved)) {
        m_window->move(corner);
    }
    m_window->resize(place.size());
}

void WindowPlacement::checkPosition()
{
    if (m_window->isMinimized()) {
        return;
    }
    const std::array<int, 2> present = {m_window->x(), m_window->y()};
    for (std::size_t i = 0; i < present.size(); ++i) {
        const QString &stored = m_globals.settings.position[i];
        if ((stored.isEmpty() ? u"0"_s : stored) != inTwips(present[i])) {
            storeSetting(m_globals, section, QString::fromUtf16(keys[i]), inTwips(present[i]));
        }
    }
}

} // namespace corvane
