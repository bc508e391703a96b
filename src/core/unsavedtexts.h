#pragma once

#include "quillon/text/owntexts.h"

namespace corvane {

inline constexpr char16_t unsavedSection[] = u"Not Saved"; // with the reasons that quillon/files/writetexts.h has

// What the status bar says of files that could not be written: name, reason, how many more.
inline constexpr quillon::OwnText notSaved{unsavedSection, u"NOT_SAVED", u"Not saved: %1 (%2)"};
inline constexpr quillon::OwnText notSavedAndMore{unsavedSection, u"NOT_SAVED_MORE",
                                                  u"Not saved: %1 (%2), and %3 more"};
/// A line of its tool tip: path, reason, moment.
inline constexpr quillon::OwnText notSavedLine{unsavedSection, u"NOT_SAVED_LINE", u"%1 (%2), %3"};

} // namespace corvane
