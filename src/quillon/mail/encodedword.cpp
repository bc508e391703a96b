#include "quillon/mail/encodedword.h"

#include "quillon/mail/charset.h"

#include <QStringView>

#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr qsizetype wordOverhead = 7;       // "=?", "?Q?" and "?=" without the charset's name
constexpr qsizetype leastRoom = 12;         // one character of four octets in Q form
constexpr qsizetype leastRoomOfStates = 24; // the same with the escapes of a charset with states
constexpr qsizetype longestCharset = 60;

/// What may stand for itself in Q form wherever encoded words are allowed, display names included.
bool isPlainInQ(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '!' || c == '*' ||
           c == '+' || c == '-' || c == '/';
}

qsizetype sizeInQ(const QByteArray &bytes)
{
    qsizetype size = 0;
    for (const char c : bytes) {
        size += isPlainInQ(c) || c == ' ' ? 1 : 3;
    }
    return size;
}

qsizetype sizeInB(const QByteArray &bytes)
{
    return (bytes.size() + 2) / 3 * 4;
}

void appendQ(QByteArray &word, const QByteArray &bytes)
{
    constexpr std::array digits{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
    for (const char c : bytes) {
        if (c == ' ') {
            word += '_';
        } else if (isPlainInQ(c)) {
            word += c;
        } else {
            const auto octet = static_cast<unsigned char>(c);
            word += '=';
            word += digits[octet >> 4U];
            word += digits[octet & 15U];
        }
    }
}

qsizetype characterLength(const QString &text, qsizetype at)
{
    return text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate() ? 2 : 1;
}

/// The start of a text that one word takes.
struct Piece {
    qsizetype End = 0;
    QByteArray Bytes;
};

/// Fills words character by character. Each is encoded anew from its own text, so that a charset with states starts
/// and ends every word in its initial state.
class WordWriter {
public:
    WordWriter(const QString &text, QByteArray charset, bool useQ, qsizetype firstRoom)
        : m_text(text), m_charset(std::move(charset)), m_useQ(useQ), m_overhead(m_charset.size() + wordOverhead),
          m_room(firstRoom - m_overhead)
    {
        if (m_room < (m_charset.compare("utf-8", Qt::CaseInsensitive) == 0 ? leastRoom : leastRoomOfStates)) {
            m_room = longestEncodedWord - m_overhead;
        }
    }

    /// Nothing when some character does not fit the charset by itself.
    std::optional<QList<QByteArray>> words()
    {
        for (qsizetype begin = 0; begin < m_text.size();) {
            // Some readers join neighbouring B words before they decode them, so that padding may only stand in the
            // last one; where whole characters cannot be cut like that, one word in Q form gets past the place.
            bool inQ = m_useQ;
            std::optional<Piece> piece = take(begin, inQ);
            if (piece && piece->End == begin) {
                inQ = true;
                piece = take(begin, inQ);
            }
            if (!piece || piece->End == begin) {
                return std::nullopt;
            }
            write(piece->Bytes, inQ);
            begin = piece->End;
        }
        return m_words;
    }

private:
    /// As many characters from @p begin as have room; for B form, cut where no padding is needed.
    std::optional<Piece> take(qsizetype begin, bool inQ)
    {
        Piece best{begin, QByteArray()};
        for (qsizetype at = begin; at < m_text.size();) {
            at += characterLength(m_text, at);
            const std::optional<QByteArray> bytes = encodeStrictly(m_text.mid(begin, at - begin), m_charset);
            if (!bytes) {
                return std::nullopt;
            }
            if ((inQ ? sizeInQ(*bytes) : sizeInB(*bytes)) > m_room) {
                break;
            }
            if (inQ || bytes->size() % 3 == 0 || at == m_text.size()) {
                best = {at, *bytes};
            }
        }
        return best;
    }

    void write(const QByteArray &bytes, bool inQ)
    {
        QByteArray word;
        word.reserve(longestEncodedWord);
        word += "=?" + m_charset + (inQ ? "?Q?" : "?B?");
        if (inQ) {
            appendQ(word, bytes);
        } else {
            word += bytes.toBase64();
        }
        m_words.append(word + "?=");
        m_room = longestEncodedWord - m_overhead;
    }

    const QString &m_text;
    QByteArray m_charset;
    bool m_useQ;
    qsizetype m_overhead;
    qsizetype m_room;
    QList<QByteArray> m_words;
};

struct EncodedWord {
    QByteArray Charset;
    QByteArray Bytes;
    qsizetype Begin = 0;
    qsizetype End = 0;
};

int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9') {
        return c - u'0';
    }
    if (c >= u'A' && c <= u'F') {
        return c - u'A' + 10;
    }
    return c >= u'a' && c <= u'f' ? c - u'a' + 10 : -1;
}

std::optional<QByteArray> decodeQ(QStringView content)
{
    QByteArray bytes;
    bytes.reserve(content.size());
    for (qsizetype i = 0; i < content.size(); ++i) {
        const char16_t c = content[i].unicode();
        if (c == u'=') {
            const int high = i + 2 < content.size() ? hexValue(content[i + 1].unicode()) : -1;
            const int low = i + 2 < content.size() ? hexValue(content[i + 2].unicode()) : -1;
            if (high < 0 || low < 0) {
                return std::nullopt;
            }
            bytes += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            bytes += c == u'_' ? ' ' : static_cast<char>(c);
        }
    }
    return bytes;
}

std::optional<QByteArray> decodeB(QStringView content)
{
    auto result = QByteArray::fromBase64Encoding(content.toLatin1(),
                                                 QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!result) {
        return std::nullopt;
    }
    return std::move(result.decoded);
}

/// The encoded word that begins at @p at, where "=?" stands.
std::optional<EncodedWord> wordAt(const QString &text, qsizetype at)
{
    if (!QStringView(text).mid(at).startsWith(u"=?")) {
        return std::nullopt;
    }
    const QStringView head = QStringView(text).mid(at + 2, longestCharset);
    const qsizetype charsetSize = head.indexOf(u'?');
    const qsizetype form = at + 2 + charsetSize + 1;
    if (charsetSize < 1 || form + 1 >= text.size() || text[form + 1] != u'?') {
        return std::nullopt;
    }
    const qsizetype content = form + 2;
    qsizetype end = content;
    while (end < text.size() && text[end] != u'?' && text[end] > u' ' && text[end] < u'\x7f') {
        ++end;
    }
    if (end + 1 >= text.size() || text[end] != u'?' || text[end + 1] != u'=') {
        return std::nullopt;
    }
    const QStringView octets = QStringView(text).mid(content, end - content);
    std::optional<QByteArray> bytes;
    if (text[form] == u'Q' || text[form] == u'q') {
        bytes = decodeQ(octets);
    } else if (text[form] == u'B' || text[form] == u'b') {
        bytes = decodeB(octets);
    }
    const QStringView name = head.left(charsetSize);
    const qsizetype language = name.indexOf(u'*');
    const QByteArray charset = (language < 0 ? name : name.left(language)).toUtf8().toLower();
    if (!bytes || !isKnownCharset(charset)) {
        return std::nullopt;
    }
    return EncodedWord{charset, *bytes, at, end + 2};
}

/// Decodes the words @p first to @p last, neighbours of one charset. Their octets are joined first, since some mailers
/// split characters; a charset with states starts each word anew, so that the words are tried one by one after that.
std::optional<QString> decodeRun(const QList<EncodedWord> &words, qsizetype first, qsizetype last)
{
    QByteArray joined;
    for (qsizetype i = first; i <= last; ++i) {
        joined += words[i].Bytes;
    }
    if (std::optional<QString> whole = decodeStrictly(joined, words[first].Charset)) {
        return whole;
    }
    QString result;
    for (qsizetype i = first; i <= last; ++i) {
        const std::optional<QString> piece = decodeStrictly(words[i].Bytes, words[i].Charset);
        if (!piece) {
            return std::nullopt;
        }
        result += *piece;
    }
    return result;
}

QString decodeGroup(const QString &text, const QList<EncodedWord> &words)
{
    QString result;
    bool beforeIsRaw = false;
    qsizetype first = 0;
    while (first < words.size()) {
        qsizetype last = first;
        while (last + 1 < words.size() && words[last + 1].Charset == words[first].Charset) {
            ++last;
        }
        const std::optional<QString> decoded = decodeRun(words, first, last);
        if (first > 0 && (beforeIsRaw || !decoded)) {
            const qsizetype gap = words[first - 1].End;
            result += QStringView(text).mid(gap, words[first].Begin - gap);
        }
        const qsizetype begin = words[first].Begin;
        result += decoded ? *decoded : text.mid(begin, words[last].End - begin);
        beforeIsRaw = !decoded;
        first = last + 1;
    }
    return result;
}

bool isFoldingBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

} // namespace

QList<QByteArray> encodedWords(const QString &text, const QByteArray &charset, qsizetype firstRoom)
{
    if (text.isEmpty()) {
        return {};
    }
    const QString valid = withoutLoneSurrogates(text);
    const std::optional<QByteArray> whole = encodeStrictly(valid, charset);
    if (whole) {
        const bool useQ = sizeInQ(*whole) <= sizeInB(*whole);
        if (auto words = WordWriter(valid, charset, useQ, firstRoom).words()) {
            return *words;
        }
    }
    const QByteArray utf8 = valid.toUtf8();
    const bool useQ = sizeInQ(utf8) <= sizeInB(utf8);
    return *WordWriter(valid, "UTF-8"_ba, useQ, firstRoom).words();
}

QString decodeEncodedWords(const QString &text)
{
    QString result;
    result.reserve(text.size());
    qsizetype done = 0;
    for (;;) {
        const qsizetype at = text.indexOf(u"=?"_s, done);
        if (at < 0) {
            return result += QStringView(text).mid(done);
        }
        result += QStringView(text).mid(done, at - done);
        std::optional<EncodedWord> word = wordAt(text, at);
        if (!word) {
            result += text[at];
            done = at + 1;
            continue;
        }
        QList<EncodedWord> group;
        while (word) {
            group.append(*word);
            done = word->End;
            qsizetype next = done;
            while (next < text.size() && isFoldingBlank(text[next])) {
                ++next;
            }
            word = wordAt(text, next);
        }
        result += decodeGroup(text, group);
    }
}

} // namespace quillon
