#pragma once

#include <QObject>
#include <QString>

class QAbstractItemView;
class QLabel;
class QTreeView;

namespace quillon {

/// Makes the columns of a list as wide as what they hold, and again whenever that changes, until its user makes one of
/// them wider or narrower. None takes more than half of the list; the last one has what is left.
class FittedColumns : public QObject {
    Q_OBJECT

public:
    /// To be made once the view has its model; it belongs to the view.
    explicit FittedColumns(QTreeView *view);

    void fit();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitLater();

    QTreeView *m_view;
    bool m_due = false;
    bool m_fitting = false;
    bool m_byUser = false;
};

/// Shows the whole text of a cell that is cut off, in place of the list's own tip.
class CellTips : public QObject {
    Q_OBJECT

public:
    /// Belongs to the view.
    explicit CellTips(QAbstractItemView *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QAbstractItemView *m_view;
};

/// What stands in the middle of a list while it is empty.
class EmptyListText : public QObject {
    Q_OBJECT

public:
    /// To be made once the view has its model; it belongs to the view.
    EmptyListText(QAbstractItemView *view, const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow();

    QAbstractItemView *m_view;
    QLabel *m_label;
};

} // namespace quillon
