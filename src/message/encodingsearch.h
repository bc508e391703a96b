#pragma once

#include "message/message.h"

#include <QString>

namespace corvane {

/// The code of the encoding of that display name, by walking the window's list to it; the list stays there. Empty when
/// there is none, and then the list stays on its last entry.
[[nodiscard]] QString selectEncodingOfName(Message &message, const QString &displayName);

} // namespace corvane
