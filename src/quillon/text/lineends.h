#pragma once

#include <QString>

namespace quillon {

/// @p text with every CR, LF or CR LF written as CR LF, the one line end of mail, files and controls. The separators of
/// Unicode (U+2028, U+2029) are letters of a text and stay.
[[nodiscard]] QString withCrLf(const QString &text);

/// @p text on one line: each CR LF, CR, LF, and each of Unicode's line and paragraph separators becomes one blank. All
/// else stays, tabs too, and the ends are not trimmed.
[[nodiscard]] QString onOneLine(QString text);

/// @p text on one line, as above, in which each other control character is a blank, too, tabs included.
[[nodiscard]] QString withoutControls(const QString &text);

} // namespace quillon
