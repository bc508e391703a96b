#include "records/forms/renamedelegate.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace corvane {

void RenameDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    Q_UNUSED(model)
    const auto *line = qobject_cast<QLineEdit *>(editor);
    const QString text = line ? line->text() : QString();
    const QPersistentModelIndex row(index);
    // Later: a box shown from here would take the focus from the editor, which would hand over the text once more.
    QMetaObject::invokeMethod(
        const_cast<RenameDelegate *>(this), [this, row, text] { Q_EMIT edited(row, text); }, Qt::QueuedConnection);
}

bool RenameDelegate::eventFilter(QObject *editor, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        auto *widget = qobject_cast<QWidget *>(editor);
        if (widget && (key == Qt::Key_Tab || key == Qt::Key_Backtab)) {
            // These keys would go on to edit the next row's name.
            Q_EMIT commitData(widget);
            Q_EMIT closeEditor(widget);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(editor, event);
}

} // namespace corvane
