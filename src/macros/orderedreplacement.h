#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace corvane {

/// What the key of that index is replaced by; nothing where it stays. May be asked more than once, or never.
using ReplacementOf = std::function<std::optional<QString>(qsizetype index)>;

/// Replaces every key in @p text, one key after the other in their order, so that a key sees what those before it have
/// left. An empty key is passed over. As long as keys and values keep to the form of placeholders, "{" and "}" in pairs
/// that do not nest, the text is read once, however many keys there are.
void replaceInOrder(QString &text, const QStringList &keys, const ReplacementOf &valueOf);

} // namespace corvane
