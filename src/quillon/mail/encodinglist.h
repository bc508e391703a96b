#pragma once

#include <QString>

namespace quillon {

/// All encodings of a mail in one text: entries separated by " || ", each a MIME charset name, " | " and the display
/// name, in the order of the display names. Entries that begin with "_" are notes to the program and never offered.
[[nodiscard]] QString encodingList();

} // namespace quillon
