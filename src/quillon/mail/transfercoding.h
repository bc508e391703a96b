#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace quillon {

/// The octets of a Base64 line before and after coding (RFC 2045), without its CR LF.
inline constexpr qint64 base64LineInput = 57;
inline constexpr qint64 base64LineLength = 76;

/// Octets of the Base64 form of @p size octets: lines of 76 characters, each ended by CR LF.
[[nodiscard]] qint64 base64Size(qint64 size);

/// Appends the Base64 form of @p bytes to @p out, lines of 76 characters, each ended by CR LF.
void appendBase64(QByteArray &out, QByteArrayView bytes);

/// Appends the quoted-printable form of @p bytes, in which CR LF and nothing else is a line end (RFC 2045). Lines have
/// at most 76 characters; no line begins with "From " or ends with a blank. When @p closeLine is set, a last line
/// without CR LF is closed by a soft break, so that the result ends with CR LF and still means the same octets.
void appendQuotedPrintable(QByteArray &out, QByteArrayView bytes, bool closeLine);

/// How the octets of a text travel.
enum class TransferCoding { SevenBit, QuotedPrintable, Base64 };

/// The name for Content-Transfer-Encoding.
[[nodiscard]] QByteArray transferCodingName(TransferCoding coding);

/// The best coding of @p bytes, a text with CR LF line ends: none where every line is short, printable, and safe from
/// what mail servers do to lines; else the shorter of the two others. @p standsAlone: the text is the whole body, so
/// without a coding it can only end with a line end.
[[nodiscard]] TransferCoding bestTransferCoding(QByteArrayView bytes, bool standsAlone);

/// Appends @p bytes in @p coding, see above.
void appendCoded(QByteArray &out, QByteArrayView bytes, TransferCoding coding, bool standsAlone);

} // namespace quillon
