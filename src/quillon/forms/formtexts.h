#pragma once

#include <QString>

class QObject;

namespace quillon {

/// Sets the captions of @p root and of the menus and items below it (QMenu and QAction, by objectName) from @p section
/// of the language file at @p path. QuillonText::ApplyMenuTexts() is this for a form's own section; a menu that
/// belongs to no form names its section here.
void applyMenuSection(QObject *root, const QString &section, const QString &path);

} // namespace quillon
