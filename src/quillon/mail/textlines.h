#pragma once

#include <QString>
#include <QStringView>

namespace quillon {

/// Puts the words and breaks of a text version together. Breaks and blanks are only noted, and written when text
/// follows, so that there are none at the end and no more than wanted in between.
class TextLines {
public:
    /// The next text begins a line.
    void lineBreak() { wantBreaks(1); }
    /// The next text begins a line after an empty one.
    void paragraphBreak() { wantBreaks(2); }
    /// One more line end, up to two empty lines.
    void explicitBreak();
    /// The next text is another cell of the same row.
    void cell() { m_cell = m_breaks == 0; }
    /// The next line begins with @p marker, such as "- ".
    void setMarker(const QString &marker) { m_marker = marker; }
    /// Deepens (1) or ends (-1) a quote, or the indent of a list.
    void quote(int change);
    void indent(int change);

    /// Adds @p text with every run of blanks and line ends taken for one blank.
    void addCollapsed(QStringView text);
    /// Adds @p text with its blanks and line ends.
    void addPreformatted(QStringView text);

    /// Makes room for a text of @p size characters.
    void reserve(qsizetype size) { m_text.reserve(size); }
    [[nodiscard]] qsizetype size() const { return m_text.size(); }
    /// What the last line got since the text had @p at characters; what marks a quote or an entry is not told.
    [[nodiscard]] QStringView textFrom(qsizetype at) const;

    /// The whole text, closed by a line end unless it is empty.
    QString finished();

private:
    void wantBreaks(int count);
    void trimLine();
    void addWord(QStringView word);
    qsizetype addWordsOfLine(QStringView text);
    void beginLine(int quotes);

    QString m_text;
    QString m_marker;
    qsizetype m_lineBegin = 0; ///< of the last line's text, behind its quote marks and its entry's mark
    int m_breaks = 0;
    int m_quotes = 0;
    int m_lineQuotes = 0;
    int m_indent = 0;
    bool m_blank = false;
    bool m_cell = false;
};

} // namespace quillon
