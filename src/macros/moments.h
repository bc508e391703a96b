#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// What one of the six date and time placeholders, braces included and exact in case, stands for at this moment, in
/// the formats of the user's region; nothing for any other text. The clock is asked at each call.
[[nodiscard]] std::optional<QString> momentText(QStringView placeholder);

} // namespace corvane
