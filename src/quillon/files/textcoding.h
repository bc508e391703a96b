#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace quillon {

/// The octets of one line as text: UTF-8 where they are valid UTF-8, else Windows-1252 (the five octets that this
/// page leaves open stand for the control characters of the same number).
[[nodiscard]] QString decodeLine(const QByteArray &bytes);

/// A whole file as text: a byte-order mark decides (UTF-8, UTF-16 of either order); without one, line by line as in
/// decodeLine(). Line ends stay as they are.
[[nodiscard]] QString decodeText(const QByteArray &bytes);

/// UTF-8 without a byte-order mark. A surrogate without its other half becomes U+FFFD.
[[nodiscard]] QByteArray encodeText(const QString &text);

/// The lines of a file, without line ends (CR LF or LF) and without a byte-order mark, each still in its octets; a
/// UTF-16 file is turned into UTF-8 first. A last line without a line end counts; an empty file has no line.
[[nodiscard]] QList<QByteArray> splitLines(const QByteArray &bytes);

/// True when the file begins with the byte-order mark of UTF-16, so that nothing may be appended to it as it stands.
[[nodiscard]] bool isUtf16(const QByteArray &bytes);

/// The octets of a whole file as they can stand in it: what begins like a byte-order mark, and is none, gets a real one
/// in front of it.
[[nodiscard]] QByteArray guardedFromMark(const QByteArray &bytes);

/// True when a file holds nothing but a byte-order mark.
[[nodiscard]] bool isMarkOnly(const QByteArray &bytes);

/// Lines as a file: each ended by CR LF, guarded as in guardedFromMark().
[[nodiscard]] QByteArray joinLines(const QList<QByteArray> &lines);

} // namespace quillon
