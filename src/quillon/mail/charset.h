#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace quillon {

/// Whether the converters of the system know @p charset, a MIME charset name in either case.
[[nodiscard]] bool isKnownCharset(const QByteArray &charset);

/// @p text in @p charset, or nothing when the charset is not known or the text does not fit it. A text fits when
/// every usual reader of that charset gets exactly this text back: the octets are decoded again and compared, also
/// by the wider charsets that readers take for the named one (Windows-1252 for ISO-8859-1, GBK for GB2312, CP932 for
/// Shift_JIS and so on). UTF-8 takes every text; a lone surrogate is written as U+FFFD. Each call starts and ends in
/// the initial state of a charset with states (ISO-2022-JP).
[[nodiscard]] std::optional<QByteArray> encodeStrictly(const QString &text, const QByteArray &charset);

/// The text that @p bytes hold in @p charset, or nothing when the charset is not known or an octet is not valid in it.
/// A byte-order mark is a character like any other.
[[nodiscard]] std::optional<QString> decodeStrictly(QByteArrayView bytes, const QByteArray &charset);

/// @p text with every surrogate that has no partner replaced by U+FFFD.
[[nodiscard]] QString withoutLoneSurrogates(const QString &text);

} // namespace quillon
