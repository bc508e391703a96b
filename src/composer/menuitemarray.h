#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QAction;
class QMenu;

namespace corvane {

/// The caption of a menu item as it was given: without mnemonic marks, and for an item of an array exactly its text.
[[nodiscard]] QString itemCaption(const QAction *item);

/// The items of a menu array from index 1 on; the base item, index 0, is not among them.
[[nodiscard]] QList<QAction *> itemArray(const QMenu *menu, const QAction *base);

/// Makes the items 1, 2 … of the array whose first item is @p base, which is shown only when there are no others. The
/// former ones go. A caption stands as it is: an "&" in it makes no mnemonic.
void rebuildItemArray(QMenu *menu, QAction *base, const QStringList &captions);

} // namespace corvane
