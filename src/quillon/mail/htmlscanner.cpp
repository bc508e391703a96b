#include "quillon/mail/htmlscanner.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

bool isLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f';
}

bool holdsRawText(QStringView element)
{
    return element == u"script" || element == u"style" || element == u"title" || element == u"textarea" ||
           element == u"xmp" || element == u"noframes";
}

} // namespace

void assignLowerName(QString &name, QStringView source)
{
    // A name that is used again keeps its memory: a document has hundreds of tags.
    name.resize(source.size());
    std::transform(source.begin(), source.end(), name.begin(),
                   [](QChar c) { return c >= u'A' && c <= u'Z' ? QChar(c.unicode() | 0x20) : c; });
}

bool HtmlScanner::next(HtmlToken &token)
{
    if (m_at >= m_source.size()) {
        return false;
    }
    token.Begin = m_at;
    if (!m_rawElement.isEmpty()) {
        token.End = rawTextEnd();
        token.Name = std::exchange(m_rawElement, QString());
        if (token.End > token.Begin) {
            token.What = HtmlToken::Kind::RawText;
            m_at = token.End;
            return true;
        }
    }
    const QStringView rest = m_source.sliced(m_at);
    const bool endTag = rest.size() > 2 && rest[0] == u'<' && rest[1] == u'/' && isLetter(rest[2]);
    const bool startTag = rest.size() > 1 && rest[0] == u'<' && isLetter(rest[1]);
    if (endTag || startTag) {
        qsizetype nameEnd = endTag ? 2 : 1;
        const qsizetype nameBegin = nameEnd;
        while (nameEnd < rest.size() && !isBlank(rest[nameEnd]) && rest[nameEnd] != u'>' && rest[nameEnd] != u'/') {
            ++nameEnd;
        }
        token.What = endTag ? HtmlToken::Kind::EndTag : HtmlToken::Kind::StartTag;
        assignLowerName(token.Name, rest.sliced(nameBegin, nameEnd - nameBegin));
        token.End = tagEnd(m_at + nameEnd);
        if (startTag && holdsRawText(token.Name)) {
            m_rawElement = token.Name;
        }
    } else if (rest.startsWith(u"<!") || rest.startsWith(u"<?") || rest.startsWith(u"</")) {
        const bool comment = rest.startsWith(u"<!--");
        // "<!-->" is a whole comment, so the search begins inside its opening.
        const qsizetype close = comment ? rest.indexOf(u"-->", 2) : rest.indexOf(u'>');
        token.What = HtmlToken::Kind::Markup;
        token.End = close < 0 ? m_source.size() : m_at + close + (comment ? 3 : 1);
    } else {
        const qsizetype lessThan = rest.indexOf(u'<', 1);
        token.What = HtmlToken::Kind::Text;
        token.End = lessThan < 0 ? m_source.size() : m_at + lessThan;
    }
    m_at = token.End;
    return true;
}

/// Behind the ">" that ends the tag; a ">" in a quoted value ends nothing.
qsizetype HtmlScanner::tagEnd(qsizetype at) const
{
    bool valueMayFollow = false;
    while (at < m_source.size()) {
        const QChar c = m_source[at];
        if (c == u'>') {
            return at + 1;
        }
        if (valueMayFollow && (c == u'"' || c == u'\'')) {
            const qsizetype close = m_source.indexOf(c, at + 1);
            if (close < 0) {
                return m_source.size();
            }
            at = close;
        }
        valueMayFollow = c == u'=' || (valueMayFollow && isBlank(c));
        ++at;
    }
    return at;
}

qsizetype HtmlScanner::rawTextEnd() const
{
    qsizetype at = m_at;
    for (;;) {
        at = m_source.indexOf(u"</", at);
        if (at < 0) {
            return m_source.size();
        }
        const QStringView name = m_source.sliced(at + 2);
        if (name.startsWith(m_rawElement, Qt::CaseInsensitive) &&
            (name.size() == m_rawElement.size() || !name[m_rawElement.size()].isLetterOrNumber())) {
            return at;
        }
        at += 2;
    }
}

HtmlAttributes::HtmlAttributes(QStringView source, const HtmlToken &startTag)
    : m_source(source), m_at(startTag.Begin + 1 + startTag.Name.size()), m_end(startTag.End)
{
    if (m_end > m_at && source[m_end - 1] == u'>') {
        --m_end;
    }
}

void HtmlAttributes::skipBlanks()
{
    while (m_at < m_end && isBlank(m_source[m_at])) {
        ++m_at;
    }
}

bool HtmlAttributes::next(HtmlAttribute &attribute)
{
    while (m_at < m_end && (isBlank(m_source[m_at]) || m_source[m_at] == u'/')) {
        ++m_at;
    }
    if (m_at >= m_end) {
        return false;
    }
    const qsizetype nameBegin = m_at;
    do {
        ++m_at; // also over a "=" that stands where a name begins
    } while (m_at < m_end && !isBlank(m_source[m_at]) && m_source[m_at] != u'=' && m_source[m_at] != u'/');
    assignLowerName(attribute.Name, m_source.sliced(nameBegin, m_at - nameBegin));
    attribute.Quoted = false;
    attribute.ValueBegin = attribute.ValueEnd = m_at;
    skipBlanks();
    if (m_at >= m_end || m_source[m_at] != u'=') {
        return true;
    }
    ++m_at;
    skipBlanks();
    attribute.ValueBegin = m_at;
    if (m_at < m_end && (m_source[m_at] == u'"' || m_source[m_at] == u'\'')) {
        const qsizetype close = m_source.first(m_end).indexOf(m_source[m_at], m_at + 1);
        attribute.Quoted = true;
        attribute.ValueBegin = m_at + 1;
        attribute.ValueEnd = close < 0 ? m_end : close;
        m_at = std::min(attribute.ValueEnd + 1, m_end);
        return true;
    }
    while (m_at < m_end && !isBlank(m_source[m_at])) {
        ++m_at;
    }
    attribute.ValueEnd = m_at;
    return true;
}

} // namespace quillon
