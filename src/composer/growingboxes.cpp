#include "composer/growingboxes.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QLayout>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <algorithm>

namespace corvane {

namespace {

/// The layout, nested or not, that holds @p widget.
QLayout *layoutOf(QLayout *layout, QWidget *widget)
{
    for (int i = 0; layout && i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        if (item->widget() == widget) {
            return layout;
        }
        if (QLayout *found = layoutOf(item->layout(), widget)) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

GrowingBoxes::GrowingBoxes(const std::array<QPlainTextEdit *, 3> &boxes, QAbstractScrollArea *list, QWidget *header,
                           QWidget *ground)
    : QObject(header), m_header(header), m_ground(ground)
{
    for (QPlainTextEdit *box : boxes) {
        add(box, LargeBox);
    }
    add(list, LargeList);
    m_header->installEventFilter(this);
    m_ground->installEventFilter(this);
    measure();
}

void GrowingBoxes::add(QAbstractScrollArea *box, int large)
{
    auto *place = new QWidget(m_header);
    place->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    if (QLayout *layout = layoutOf(m_header->layout(), box)) {
        delete layout->replaceWidget(box, place, Qt::FindDirectChildrenOnly);
    }
    place->stackUnder(box);
    box->installEventFilter(this);
    box->viewport()->installEventFilter(this);
    place->installEventFilter(this);
    m_boxes.push_back({box, place, large});
}

GrowingBoxes::Box *GrowingBoxes::find(const QWidget *box)
{
    const auto found = std::find_if(m_boxes.begin(), m_boxes.end(), [box](const Box &b) { return b.box == box; });
    return found == m_boxes.end() ? nullptr : &*found;
}

int GrowingBoxes::height(const QWidget *box) const
{
    const Box *found = const_cast<GrowingBoxes *>(this)->find(box);
    return found ? found->twips : 0;
}

void GrowingBoxes::toggle(QWidget *widget)
{
    Box *box = find(widget);
    if (!box) {
        return;
    }
    const Box &list = m_boxes.back();
    for (Box &other : m_boxes) {
        // An open list of attachments stays open beside a recipient box.
        if (&other != box && &other != &list) {
            setHeight(other, OneRow);
        }
    }
    setHeight(*box, box->twips == OneRow ? box->large : OneRow);
}

void GrowingBoxes::setHeight(Box &box, int twips)
{
    box.twips = twips;
    box.box->setVerticalScrollBarPolicy(twips == OneRow ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
    if (twips != OneRow) {
        moveTo(box, m_ground);
        box.box->raise();
    } else if (box.box->parentWidget() != m_header) {
        moveTo(box, m_header);
        // Back beside its place, where assistive tools read it after its label.
        box.box->stackUnder(box.place);
        box.place->stackUnder(box.box);
    }
    arrange(box);
}

void GrowingBoxes::moveTo(const Box &box, QWidget *parent) const
{
    if (box.box->parentWidget() == parent) {
        return;
    }
    // A widget is hidden on its way, which would hand the focus to another one.
    const bool focused = box.box->hasFocus();
    if (focused) {
        box.box->clearFocus();
    }
    box.box->setParent(parent);
    box.box->setVisible(parent == m_header || !m_header->isHidden());
    if (focused) {
        box.box->setFocus();
    }
}

void GrowingBoxes::measure()
{
    // A row is as high as a one-line field, which follows font and style.
    m_row = std::max(OneRow / 15, QLineEdit(m_header).sizeHint().height());
    for (const Box &box : m_boxes) {
        box.place->setFixedHeight(m_row);
        if (auto *text = qobject_cast<QPlainTextEdit *>(box.box)) {
            // One line stands in the middle of the row.
            const int space = m_row - 2 * text->frameWidth() - text->fontMetrics().lineSpacing();
            text->document()->setDocumentMargin(std::max(1.0, space / 2.0));
        }
        arrange(box);
    }
}

void GrowingBoxes::arrange(const Box &box) const
{
    // What lies over the rows below ends where the window does.
    const int room = m_ground->height() - box.place->mapTo(m_ground, QPoint(0, 0)).y();
    const int height = std::max(m_row, std::min(m_row * box.twips / OneRow, room));
    box.box->setGeometry(
        QRect(box.place->mapTo(box.box->parentWidget(), QPoint(0, 0)), QSize(box.place->width(), height)));
}

bool GrowingBoxes::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        for (const Box &box : m_boxes) {
            if (box.box->viewport() == watched) {
                toggle(box.box);
                break;
            }
        }
        break;
    case QEvent::Move:
    case QEvent::Resize:
        for (const Box &box : m_boxes) {
            if (box.place == watched || m_header == watched || m_ground == watched) {
                arrange(box);
            }
        }
        break;
    case QEvent::HideToParent:
    case QEvent::ShowToParent:
        if (watched == m_header) {
            for (const Box &box : m_boxes) {
                if (box.box->parentWidget() != m_header) {
                    box.box->setVisible(!m_header->isHidden());
                }
            }
        }
        break;
    case QEvent::FontChange:
    case QEvent::StyleChange:
        if (watched == m_header) {
            measure();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace corvane
