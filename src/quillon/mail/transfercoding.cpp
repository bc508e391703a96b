#include "quillon/mail/transfercoding.h"

#include <algorithm>
#include <array>

namespace quillon {

namespace {

constexpr qsizetype longestLine = 76;
constexpr QByteArrayView envelopeMark("From "); // mail stores put ">" before a line that begins so
constexpr QByteArrayView softBreak("=\r\n");
constexpr QByteArrayView boundaryStart("--=_"); // how every boundary of ours begins

bool isPlain(char c)
{
    return c > ' ' && c < '\x7f' && c != '=';
}

bool isLineEnd(QByteArrayView bytes, qsizetype at)
{
    return bytes[at] == '\r' && at + 1 < bytes.size() && bytes[at + 1] == '\n';
}

/// How many characters from @p at on, at most @p most, stand for themselves wherever they are in a line: the last of a
/// row of such characters is left out, as a blank there might end the line.
qsizetype plainRun(QByteArrayView bytes, qsizetype at, qsizetype most)
{
    const qsizetype limit = std::min(bytes.size() - at - 1, most);
    qsizetype count = 0;
    while (count < limit && (isPlain(bytes[at + count]) || bytes[at + count] == ' ')) {
        ++count;
    }
    return std::max<qsizetype>(count - 1, 0);
}

qint64 quotedPrintableEstimate(QByteArrayView bytes)
{
    qint64 size = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        size += isPlain(c) || c == ' ' || c == '\t' || c == '\r' || c == '\n' ? 1 : 3;
    }
    return size + size / longestLine * 3; // soft breaks
}

/// No quoted-printable form of @p bytes is longer: each line may have an escape for a blank and one for "From" more
/// than the estimate knows, and a soft break follows at least 73 characters.
qint64 quotedPrintableBound(QByteArrayView bytes)
{
    const qint64 lines = std::count_if(bytes.begin(), bytes.end(), [](char c) { return c == '\r' || c == '\n'; }) + 1;
    const qint64 size = quotedPrintableEstimate(bytes) + lines * 4;
    return size + (size / (longestLine - 3) + 1) * (softBreak.size() + 2);
}

bool isSafeLine(QByteArrayView line)
{
    if (line.size() > longestLine || line.startsWith(envelopeMark) || line.startsWith(boundaryStart) ||
        line.endsWith(' ') || line.endsWith('\t')) {
        return false;
    }
    return std::all_of(line.begin(), line.end(), [](char c) { return (c >= ' ' && c < '\x7f') || c == '\t'; });
}

bool isSevenBitText(QByteArrayView bytes)
{
    qsizetype begin = 0;
    while (begin < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', begin);
        if (end > begin && bytes[end - 1] == '\r') {
            --end;
        } else if (end >= 0) {
            return false;
        } else {
            end = bytes.size();
        }
        if (!isSafeLine(bytes.sliced(begin, end - begin))) {
            return false;
        }
        begin = std::min(end + 2, bytes.size());
    }
    return true;
}

} // namespace

qint64 base64Size(qint64 size)
{
    const qint64 lines = (size + base64LineInput - 1) / base64LineInput;
    return (size + 2) / 3 * 4 + lines * 2;
}

void appendBase64(QByteArray &out, QByteArrayView bytes)
{
    const QByteArray coded = QByteArray::fromRawData(bytes.data(), bytes.size()).toBase64();
    for (qsizetype at = 0; at < coded.size(); at += base64LineLength) {
        out += QByteArrayView(coded).sliced(at, std::min<qsizetype>(base64LineLength, coded.size() - at));
        out += "\r\n";
    }
}

void appendQuotedPrintable(QByteArray &out, QByteArrayView bytes, bool closeLine)
{
    constexpr std::array digits{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
    // Written through a pointer into room for the worst case: appending octet by octet took a third of a mail's time.
    const qsizetype start = out.size();
    out.resize(start + quotedPrintableBound(bytes));
    char *to = out.data() + start;
    qsizetype column = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (const qsizetype count = plainRun(bytes, i, longestLine - 1 - column); count > 0 && column > 0) {
            to = std::copy_n(bytes.begin() + i, count, to);
            column += count;
            i += count;
        }
        const char c = bytes[i];
        if (isLineEnd(bytes, i)) {
            *to++ = '\r';
            *to++ = '\n';
            column = 0;
            ++i;
            continue;
        }
        const bool lastOfLine = i + 1 >= bytes.size() || isLineEnd(bytes, i + 1);
        const bool plain = isPlain(c) || ((c == ' ' || c == '\t') && !lastOfLine);
        // The last character of a line may fill it; any other leaves a place for the soft break.
        if (column + (plain ? 1 : 3) > (lastOfLine && i + 1 < bytes.size() ? longestLine : longestLine - 1)) {
            to = std::copy(softBreak.begin(), softBreak.end(), to);
            column = 0;
        }
        if (plain && !(column == 0 && c == 'F' && bytes.sliced(i).startsWith(envelopeMark))) {
            *to++ = c;
            ++column;
        } else {
            const auto octet = static_cast<unsigned char>(c);
            *to++ = '=';
            *to++ = digits[octet >> 4U];
            *to++ = digits[octet & 15U];
            column += 3;
        }
    }
    if (closeLine && column > 0) {
        to = std::copy(softBreak.begin(), softBreak.end(), to);
    }
    out.truncate(to - out.constData());
}

QByteArray transferCodingName(TransferCoding coding)
{
    switch (coding) {
    case TransferCoding::SevenBit:
        return "7bit";
    case TransferCoding::QuotedPrintable:
        return "quoted-printable";
    case TransferCoding::Base64:
        break;
    }
    return "base64";
}

TransferCoding bestTransferCoding(QByteArrayView bytes, bool standsAlone)
{
    if (isSevenBitText(bytes) && (!standsAlone || bytes.isEmpty() || bytes.endsWith('\n'))) {
        return TransferCoding::SevenBit;
    }
    return quotedPrintableEstimate(bytes) <= base64Size(bytes.size()) ? TransferCoding::QuotedPrintable
                                                                      : TransferCoding::Base64;
}

void appendCoded(QByteArray &out, QByteArrayView bytes, TransferCoding coding, bool standsAlone)
{
    switch (coding) {
    case TransferCoding::SevenBit:
        out += bytes;
        break;
    case TransferCoding::QuotedPrintable:
        appendQuotedPrintable(out, bytes, standsAlone);
        break;
    case TransferCoding::Base64:
        appendBase64(out, bytes);
        break;
    }
}

} // namespace quillon
