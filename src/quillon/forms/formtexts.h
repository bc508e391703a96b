#pragma once

#include <QString>

class QObject;
class QWidget;

namespace quillon {

/// Sets the captions of @p root and of the menus and items below it (QMenu and QAction, by objectName) from @p section
/// of the language file at @p path. QuillonFormTexts::ApplyMenuTexts() is this for a form's own section; a menu that
/// belongs to no form names its section here.
void applyMenuSection(QObject *root, const QString &section, const QString &path);

/// The texts of forms from the language files.
class QuillonFormTexts {
public:
    /// Sets captions and tool tips of the form's controls from a language file. Sections are named after the form;
    /// keys are `<objectName>` for the caption and `<objectName>.tip` for the tool tip; `<form>` itself as the key
    /// sets the form's title. A key that is not there leaves the control as it was designed.
    void ApplyControlTexts(QWidget *form, const QString &path) const;
    /// Sets captions of the form's menus and menu items (QMenu and QAction by objectName) from a language file.
    void ApplyMenuTexts(QWidget *form, const QString &path) const;
};

} // namespace quillon
