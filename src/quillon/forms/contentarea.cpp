#include "quillon/forms/contentarea.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>

namespace quillon {

ContentArea::ContentArea(QWidget *parent, QWidget *content) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content ? content : new QWidget);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (now && widget() && widget()->isAncestorOf(now)) {
            ensureWidgetVisible(now);
        }
    });
}

QSize ContentArea::sizeHint() const
{
    const QSize least = needed();
    return widget()->sizeHint().expandedTo(least) + QSize(barWidth(), 0);
}

QSize ContentArea::needed() const
{
    if (!isVisible()) {
        // Nobody tells the layouts of a window that is not seen yet when their widgets change.
        const QList<QLayout *> layouts = widget()->findChildren<QLayout *>();
        for (QLayout *layout : layouts) {
            layout->invalidate();
        }
    }
    return widget()->minimumSizeHint();
}

QSize ContentArea::minimumSizeHint() const
{
    const QSize own = QScrollArea::minimumSizeHint();
    const int width = std::min(needed().width() + barWidth(), m_widest);
    return {std::max(own.width(), width), own.height()};
}

void ContentArea::setWidest(int widest)
{
    m_widest = widest;
    updateGeometry();
}

bool ContentArea::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry(); // what the content needs is what this asks for
    }
    return QScrollArea::event(event);
}

int ContentArea::barWidth() const
{
    return verticalScrollBar()->sizeHint().width() +
           style()->pixelMetric(QStyle::PM_ScrollView_ScrollBarSpacing, nullptr, this);
}

} // namespace quillon
