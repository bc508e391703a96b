#pragma once

#include <QObject>
#include <QString>

class QTreeView;

namespace quillon {

/// A click on a column header sorts the list by that column; each further click reverses the order. It belongs to the
/// view.
class ColumnSort : public QObject {
    Q_OBJECT

public:
    /// @p first is the order after the first click.
    explicit ColumnSort(QTreeView *view, Qt::SortOrder first = Qt::AscendingOrder);

    /// Sorts again as at the last click, for rows that came since; a list that nobody sorted keeps its order.
    void again();

private:
    void clicked(int column);

    QTreeView *m_view;
    Qt::SortOrder m_next; ///< after the next click
};

} // namespace quillon
