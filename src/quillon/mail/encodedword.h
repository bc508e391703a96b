#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace quillon {

/// The longest encoded word that RFC 2047 allows, in octets.
inline constexpr qsizetype longestEncodedWord = 75;

/// @p text as encoded words (RFC 2047) in @p charset, in Q or B form, whichever is shorter for the whole text. No word
/// is longer than 75 octets, the first one not longer than @p firstRoom where that leaves room for a few letters. Each
/// word stands for whole characters. A text that does not fit the charset, or a charset that is not known, gives words
/// in UTF-8; a lone surrogate becomes U+FFFD. An empty text gives no words.
[[nodiscard]] QList<QByteArray> encodedWords(const QString &text,
                                             const QByteArray &charset = QByteArrayLiteral("UTF-8"),
                                             qsizetype firstRoom = longestEncodedWord);

/// @p text with its encoded words decoded (RFC 2047, with the language tags of RFC 2231), blanks between two of them
/// dropped. Tolerant: a character may be split over words, words may touch, padding may be missing. What is no valid
/// encoded word, or names a charset that is not known, stays as it is.
[[nodiscard]] QString decodeEncodedWords(const QString &text);

} // namespace quillon
