#include "quillon/forms/scrollingform.h"

#include "quillon/forms/contentarea.h"
#include "quillon/forms/screenfit.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPointer>
#include <QWindow>

namespace quillon {

namespace {

/// Moves the rows of a column, but for the last one, into another column.
void moveRows(QBoxLayout *from, QBoxLayout *to)
{
    while (from->count() > 1) {
        const int stretch = from->stretch(0);
        QLayoutItem *item = from->takeAt(0);
        if (QWidget *widget = item->widget()) {
            to->addWidget(widget, stretch, item->alignment());
            delete item;
        } else if (QLayout *layout = item->layout()) {
            to->addLayout(layout, stretch);
        } else {
            to->addItem(item);
        }
    }
}

} // namespace

ScrollingForm::ScrollingForm(QWidget *form) : QObject(form), m_form(form)
{
    form->installEventFilter(this);
    connect(new ScreenWatch(this), &ScreenWatch::changed, this, [this] {
        if (m_form->isVisible()) {
            adapt();
            fitIntoScreens(m_form);
        }
    });
}

bool ScrollingForm::eventFilter(QObject *watched, QEvent *event)
{
    const bool mayHaveGrown = event->type() == QEvent::LayoutRequest && m_form->isVisible();
    if (watched == m_form && (event->type() == QEvent::Show || mayHaveGrown)) {
        adapt();
    }
    return QObject::eventFilter(watched, event);
}

QSize ScrollingForm::room() const
{
    // Before it is seen it stands nowhere; it will come up where the window below it is.
    const QWindow *handle = m_form->windowHandle();
    const QWindow *below = handle && !handle->isVisible() ? handle->transientParent() : nullptr;
    const QRect frame = below ? below->frameGeometry() : m_form->frameGeometry();
    return roomFor(frame, screenRooms()).size().shrunkBy(frameMargins(m_form));
}

bool ScrollingForm::needsMoreThan(const QSize &room) const
{
    const QLayout *layout = m_form->layout();
    const QSize least = layout->totalMinimumSize().expandedTo(m_form->minimumSize());
    if (least.width() > room.width() || least.height() > room.height()) {
        return true;
    }
    return layout->hasHeightForWidth() && layout->totalMinimumHeightForWidth(room.width()) > room.height();
}

void ScrollingForm::adapt()
{
    const QSize most = room();
    if (m_adapting || most.isEmpty() || !m_form->layout()) {
        return;
    }
    m_adapting = true;
    auto *column = qobject_cast<QBoxLayout *>(m_form->layout());
    if (!m_area && column && column->count() > 1 && needsMoreThan(most)) {
        putIntoArea(column);
        m_form->setMinimumSize(m_form->minimumSize().boundedTo(most));
        m_area->setWidest(most.width() - column->contentsMargins().left() - column->contentsMargins().right());
        m_form->resize(m_form->size().expandedTo(m_form->sizeHint()));
    }
    // Its size only: where it stands is up to the window manager and to the user.
    m_form->resize(m_form->size().boundedTo(most));
    m_adapting = false;
}

void ScrollingForm::putIntoArea(QBoxLayout *column)
{
    const QPointer<QWidget> focused = m_form->focusWidget();
    // Inside the form from the start: a widget that leaves its window loses its place in the order of the Tab key.
    m_area = new ContentArea(m_form);
    auto *rows = new QVBoxLayout(m_area->widget());
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(column->spacing());
    moveRows(column, rows);
    column->insertWidget(0, m_area, 1);
    rows->activate();
    column->activate();
    if (focused) {
        focused->setFocus();
    }
}

} // namespace quillon
