#pragma once

#include <QString>
#include <QStringView>

namespace quillon {

/// One piece of an HTML source. Offsets are into the source.
struct HtmlToken {
    enum class Kind { Text, RawText, StartTag, EndTag, Markup };
    Kind What = Kind::Text; ///< RawText: inside script, style and so on; Markup: comment, doctype, instruction
    qsizetype Begin = 0;
    qsizetype End = 0; ///< behind the last character
    QString Name;      ///< of a tag, lower case; of RawText, the element that holds it
};

/// One attribute of a start tag. Offsets are into the source; the value is without its quotes and not decoded.
struct HtmlAttribute {
    QString Name; ///< lower case
    qsizetype ValueBegin = 0;
    qsizetype ValueEnd = 0;
    bool Quoted = false;
};

/// Cuts an HTML source into pieces that, put together, are the source again. Follows what browsers do with broken
/// sources: "<" before anything but a tag is text; a comment, a tag or a script that is never closed reaches to the
/// end. Takes time in proportion to the source.
class HtmlScanner {
public:
    /// Reads @p source, which must outlive the scanner.
    explicit HtmlScanner(QStringView source) : m_source(source) {}

    /// Puts the next piece into @p token; false at the end.
    bool next(HtmlToken &token);

private:
    [[nodiscard]] qsizetype tagEnd(qsizetype at) const;
    [[nodiscard]] qsizetype rawTextEnd() const;

    QStringView m_source;
    qsizetype m_at = 0;
    QString m_rawElement; ///< not empty: the element whose raw text comes next
};

/// Walks the attributes of one start tag.
class HtmlAttributes {
public:
    HtmlAttributes(QStringView source, const HtmlToken &startTag);

    /// Puts the next attribute into @p attribute; false when there is none.
    bool next(HtmlAttribute &attribute);

private:
    void skipBlanks();

    QStringView m_source;
    qsizetype m_at;
    qsizetype m_end;
};

/// Makes @p name the lower-case form of @p source, the name of a tag or attribute, in which only US-ASCII has cases.
void assignLowerName(QString &name, QStringView source);

/// @p text with its character references decoded ("&amp;", "&#8364;", "&#x20AC;"). What is none stays as it is.
[[nodiscard]] QString decodeHtmlText(QStringView text);

} // namespace quillon
