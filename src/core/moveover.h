#pragma once

#include "core/globals.h"

namespace corvane {

/// Copies the data that all users of this machine once shared over the user's own tree, once. What cannot be copied,
/// as on a full disk, is noted beside the data root, and each next start completes it: then only what is missing, is
/// still empty, or is older than what it would be replaced by. The mark in the settings is set when all is there.
void moveOldDataOver(const ApplicationGlobals &globals);

/// Whether some of it is still to come, by a later start.
[[nodiscard]] bool isMoveOverUnfinished(const ApplicationGlobals &globals);

} // namespace corvane
