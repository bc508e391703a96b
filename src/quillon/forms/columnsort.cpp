#include "quillon/forms/columnsort.h"

#include <QHeaderView>
#include <QTreeView>

namespace quillon {

ColumnSort::ColumnSort(QTreeView *view, Qt::SortOrder first) : QObject(view), m_view(view), m_next(first)
{
    view->header()->setSectionsClickable(true);
    connect(view->header(), &QHeaderView::sectionClicked, this, &ColumnSort::clicked);
}

void ColumnSort::again()
{
    const QHeaderView *header = m_view->header();
    if (header->isSortIndicatorShown()) {
        m_view->model()->sort(header->sortIndicatorSection(), header->sortIndicatorOrder());
    }
}

void ColumnSort::clicked(int column)
{
    m_view->header()->setSortIndicatorShown(true);
    m_view->header()->setSortIndicator(column, m_next);
    m_next = m_next == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    again();
}

} // namespace quillon
