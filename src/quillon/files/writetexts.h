#pragma once

#include "quillon/text/owntexts.h"

namespace quillon {

// Why a file was not written, as it stands in brackets behind the file's name.
inline constexpr char16_t notSavedSection[] = u"Not Saved";
inline constexpr OwnText noSpace{notSavedSection, u"NO_SPACE", u"no space left on the device"};
inline constexpr OwnText noPermission{notSavedSection, u"NO_PERMISSION", u"no permission"};
inline constexpr OwnText readOnlyDevice{notSavedSection, u"READ_ONLY", u"the device is read-only"};
inline constexpr OwnText noFileThere{notSavedSection, u"NO_FILE", u"something else is in its place"};
inline constexpr OwnText noFolder{notSavedSection, u"NO_FOLDER", u"its folder is missing"};
inline constexpr OwnText tooLarge{notSavedSection, u"TOO_LARGE", u"the file is too large"};
inline constexpr OwnText deviceError{notSavedSection, u"DEVICE_ERROR", u"the device failed"};
inline constexpr OwnText unreadableFile{notSavedSection, u"UNREADABLE", u"it cannot be read, so it is not replaced"};

} // namespace quillon
