#include "quillon/mail/htmlmail.h"

#include "quillon/mail/charset.h"
#include "quillon/mail/htmlscanner.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// Copies a source with some of its stretches replaced.
class Rewriter {
public:
    explicit Rewriter(const QString &source) : m_source(source) { m_result.reserve(source.size() + 256); }

    void replace(qsizetype begin, qsizetype end, const QString &text)
    {
        copyUpTo(begin);
        m_result += text;
        m_done = end;
    }
    void copyUpTo(qsizetype at)
    {
        m_result += QStringView(m_source).sliced(m_done, at - m_done);
        m_done = at;
    }
    [[nodiscard]] qsizetype size() const { return m_result.size(); }
    [[nodiscard]] QString result() const { return m_result; }

private:
    const QString &m_source;
    QString m_result;
    qsizetype m_done = 0;
};

bool namesFile(const QString &element, const QString &attribute)
{
    return attribute == "background"_L1 || (attribute == "src"_L1 && (element == "img"_L1 || element == "bgsound"_L1));
}

void rewriteReferences(Rewriter &rewriter, const QString &html, const HtmlToken &tag,
                       const std::function<QString(const QString &)> &replace)
{
    HtmlAttributes attributes(html, tag);
    HtmlAttribute attribute;
    while (attributes.next(attribute)) {
        if (!namesFile(tag.Name, attribute.Name)) {
            continue;
        }
        const qsizetype size = attribute.ValueEnd - attribute.ValueBegin;
        const QString value = decodeHtmlText(QStringView(html).sliced(attribute.ValueBegin, size)).trimmed();
        if (const QString replacement = replace(value); !replacement.isEmpty()) {
            rewriter.replace(attribute.ValueBegin, attribute.ValueEnd, replacement);
        }
    }
}

void rewriteMeta(Rewriter &rewriter, const QString &html, const HtmlToken &tag, const QString &charset)
{
    HtmlAttributes attributes(html, tag);
    HtmlAttribute attribute;
    while (attributes.next(attribute)) {
        if (attribute.Name == "charset"_L1) {
            rewriter.replace(attribute.ValueBegin, attribute.ValueEnd, charset);
        } else if (attribute.Name == "content"_L1) {
            const QStringView value =
                QStringView(html).sliced(attribute.ValueBegin, attribute.ValueEnd - attribute.ValueBegin);
            const qsizetype key = value.indexOf(u"charset=", 0, Qt::CaseInsensitive);
            if (key < 0 || !value.startsWith(u"text/", Qt::CaseInsensitive)) {
                continue;
            }
            const qsizetype begin = key + 8;
            qsizetype end = begin;
            while (end < value.size() && value[end] != u';' && value[end] != u' ') {
                ++end;
            }
            rewriter.replace(attribute.ValueBegin + begin, attribute.ValueBegin + end, charset);
        }
    }
}

bool fits(const QString &text, const QByteArray &charset)
{
    return encodeStrictly(text, charset).has_value();
}

/// @p html with every character that does not fit @p charset as a reference.
QString withReferences(const QString &html, const QByteArray &charset)
{
    QString result;
    result.reserve(html.size() + html.size() / 8);
    QHash<char32_t, bool> known;
    for (qsizetype i = 0; i < html.size(); ++i) {
        const QChar c = html[i];
        if (c.unicode() < 0x80) {
            result += c;
            continue;
        }
        const bool pair = c.isHighSurrogate() && i + 1 < html.size() && html[i + 1].isLowSurrogate();
        const char32_t code = pair ? QChar::surrogateToUcs4(c, html[i + 1]) : c.unicode();
        const QString character = html.sliced(i, pair ? 2 : 1);
        auto found = known.find(code);
        if (found == known.end()) {
            found = known.insert(code, fits(character, charset));
        }
        result += *found ? character : u"&#"_s + QString::number(static_cast<uint>(code)) + u';';
        i += pair ? 1 : 0;
    }
    return result;
}

} // namespace

HtmlMail htmlForMail(const QString &html, const QByteArray &charset,
                     const std::function<QString(const QString &)> &replace)
{
    HtmlMail mail;
    Rewriter rewriter(html);
    HtmlScanner scanner(html);
    HtmlToken token;
    while (scanner.next(token)) {
        if (token.What == HtmlToken::Kind::StartTag) {
            rewriteReferences(rewriter, html, token, replace);
            if (token.Name == "meta"_L1) {
                rewriteMeta(rewriter, html, token, QString::fromLatin1(charset));
            }
        } else if (token.What == HtmlToken::Kind::RawText && token.Name != "title"_L1 && token.Name != "textarea"_L1) {
            rewriter.copyUpTo(token.Begin);
            const qsizetype begin = rewriter.size();
            rewriter.copyUpTo(token.End);
            mail.Raw.append({begin, rewriter.size()});
        }
    }
    rewriter.copyUpTo(html.size());
    mail.Html = rewriter.result();
    return mail;
}

std::optional<QByteArray> encodeHtml(const HtmlMail &mail, const QByteArray &charset)
{
    if (auto whole = encodeStrictly(mail.Html, charset)) {
        return whole;
    }
    if (!isKnownCharset(charset)) {
        return std::nullopt;
    }
    for (const HtmlMail::Range &raw : mail.Raw) {
        if (!fits(mail.Html.sliced(raw.Begin, raw.End - raw.Begin), charset)) {
            return std::nullopt;
        }
    }
    return encodeStrictly(withReferences(mail.Html, charset), charset);
}

} // namespace quillon
