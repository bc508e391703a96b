#pragma once

#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

namespace corvane {

/// Edits a row's first cell in place and hands over what was typed, once the editor is gone; the cell itself stays as
/// it is.
class RenameDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    bool eventFilter(QObject *editor, QEvent *event) override;

Q_SIGNALS:
    void edited(const QPersistentModelIndex &index, const QString &text) const;
};

} // namespace corvane
