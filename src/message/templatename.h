#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace corvane {

/// @p text without the nine characters that no name of a template may hold: \ / : * ? " < > |
[[nodiscard]] QString withoutForbiddenCharacters(const QString &text);

/// The main window's titles. The title is the only place that says which template is open.
[[nodiscard]] QString newMessageTitle();
[[nodiscard]] QString editTitle(const QString &name);
[[nodiscard]] QString previewTitle(const QString &name);

/// Whether @p title is that of a new message.
[[nodiscard]] bool isNewMessageTitle(const QString &title);
/// The name in a title: what follows the opening quotation mark, without the last character. Empty where there is none.
[[nodiscard]] QString nameInTitle(const QString &title);

} // namespace corvane
