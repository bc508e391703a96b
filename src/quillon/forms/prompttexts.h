#pragma once

#include "quillon/text/owntexts.h"

/// What the prompts say of themselves.
namespace quillon::prompttexts {

inline constexpr char16_t section[] = u"Prompts";

inline constexpr OwnText tooManyFilesOpen{
    section, u"TOO_MANY_FILES_OPEN",
    u"Files cannot be chosen: this program has too many files open. Close other dialogs and try again."};

} // namespace quillon::prompttexts
