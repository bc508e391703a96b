#pragma once

#include <QString>

class QComboBox;
class QPlainTextEdit;

namespace corvane {

/// The text with CR LF at every line end, whatever its line ends were.
[[nodiscard]] QString withCrLf(QString text);

/// The text of a box exactly as it was typed, no-break spaces included, with CR LF at its line ends.
[[nodiscard]] QString textOf(const QPlainTextEdit *box);

/// Sets the text of an editable combo box, listed or not, and says so once, if the text is another one.
void setComboText(QComboBox *box, const QString &text);

/// Replaces the entries of a combo box without touching, or telling a change of, its text.
void setComboList(QComboBox *box, const QStringList &entries);

} // namespace corvane
