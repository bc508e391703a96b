#include "records/forms/renamedelegate.h"

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

} // namespace corvane
