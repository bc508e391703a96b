#include "quillon/files/textcoding.h"

#include <QStringDecoder>

#include <array>

namespace quillon {

namespace {

constexpr char utf8Mark[] = "\xEF\xBB\xBF";
constexpr char utf16LittleMark[] = "\xFF\xFE";
constexpr char utf16BigMark[] = "\xFE\xFF";

/// What Windows-1252 has in the places 0x80 to 0x9F, where ISO 8859-1 has control characters.
constexpr std::array<char16_t, 32> windows1252 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString fromWindows1252(const QByteArray &bytes)
{
    QString text = QString::fromLatin1(bytes);
    for (QChar &character : text) {
        const char16_t code = character.unicode();
        if (code >= 0x80 && code < 0xA0) {
            character = QChar(windows1252[code - 0x80]);
        }
    }
    return text;
}

QString fromUtf16(const QByteArray &bytes)
{
    const auto order = bytes.startsWith(utf16LittleMark) ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE;
    QStringDecoder decoder(order, QStringDecoder::Flag::ConvertInitialBom); // the mark itself is cut off
    QString text = decoder(QByteArrayView(bytes).sliced(2));
    return text;
}

QByteArray withoutMark(const QByteArray &bytes)
{
    return bytes.startsWith(utf8Mark) ? bytes.sliced(3) : bytes;
}

} // namespace

bool isUtf16(const QByteArray &bytes)
{
    return bytes.startsWith(utf16LittleMark) || bytes.startsWith(utf16BigMark);
}

QString decodeLine(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    return decoder.hasError() ? fromWindows1252(bytes) : text;
}

QString decodeText(const QByteArray &bytes)
{
    if (isUtf16(bytes)) {
        return fromUtf16(bytes);
    }
    const QByteArray body = withoutMark(bytes);
    QStringDecoder whole(QStringDecoder::Utf8,
                         QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = whole(body);
    if (!whole.hasError()) {
        return text;
    }
    text.clear();
    qsizetype start = 0;
    while (start < body.size()) {
        const qsizetype feed = body.indexOf('\n', start);
        const qsizetype end = feed < 0 ? body.size() : feed + 1;
        text += decodeLine(body.sliced(start, end - start));
        start = end;
    }
    return text;
}

QByteArray encodeText(const QString &text)
{
    return text.toUtf8();
}

QList<QByteArray> splitLines(const QByteArray &bytes)
{
    const QByteArray body = isUtf16(bytes) ? encodeText(fromUtf16(bytes)) : withoutMark(bytes);
    QList<QByteArray> lines;
    qsizetype start = 0;
    while (start < body.size()) {
        const qsizetype feed = body.indexOf('\n', start);
        qsizetype end = feed < 0 ? body.size() : feed;
        const qsizetype next = feed < 0 ? end : feed + 1;
        if (feed >= 0 && end > start && body.at(end - 1) == '\r') {
            --end;
        }
        lines.append(body.sliced(start, end - start));
        start = next;
    }
    return lines;
}

QByteArray guardedFromMark(const QByteArray &bytes)
{
    return bytes.startsWith(utf8Mark) || isUtf16(bytes) ? utf8Mark + bytes : bytes;
}

bool isMarkOnly(const QByteArray &bytes)
{
    return bytes == utf8Mark;
}

QByteArray joinLines(const QList<QByteArray> &lines)
{
    QByteArray bytes;
    for (const QByteArray &line : lines) {
        bytes += line;
        bytes += "\r\n";
    }
    return guardedFromMark(bytes);
}

} // namespace quillon
