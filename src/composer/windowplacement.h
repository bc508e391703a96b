#pragma once

#include "core/globals.h"

#include <QObject>

class QTimer;
class QWidget;

namespace corvane {

/// Remembers where the main window stands, in twips (15 to a pixel), and puts it there again. A maximised window is
/// remembered by four empty values. A window is never put where its title bar is out of reach.
class WindowPlacement : public QObject {
    Q_OBJECT

public:
    static constexpr int TwipsPerPixel = 15;

    /// The timer `timPos` is made here; it stands still until somebody starts it.
    WindowPlacement(QWidget *window, ApplicationGlobals &globals);

    /// What follows every change of the window's size or state.
    void resized();
    /// What the timer does: a move raises no resize.
    void checkPosition();
    /// To be called before the window goes into the tray: a move that the timer has not seen yet is stored.
    void leaving();

private:
    void restore();
    /// Screens are not what they were: a window in its normal state is brought back into them.
    void screensChanged();
    void storePosition();
    /// In memory, as texts in twips.
    void remember(const QString &left, const QString &top, const QString &width, const QString &height);
    [[nodiscard]] QString inTwips(int pixels) const { return QString::number(pixels * TwipsPerPixel); }

    QWidget *m_window;
    ApplicationGlobals &m_globals;
    bool m_restoring = false;
};

} // namespace corvane
