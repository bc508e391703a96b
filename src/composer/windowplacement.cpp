#include "composer/windowplacement.h"

#include "core/settings.h"
#include "quillon/fault.h"
#include "quillon/forms/screenfit.h"

#include <QTimer>
#include <QWidget>

#include <array>
#include <cmath>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr double farthestTwips = 1e9; // what still can be reckoned with as a whole number

/// A stored value in pixels; nothing, with a fault, for one that is no number.
std::optional<int> toPixels(const SettingsMemory &settings, NumberSetting key)
{
    const std::optional<double> twips = settings.number(key);
    if (!twips || std::abs(*twips) > farthestTwips) {
        quillon::reportFault(u"a window cannot stand at "_s + settings.text(key.key));
        return {};
    }
    return static_cast<int>(std::lround(*twips / WindowPlacement::TwipsPerPixel));
}

} // namespace

WindowPlacement::WindowPlacement(QWidget *window, ApplicationGlobals &globals)
    : QObject(window), m_window(window), m_globals(globals)
{
    auto *timer = new QTimer(window);
    timer->setObjectName(u"timPos"_s);
    connect(timer, &QTimer::timeout, this, &WindowPlacement::checkPosition);
    connect(new quillon::ScreenWatch(this), &quillon::ScreenWatch::changed, this, &WindowPlacement::screensChanged);
}

void WindowPlacement::resized()
{
    if (m_restoring) {
        return; // the restoring itself changes size and state
    }
    if (m_globals.RestoringFromLast) {
        m_restoring = true;
        restore();
        m_restoring = false;
    } else if (m_window->isMaximized() && !m_window->isMinimized()) {
        remember({}, {}, {}, {});
    } else if (!m_window->isMinimized()) {
        remember(inTwips(m_window->x()), inTwips(m_window->y()), inTwips(m_window->width()),
                 inTwips(m_window->height()));
    }
    if (!m_window->isMinimized()) {
        // One rewrite for all four, and none where nothing changes: a drag of the frame brings many resizes.
        storeFromMemory(m_globals, {Setting::Left, Setting::Top, Setting::Width, Setting::Height});
    }
}

void WindowPlacement::remember(const QString &left, const QString &top, const QString &width, const QString &height)
{
    m_globals.settings.set(Setting::Left, left);
    m_globals.settings.set(Setting::Top, top);
    m_globals.settings.set(Setting::Width, width);
    m_globals.settings.set(Setting::Height, height);
}

void WindowPlacement::restore()
{
    const SettingsMemory &settings = m_globals.settings;
    if (settings.text(Setting::Width).isEmpty()) {
        m_window->setWindowState((m_window->windowState() & ~Qt::WindowMinimized) | Qt::WindowMaximized);
        return;
    }
    m_window->setWindowState(m_window->windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized));
    QRect place(m_window->pos(), m_window->size());
    place.moveLeft(toPixels(settings, Setting::Left).value_or(place.left()));
    place.moveTop(toPixels(settings, Setting::Top).value_or(place.top()));
    if (const int width = toPixels(settings, Setting::Width).value_or(0); width > 0) {
        place.setWidth(width);
    }
    if (const int height = toPixels(settings, Setting::Height).value_or(0); height > 0) {
        place.setHeight(height);
    }
    const QMargins margins = quillon::frameMargins(m_window);
    const QRect frame = quillon::fittedFrame(place.marginsAdded(margins).translated(margins.left(), margins.top()),
                                             quillon::screenRooms());
    m_window->resize(frame.size().shrunkBy(margins));
    quillon::moveFrame(m_window, frame.topLeft());
}

void WindowPlacement::leaving()
{
    if (!m_window->isMaximized()) {
        storePosition();
    }
}

void WindowPlacement::screensChanged()
{
    constexpr Qt::WindowStates placedByOthers = Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen;
    if (m_window->isVisible() && !(m_window->windowState() & placedByOthers)) {
        quillon::fitIntoScreens(m_window);
    }
}

void WindowPlacement::checkPosition()
{
    if (!m_window->isMinimized()) {
        storePosition();
    }
}

void WindowPlacement::storePosition()
{
    const std::array<std::pair<Setting, int>, 2> present = {
        {{Setting::Left, m_window->x()}, {Setting::Top, m_window->y()}}};
    for (const auto &[key, pixels] : present) {
        if (m_globals.settings.textOrStandard(key) != inTwips(pixels)) {
            storeSetting(m_globals, key, inTwips(pixels));
        }
    }
}

} // namespace corvane
