#pragma once

#include <QString>
#include <QStringList>

namespace corvane {

/// What a text is as a field of a record's line: line ends, tabs and other control characters become blanks, the ends
/// are trimmed.
[[nodiscard]] QString fieldText(const QString &text);

/// The line of a record: its fields as fieldText() gives them, a tab between each two.
[[nodiscard]] QString recordLine(const QStringList &fields);

/// One field of a record's line, from 0; empty when the line is too short.
[[nodiscard]] QString recordField(const QString &record, int field);

} // namespace corvane
