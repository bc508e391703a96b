#include "quillon/mail/headerfield.h"

#include "quillon/mail/asciidomain.h"
#include "quillon/mail/charset.h"
#include "quillon/mail/encodedword.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr qsizetype longestLine = 76;
constexpr qsizetype longestPlainWord = 60;  // a longer one would not fold, so the text is encoded
constexpr qsizetype longestPlainValue = 60; // of a parameter in quotes
constexpr qsizetype longestPiece = 50;      // octets of one numbered piece of a parameter

bool isPrintableAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u' ' && c < u'\x7f'; });
}

bool isAtomCharacter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           u"!#$%&'*+-/=?^_`{|}~"_s.contains(c);
}

bool hasEdgeOrDoubleBlank(const QString &text)
{
    return text.startsWith(u' ') || text.endsWith(u' ') || text.contains(u"  "_s);
}

bool hasLongWord(const QString &text)
{
    qsizetype length = 0;
    for (const QChar c : text) {
        length = c == u' ' ? 0 : length + 1;
        if (length > longestPlainWord) {
            return true;
        }
    }
    return false;
}

QByteArray inQuotes(const QString &text)
{
    QByteArray quoted = "\"";
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\') {
            quoted += '\\';
        }
        quoted += c.toLatin1();
    }
    return quoted + '"';
}

void addWords(HeaderField &field, const QByteArrayList &words)
{
    for (const QByteArray &word : words) {
        field.add(word);
    }
}

void addPhrase(HeaderField &field, const QString &name)
{
    if (!isPrintableAscii(name) || name.contains(u"=?"_s) || name.size() > longestPlainWord ||
        hasEdgeOrDoubleBlank(name)) {
        addWords(field, encodedWords(name, "UTF-8"_ba, std::min(field.room(), longestEncodedWord)));
    } else if (std::all_of(name.begin(), name.end(), [](QChar c) { return c == u' ' || isAtomCharacter(c); })) {
        field.add(name.toLatin1());
    } else {
        field.add(inQuotes(name));
    }
}

/// "" when @p local is no local part; whether it is US-ASCII is for the caller to see.
bool isLocalPart(const QString &local)
{
    if (local.size() >= 2 && local.startsWith(u'"') && local.endsWith(u'"')) {
        for (qsizetype i = 1; i < local.size() - 1; ++i) {
            if (local[i] == u'\\') {
                if (++i >= local.size() - 1) {
                    return false;
                }
            } else if (local[i] == u'"') {
                return false;
            }
        }
        return true;
    }
    // Dots anywhere: there are live mailboxes with two in a row.
    return !local.isEmpty() && std::all_of(local.begin(), local.end(), [](QChar c) {
        return c == u'.' || isAtomCharacter(c) || (c.unicode() >= 0xA0 && !c.isSpace());
    });
}

bool isControl(QChar c)
{
    return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0) || c.unicode() == 0x2028 ||
           c.unicode() == 0x2029;
}

bool isAsciiDomain(QByteArrayView domain)
{
    return !domain.isEmpty() && !domain.startsWith('.') && !domain.contains("..") &&
           std::all_of(domain.begin(), domain.end(), [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                      c == '_' || c == '.';
           });
}

/// The domain in ASCII as it may stand in a header field; empty when it may not.
QByteArray headerDomain(const QString &domain)
{
    if (domain.startsWith(u'[')) {
        const bool isLiteral = domain.size() > 2 && domain.endsWith(u']') &&
                               std::all_of(domain.begin() + 1, domain.end() - 1, [](QChar c) {
                                   return c > u' ' && c < u'\x7f' && c != u'[' && c != u']' && c != u'\\';
                               });
        return isLiteral ? domain.toLatin1() : QByteArray();
    }
    const QByteArray octets = asciiDomain(domain);
    return isAsciiDomain(octets) ? octets : QByteArray();
}

/// Whether @p value, which has no blanks at its ends, needs no coding.
bool standsInQuotes(const QString &value)
{
    return value.size() <= longestPlainValue && isPrintableAscii(value) && !value.contains(u'"') &&
           !value.contains(u'\\') && !value.contains(u"=?"_s);
}

/// @p value in UTF-8 with "%" escapes, in pieces that end between characters.
QByteArrayList escapedPieces(const QString &value)
{
    QByteArrayList pieces;
    QByteArray piece;
    for (const char32_t character : value.toStdU32String()) {
        QByteArray escaped;
        const bool plain = character < 0x80 && (QChar(character).isLetterOrNumber() || character == U'-' ||
                                                character == U'.' || character == U'_');
        const QByteArray octets = QString::fromUcs4(&character, 1).toUtf8();
        escaped = plain ? octets : '%' + octets.toHex('%').toUpper();
        if (piece.size() + escaped.size() > longestPiece) {
            pieces.append(piece);
            piece.clear();
        }
        piece += escaped;
    }
    pieces.append(piece);
    return pieces;
}

} // namespace

HeaderField::HeaderField(QByteArray &out, QByteArrayView name) : m_out(out), m_lineStart(out.size())
{
    m_out += name;
    m_out += ':';
}

void HeaderField::add(QByteArrayView token)
{
    if (!m_empty && token.size() > room()) {
        m_out += "\r\n";
        m_lineStart = m_out.size();
    }
    m_out += ' ';
    m_out += token;
    m_empty = false;
}

qsizetype HeaderField::room() const
{
    return longestLine - 1 - (m_out.size() - m_lineStart);
}

void HeaderField::end()
{
    m_out += "\r\n";
}

QString headerText(const QString &text)
{
    if (std::none_of(text.begin(), text.end(), [](QChar c) { return isControl(c) || c.isSurrogate(); })) {
        return text;
    }
    QString clean;
    clean.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
            continue; // its line feed becomes the blank
        }
        if (c == u'\r' || c == u'\n' || c == u'\t' || c == u'\v' || c == u'\f' || c == 0x85 || c == 0x2028 ||
            c == 0x2029) {
            clean += u' ';
        } else if (!isControl(text[i])) {
            clean += text[i];
        }
    }
    return withoutLoneSurrogates(clean);
}

std::optional<AddressSpec> addressSpec(const QString &address)
{
    const qsizetype at = address.lastIndexOf(u'@');
    if (at < 1 || std::any_of(address.begin(), address.end(), isControl) || withoutLoneSurrogates(address) != address) {
        return std::nullopt;
    }
    const QString local = address.left(at);
    const QByteArray domain = headerDomain(address.mid(at + 1));
    if (domain.isEmpty() || !isLocalPart(local)) {
        return std::nullopt;
    }
    return AddressSpec{local.toUtf8() + '@' + domain, !isPrintableAscii(local)};
}

void appendTextField(QByteArray &out, QByteArrayView name, const QString &text)
{
    const QString clean = headerText(text);
    HeaderField field(out, name);
    const bool plain =
        isPrintableAscii(clean) && !clean.contains(u"=?"_s) && !clean.startsWith(u' ') && !clean.endsWith(u' ');
    if (plain && clean.size() <= field.room()) {
        field.add(clean.toLatin1());
    } else if (plain && !hasEdgeOrDoubleBlank(clean) && !hasLongWord(clean)) {
        addWords(field, clean.toLatin1().split(' '));
    } else {
        addWords(field, encodedWords(clean, "UTF-8"_ba, std::min(field.room(), longestEncodedWord)));
    }
    field.end();
}

void appendAddressField(QByteArray &out, QByteArrayView name, const QList<HeaderMailbox> &mailboxes)
{
    HeaderField field(out, name);
    for (qsizetype i = 0; i < mailboxes.size(); ++i) {
        const QString shown = headerText(mailboxes[i].Name).trimmed();
        QByteArray address = mailboxes[i].Address;
        if (!shown.isEmpty()) {
            addPhrase(field, shown);
            address = '<' + address + '>';
        }
        field.add(i + 1 < mailboxes.size() ? address + ',' : address);
    }
    field.end();
}

void addParameter(HeaderField &field, QByteArrayView name, const QString &value)
{
    const QString clean = headerText(value).trimmed();
    const QByteArray key = name.toByteArray();
    if (standsInQuotes(clean)) {
        field.add(key + '=' + inQuotes(clean));
        return;
    }
    const QByteArrayList pieces = escapedPieces(clean);
    if (pieces.size() == 1) {
        field.add(key + "*=UTF-8''" + pieces.first());
        return;
    }
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QByteArray start = key + '*' + QByteArray::number(i) + "*=" + (i == 0 ? "UTF-8''" : "");
        field.add(start + pieces[i] + (i + 1 < pieces.size() ? ";" : ""));
    }
}

void addParameterInWords(HeaderField &field, QByteArrayView name, const QString &value)
{
    const QString clean = headerText(value).trimmed();
    const QByteArray key = name.toByteArray() + "=\"";
    if (standsInQuotes(clean)) {
        field.add(name.toByteArray() + '=' + inQuotes(clean));
        return;
    }
    QByteArrayList words = encodedWords(clean, "UTF-8"_ba, longestEncodedWord - key.size() - 2);
    words.first().prepend(key);
    words.last().append('"');
    addWords(field, words);
}

} // namespace quillon
