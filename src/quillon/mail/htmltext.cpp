#include "quillon/mail/htmltext.h"

#include "quillon/mail/htmlscanner.h"
#include "quillon/mail/textlines.h"

#include <QList>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int ruleLength = 40;

enum class Element {
    Block,
    Paragraph,
    Break,
    Rule,
    UnorderedList,
    OrderedList,
    Entry,
    Quote,
    Row,
    Cell,
    Link,
    Picture,
    Pre
};

struct NamedElement {
    std::string_view Name;
    Element What;
};

// In the order of their names.
constexpr std::array elements = std::to_array<NamedElement>({
    {"a", Element::Link},
    {"address", Element::Block},
    {"article", Element::Block},
    {"aside", Element::Block},
    {"blockquote", Element::Quote},
    {"br", Element::Break},
    {"caption", Element::Block},
    {"center", Element::Block},
    {"dd", Element::Block},
    {"dir", Element::UnorderedList},
    {"div", Element::Block},
    {"dl", Element::Paragraph},
    {"dt", Element::Block},
    {"fieldset", Element::Block},
    {"figcaption", Element::Block},
    {"figure", Element::Paragraph},
    {"footer", Element::Block},
    {"form", Element::Block},
    {"h1", Element::Paragraph},
    {"h2", Element::Paragraph},
    {"h3", Element::Paragraph},
    {"h4", Element::Paragraph},
    {"h5", Element::Paragraph},
    {"h6", Element::Paragraph},
    {"header", Element::Block},
    {"hr", Element::Rule},
    {"img", Element::Picture},
    {"li", Element::Entry},
    {"listing", Element::Pre},
    {"main", Element::Block},
    {"menu", Element::UnorderedList},
    {"nav", Element::Block},
    {"ol", Element::OrderedList},
    {"option", Element::Block},
    {"p", Element::Paragraph},
    {"pre", Element::Pre},
    {"section", Element::Block},
    {"table", Element::Paragraph},
    {"td", Element::Cell},
    {"th", Element::Cell},
    {"tr", Element::Row},
    {"ul", Element::UnorderedList},
});

static_assert(std::ranges::is_sorted(elements, {}, &NamedElement::Name));

constexpr qsizetype longestName = 10;

/// What @p name, in lower case, is to a text; nothing where it only changes how things look.
std::optional<Element> elementOf(QStringView name)
{
    if (name.size() > longestName) {
        return std::nullopt;
    }
    std::array<char, longestName> octets{};
    std::transform(name.begin(), name.end(), octets.begin(), [](QChar c) { return c.toLatin1(); });
    const std::string_view wanted(octets.data(), static_cast<size_t>(name.size()));
    const auto *const found = std::lower_bound(elements.begin(), elements.end(), wanted,
                                               [](const NamedElement &e, std::string_view n) { return e.Name < n; });
    return found != elements.end() && found->Name == wanted ? std::optional(found->What) : std::nullopt;
}

class TextMaker {
public:
    TextMaker(QStringView html, HtmlExtras extras) : m_html(html), m_extras(extras == HtmlExtras::Told) {}

    QString make()
    {
        m_lines.reserve(m_html.size());
        HtmlScanner scanner(m_html);
        HtmlToken token;
        while (scanner.next(token)) {
            const QStringView source = m_html.sliced(token.Begin, token.End - token.Begin);
            switch (token.What) {
            case HtmlToken::Kind::Text:
                // Most of a document needs no decoding, and then no copy either.
                source.contains(u'&') ? addText(decodeHtmlText(source)) : addText(source);
                break;
            case HtmlToken::Kind::RawText:
                if (token.Name == "textarea"_L1) {
                    m_lines.addPreformatted(decodeHtmlText(source));
                }
                break;
            case HtmlToken::Kind::StartTag:
                startTag(token);
                break;
            case HtmlToken::Kind::EndTag:
                endTag(token);
                break;
            case HtmlToken::Kind::Markup:
                break;
            }
        }
        closeLink();
        return m_lines.finished();
    }

private:
    void addText(QStringView text)
    {
        if (m_pre > 0) {
            m_lines.addPreformatted(text);
        } else {
            m_lines.addCollapsed(text);
        }
    }

    [[nodiscard]] QString attribute(const HtmlToken &tag, QStringView name) const
    {
        HtmlAttributes attributes(m_html, tag);
        HtmlAttribute found;
        while (attributes.next(found)) {
            if (found.Name == name) {
                return decodeHtmlText(m_html.sliced(found.ValueBegin, found.ValueEnd - found.ValueBegin)).simplified();
            }
        }
        return {};
    }

    void beginList(bool ordered)
    {
        m_lists.isEmpty() ? m_lines.paragraphBreak() : m_lines.lineBreak();
        m_lists.append(ordered ? 1 : 0);
        m_lines.indent(1);
    }

    void endList()
    {
        if (!m_lists.isEmpty()) {
            m_lists.removeLast();
            m_lines.indent(-1);
        }
        m_lists.isEmpty() ? m_lines.paragraphBreak() : m_lines.lineBreak();
    }

    void beginEntry()
    {
        m_lines.lineBreak();
        if (m_lists.isEmpty() || m_lists.last() == 0) {
            m_lines.setMarker(u"- "_s);
        } else {
            m_lines.setMarker(QString::number(m_lists.last()++) + u". "_s);
        }
    }

    void startTag(const HtmlToken &tag)
    {
        const std::optional<Element> element = elementOf(tag.Name);
        if (!element) {
            return;
        }
        switch (*element) {
        case Element::Block:
        case Element::Row:
            m_lines.lineBreak();
            break;
        case Element::Paragraph:
            m_lines.paragraphBreak();
            break;
        case Element::Break:
            m_lines.explicitBreak();
            break;
        case Element::Rule:
            m_lines.lineBreak();
            m_lines.addCollapsed(QString(ruleLength, u'-'));
            m_lines.lineBreak();
            break;
        case Element::UnorderedList:
        case Element::OrderedList:
            beginList(*element == Element::OrderedList);
            break;
        case Element::Entry:
            beginEntry();
            break;
        case Element::Quote:
            m_lines.paragraphBreak();
            m_lines.quote(1);
            break;
        case Element::Cell:
            m_lines.cell();
            break;
        case Element::Link:
            closeLink(); // a link cannot hold another
            m_link = m_extras ? attribute(tag, u"href") : QString();
            m_linkBegin = m_lines.size();
            break;
        case Element::Picture:
            if (const QString text = attribute(tag, u"alt"); m_extras && !text.isEmpty()) {
                m_lines.addCollapsed(u'[' + text + u']');
            }
            break;
        case Element::Pre:
            m_lines.paragraphBreak();
            ++m_pre;
            break;
        }
    }

    void endTag(const HtmlToken &tag)
    {
        const std::optional<Element> element = elementOf(tag.Name);
        if (!element) {
            return;
        }
        switch (*element) {
        case Element::Block:
        case Element::Row:
        case Element::Entry:
            m_lines.lineBreak();
            break;
        case Element::Paragraph:
            m_lines.paragraphBreak();
            break;
        case Element::UnorderedList:
        case Element::OrderedList:
            endList();
            break;
        case Element::Quote:
            m_lines.paragraphBreak();
            m_lines.quote(-1);
            break;
        case Element::Link:
            closeLink();
            break;
        case Element::Pre:
            m_lines.paragraphBreak();
            m_pre = std::max(0, m_pre - 1);
            break;
        case Element::Break:
        case Element::Rule:
        case Element::Cell:
        case Element::Picture:
            break;
        }
    }

    /// Writes the address of the open link behind its text, unless the text says it already or it leads nowhere.
    void closeLink()
    {
        const QString link = std::exchange(m_link, QString());
        if (link.isEmpty()) {
            return;
        }
        const bool leadsOut =
            link.startsWith("http:"_L1, Qt::CaseInsensitive) || link.startsWith("https:"_L1, Qt::CaseInsensitive) ||
            link.startsWith("ftp:"_L1, Qt::CaseInsensitive) || link.startsWith("tel:"_L1, Qt::CaseInsensitive) ||
            link.startsWith("mailto:"_L1, Qt::CaseInsensitive);
        if (!leadsOut) {
            return;
        }
        const QString shown = link.startsWith("mailto:"_L1, Qt::CaseInsensitive) ? link.mid(7) : link;
        const QStringView text = m_lines.textFrom(m_linkBegin).trimmed();
        if (text == shown || text == link || (shown.endsWith(u'/') && text == QStringView(shown).chopped(1))) {
            return;
        }
        const bool hasText = !text.isEmpty();
        m_lines.addCollapsed((hasText ? u" <"_s : u"<"_s) + shown + u'>');
    }

    QStringView m_html;
    bool m_extras;
    TextLines m_lines;
    QList<int> m_lists; ///< the open lists: the next number, 0 for a list without numbers
    QString m_link;
    qsizetype m_linkBegin = 0;
    int m_pre = 0;
};

} // namespace

QString textOfHtml(QStringView html, HtmlExtras extras)
{
    return TextMaker(html, extras).make();
}

} // namespace quillon
