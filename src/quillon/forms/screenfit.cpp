#include "quillon/forms/screenfit.h"

#include <QGuiApplication>
#include <QRegion>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace quillon {

namespace {

using Source = std::function<QList<QRect>()>;

Source &otherSource()
{
    static Source source;
    return source;
}

int area(const QRect &rect)
{
    return rect.width() * rect.height();
}

} // namespace

QList<QRect> screenRooms()
{
    if (otherSource()) {
        return otherSource()();
    }
    QList<QRect> rooms;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        rooms.append(screen->availableGeometry());
    }
    return rooms;
}

void setScreenRooms(Source source)
{
    otherSource() = std::move(source);
}

QRect roomFor(const QRect &frame, const QList<QRect> &rooms)
{
    const auto shown = [&frame](const QRect &room) {
        const QRect part = room.intersected(frame);
        return part.isEmpty() ? 0 : area(part);
    };
    const auto found = std::max_element(rooms.begin(), rooms.end(),
                                        [&](const QRect &a, const QRect &b) { return shown(a) < shown(b); });
    return found == rooms.end() ? QRect() : *found;
}

QRect fittedFrame(const QRect &frame, const QList<QRect> &rooms)
{
    QRegion hidden(frame);
    for (const QRect &room : rooms) {
        hidden -= room;
    }
    const QRect room = roomFor(frame, rooms);
    if (hidden.isEmpty() || room.isEmpty()) {
        return frame;
    }
    const QSize size = frame.size().boundedTo(room.size());
    return {{std::clamp(frame.x(), room.x(), room.x() + room.width() - size.width()),
             std::clamp(frame.y(), room.y(), room.y() + room.height() - size.height())},
            size};
}

QMargins frameMargins(const QWidget *window)
{
    if (const QWindow *handle = window->windowHandle(); handle && !handle->frameMargins().isNull()) {
        return handle->frameMargins();
    }
    const int side = window->style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth, nullptr, window);
    return {side, window->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, window), side, side};
}

void moveFrame(QWidget *window, const QPoint &corner)
{
    QWindow *handle = window->windowHandle();
    if (handle && !window->isVisible()) {
        // It has lost its frame: to the widget the place is that of the inside, and where that is right already, the
        // window manager would not be asked for it.
        handle->setFramePosition(corner);
        window->setAttribute(Qt::WA_Moved);
    } else if (window->pos() != corner || !window->testAttribute(Qt::WA_Moved)) {
        window->move(corner);
    }
}

void fitIntoScreens(QWidget *window)
{
    const QMargins margins = frameMargins(window);
    const QRect frame(window->pos(), window->size().grownBy(margins));
    const QRect fitted = fittedFrame(frame, screenRooms());
    if (fitted.size() != frame.size()) {
        window->resize(fitted.size().shrunkBy(margins));
    }
    if (fitted.topLeft() != frame.topLeft()) {
        window->move(fitted.topLeft());
    }
}

ScreenWatch::ScreenWatch(QObject *parent) : QObject(parent)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (QScreen *screen : screens) {
        watch(screen);
    }
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        watch(screen);
        Q_EMIT changed();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &ScreenWatch::changed);
}

void ScreenWatch::watch(QScreen *screen)
{
    connect(screen, &QScreen::availableGeometryChanged, this, &ScreenWatch::changed);
}

} // namespace quillon
