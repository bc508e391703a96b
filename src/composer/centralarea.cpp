#include "composer/centralarea.h"

#include "quillon/forms/screenfit.h"

#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

namespace corvane {

CentralArea::CentralArea(QMainWindow *window) : ContentArea(window, window->takeCentralWidget()), m_window(window)
{
    window->setCentralWidget(this);
    connect(new quillon::ScreenWatch(this), &quillon::ScreenWatch::changed, this, &CentralArea::updateGeometry);
}

QSize CentralArea::minimumSizeHint() const
{
    const QSize least = needed();
    QSize room = quillon::roomFor(m_window->frameGeometry(), quillon::screenRooms())
                     .size()
                     .shrunkBy(quillon::frameMargins(m_window));
    for (const QWidget *bar :
         {static_cast<QWidget *>(m_window->menuBar()), static_cast<QWidget *>(m_window->statusBar()),
          static_cast<QWidget *>(m_window->findChild<QToolBar *>())}) {
        room.rheight() -= bar->isHidden() ? 0 : bar->sizeHint().height();
    }
    const int bar = least.height() > room.height() ? barWidth() : 0;
    return (least + QSize(bar, 0)).boundedTo(room);
}

} // namespace corvane
