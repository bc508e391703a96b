#include "quillon/forms/listlooks.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QScopedValueRollback>
#include <QToolTip>
#include <QTreeView>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillon {

FittedColumns::FittedColumns(QTreeView *view) : QObject(view), m_view(view)
{
    const QAbstractItemModel *model = view->model();
    connect(model, &QAbstractItemModel::modelReset, this, &FittedColumns::fitLater);
    connect(model, &QAbstractItemModel::rowsInserted, this, &FittedColumns::fitLater);
    connect(model, &QAbstractItemModel::dataChanged, this, &FittedColumns::fitLater);
    connect(view->header(), &QHeaderView::sectionResized, this, [this](int column) {
        // The last column follows the others and the window.
        m_byUser |= !m_fitting && m_view->isVisible() && column + 1 < m_view->header()->count();
    });
    view->viewport()->installEventFilter(this);
    fit();
}

/// Once for many changes, and never for the last one of a model that goes with its view.
void FittedColumns::fitLater()
{
    if (!std::exchange(m_due, true)) {
        QMetaObject::invokeMethod(this, &FittedColumns::fit, Qt::QueuedConnection);
    }
}

void FittedColumns::fit()
{
    m_due = false;
    if (m_byUser) {
        return;
    }
    const QScopedValueRollback fitting(m_fitting, true);
    const int most = m_view->viewport()->width() / 2;
    for (int column = 0; column + 1 < m_view->header()->count(); ++column) {
        m_view->resizeColumnToContents(column);
        const int air = m_view->fontMetrics().averageCharWidth(); // between one text and the next
        m_view->setColumnWidth(column, qMin(m_view->columnWidth(column) + air, most));
    }
}

bool FittedColumns::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::FontChange || event->type() == QEvent::Show) {
        fit();
    }
    return QObject::eventFilter(watched, event);
}

CellTips::CellTips(QAbstractItemView *view) : QObject(view), m_view(view)
{
    view->viewport()->installEventFilter(this);
}

bool CellTips::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const QModelIndex index = m_view->indexAt(help->pos());
        const QRect cell = m_view->visualRect(index);
        if (index.isValid() && m_view->sizeHintForIndex(index).width() > cell.width()) {
            // As text: what a cell holds is no mark-up.
            QToolTip::showText(help->globalPos(), Qt::convertFromPlainText(index.data().toString()), m_view->viewport(),
                               cell);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

EmptyListText::EmptyListText(QAbstractItemView *view, const QString &text)
    : QObject(view), m_view(view), m_label(new QLabel(view->viewport()))
{
    m_label->setObjectName(view->objectName() + u".empty"_s);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setText(text);
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setWordWrap(true);
    m_label->setMargin(view->fontMetrics().averageCharWidth());
    m_label->setAttribute(Qt::WA_TransparentForMouseEvents);
    const QAbstractItemModel *model = view->model();
    // Later: the last change of a model that goes with its view comes too late for the view.
    connect(model, &QAbstractItemModel::modelReset, this, &EmptyListText::follow, Qt::QueuedConnection);
    connect(model, &QAbstractItemModel::rowsInserted, this, &EmptyListText::follow, Qt::QueuedConnection);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &EmptyListText::follow, Qt::QueuedConnection);
    view->viewport()->installEventFilter(this);
    follow();
}

void EmptyListText::follow()
{
    m_label->setGeometry(m_view->viewport()->rect());
    m_label->setVisible(m_view->model()->rowCount() == 0);
}

bool EmptyListText::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) {
        follow();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace quillon
