#pragma once

#include <QList>
#include <QMargins>
#include <QObject>
#include <QRect>

#include <functional>

class QScreen;
class QWidget;

namespace quillon {

/// What windows may cover of each screen, the primary one first: without panels and docks.
[[nodiscard]] QList<QRect> screenRooms();
/// Puts another source in place of the desktop's screens; an empty one brings these back.
void setScreenRooms(std::function<QList<QRect>()> source);

/// The room of the screen that the most of @p frame lies on, or of the primary one where no screen shows any of it; a
/// null one where there is no screen.
[[nodiscard]] QRect roomFor(const QRect &frame, const QList<QRect> &rooms);
/// Where a window with this frame goes so that it is seen whole. One that the rooms together show whole stays as it
/// is; any other is moved into roomFor() and made no larger than that.
[[nodiscard]] QRect fittedFrame(const QRect &frame, const QList<QRect> &rooms);

/// What the window manager adds to a window on each side; by the style's measures while that is not known yet.
[[nodiscard]] QMargins frameMargins(const QWidget *window);
/// Puts a window's frame at a place, also that of a window that is hidden after it was shown.
void moveFrame(QWidget *window, const QPoint &corner);
/// Moves a window into the screens, see fittedFrame(), and makes it smaller where it must.
void fitIntoScreens(QWidget *window);

/// Tells when screens have come, gone or changed what windows may cover of them.
class ScreenWatch : public QObject {
    Q_OBJECT

public:
    explicit ScreenWatch(QObject *parent);

Q_SIGNALS:
    void changed();

private:
    void watch(QScreen *screen);
};

} // namespace quillon
