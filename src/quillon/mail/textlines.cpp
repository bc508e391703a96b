#include "quillon/mail/textlines.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int deepestIndent = 8; // deeper lists and quotes stay there, so that the result cannot outgrow the source
constexpr int mostBreaks = 3;

bool isCollapsible(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f';
}

} // namespace

void TextLines::explicitBreak()
{
    m_breaks = std::min(m_breaks + 1, mostBreaks);
}

void TextLines::quote(int change)
{
    m_quotes = std::max(0, m_quotes + change);
}

void TextLines::indent(int change)
{
    m_indent += change; // whoever calls knows which lists are open
}

void TextLines::addCollapsed(QStringView text)
{
    qsizetype at = 0;
    while (at < text.size()) {
        if (isCollapsible(text[at])) {
            m_blank = true;
            ++at;
        } else if (!m_text.isEmpty() && m_breaks == 0 && !m_cell) {
            at += addWordsOfLine(text.sliced(at));
        } else {
            qsizetype end = at;
            while (end < text.size() && !isCollapsible(text[end])) {
                ++end;
            }
            addWord(text.sliced(at, end - at));
            at = end;
        }
    }
}

// Goes on with a line that is begun, to the end of @p text, which begins with a word. Written through a pointer, as
// most of a document is such text.
qsizetype TextLines::addWordsOfLine(QStringView text)
{
    const qsizetype begin = m_text.size();
    bool blank = m_blank;
    m_text.resize(begin + text.size() + 1);
    QChar *const start = m_text.data();
    QChar *to = start + begin;
    for (const QChar c : text) {
        if (isCollapsible(c)) {
            blank = true;
            continue;
        }
        if (blank) {
            // A no-break space may have ended the word before: it counts as a blank, as in addWord().
            if (to[-1] != u' ') {
                *to++ = u' ';
            }
            blank = false;
        }
        *to++ = c == QChar(QChar::Nbsp) ? QChar(u' ') : c;
    }
    m_text.truncate(to - start);
    m_blank = blank;
    return text.size();
}

void TextLines::addPreformatted(QStringView text)
{
    qsizetype at = 0;
    for (;;) {
        qsizetype end = at;
        while (end < text.size() && text[end] != u'\n' && text[end] != u'\r') {
            ++end;
        }
        if (end > at) {
            addWord(text.sliced(at, end - at));
        }
        if (end >= text.size()) {
            return;
        }
        explicitBreak();
        at = end + (text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n' ? 2 : 1);
    }
}

QStringView TextLines::textFrom(qsizetype at) const
{
    return QStringView(m_text).sliced(std::max(at, m_lineBegin));
}

QString TextLines::finished()
{
    trimLine();
    return m_text.isEmpty() ? m_text : m_text + u"\r\n"_s;
}

void TextLines::wantBreaks(int count)
{
    m_breaks = std::max(m_breaks, count);
}

void TextLines::trimLine()
{
    while (m_text.endsWith(u' ') || m_text.endsWith(u'\t')) {
        m_text.chop(1);
    }
}

void TextLines::addWord(QStringView word)
{
    const int quotes = std::min(m_quotes, deepestIndent);
    if (m_text.isEmpty()) {
        beginLine(quotes);
    } else if (m_breaks > 0) {
        trimLine();
        for (int i = 1; i < m_breaks; ++i) {
            m_text += u"\r\n"_s + QString(std::min(quotes, m_lineQuotes), u'>');
        }
        m_text += u"\r\n";
        beginLine(quotes);
    } else if (m_cell) {
        m_text += u" | ";
    } else if (m_blank && !m_text.endsWith(u' ')) {
        m_text += u' ';
    }
    m_breaks = 0;
    m_blank = false;
    m_cell = false;
    const qsizetype begin = m_text.size();
    m_text += word;
    // A no-break space is a plain one in a text, but one that stays.
    std::replace(m_text.begin() + begin, m_text.end(), QChar(QChar::Nbsp), QChar(u' '));
}

void TextLines::beginLine(int quotes)
{
    m_lineQuotes = quotes;
    if (quotes > 0) {
        m_text += QString(quotes, u'>') + u' ';
    }
    const int depth = std::min(m_indent, deepestIndent);
    // The mark of an entry stands where the entry's further lines are indented to.
    m_text += QString(std::max(0, m_marker.isEmpty() ? depth * 2 : depth * 2 - 2), u' ') + m_marker;
    m_marker.clear();
    m_lineBegin = m_text.size();
}

} // namespace quillon
