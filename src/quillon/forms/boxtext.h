#pragma once

#include <QString>

class QPlainTextEdit;

namespace quillon {

/// The text of a box exactly as it was typed, no-break spaces included, with CR LF at its line ends.
[[nodiscard]] QString textOf(const QPlainTextEdit *box);

} // namespace quillon
