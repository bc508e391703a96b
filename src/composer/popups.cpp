#include "composer/popups.h"

#include <QComboBox>
#include <QMainWindow>
#include <QMouseEvent>
#include <QTabWidget>

#include <algorithm>

namespace corvane {

PopUps::PopUps(QMainWindow *form, std::vector<QWidget *> popUps) : QObject(form), m_popUps(std::move(popUps))
{
    hide();
    form->installEventFilter(this);
    const QList<QWidget *> widgets = form->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (!widget->isWindow()) {
            widget->installEventFilter(this);
        }
        if (auto *combo = qobject_cast<QComboBox *>(widget)) {
            connect(combo, &QComboBox::activated, this, &PopUps::hide);
        } else if (auto *tabs = qobject_cast<QTabWidget *>(widget)) {
            connect(tabs, &QTabWidget::currentChanged, this, &PopUps::hide);
        }
    }
}

void PopUps::hide() const
{
    for (QWidget *popUp : m_popUps) {
        popUp->hide();
    }
}

bool PopUps::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress) {
        // By its place, since a press that a pop-up leaves alone goes on to the window below it.
        const QPoint place = static_cast<QMouseEvent *>(event)->globalPosition().toPoint();
        const bool inside = std::any_of(m_popUps.begin(), m_popUps.end(), [place](const QWidget *popUp) {
            return popUp->isVisible() && popUp->rect().contains(popUp->mapFromGlobal(place));
        });
        if (!inside) {
            hide();
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace corvane
