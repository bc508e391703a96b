// HTML sources: the pieces make up the source, the text version is made of whole lines and shows what stands there.

#include "check.h"
#include "quillon/mail/charset.h"
#include "quillon/mail/htmlscanner.h"
#include "quillon/mail/htmltext.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;
using quillon::HtmlToken;

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f';
}

void checkName(const QString &name)
{
    for (const QChar c : name) {
        mustHold(!(c >= u'A' && c <= u'Z') && !isBlank(c));
    }
}

void checkAttributes(const QString &source, const HtmlToken &tag)
{
    quillon::HtmlAttributes attributes(source, tag);
    quillon::HtmlAttribute attribute;
    qsizetype at = tag.Begin + 1 + tag.Name.size();
    while (attributes.next(attribute)) {
        checkName(attribute.Name);
        mustHold(!attribute.Name.isEmpty());
        mustHold(attribute.ValueBegin > at && attribute.ValueEnd >= attribute.ValueBegin);
        mustHold(attribute.ValueEnd <= tag.End);
        const QStringView value =
            QStringView(source).sliced(attribute.ValueBegin, attribute.ValueEnd - attribute.ValueBegin);
        if (attribute.Quoted) {
            const QChar quote = source[attribute.ValueBegin - 1];
            mustHold((quote == u'"' || quote == u'\'') && !value.contains(quote));
        } else {
            mustHold(std::none_of(value.begin(), value.end(), isBlank));
        }
        at = attribute.ValueEnd;
    }
}

void checkPieces(const QString &source)
{
    quillon::HtmlScanner scanner(source);
    HtmlToken token;
    qsizetype at = 0;
    while (scanner.next(token)) {
        mustHold(token.Begin == at && token.End > at && token.End <= source.size());
        at = token.End;
        if (token.What == HtmlToken::Kind::StartTag || token.What == HtmlToken::Kind::EndTag) {
            mustHold(source[token.Begin] == u'<' && !token.Name.isEmpty());
            checkName(token.Name);
        }
        if (token.What == HtmlToken::Kind::StartTag) {
            checkAttributes(source, token);
        }
        if (token.What == HtmlToken::Kind::Text) {
            mustHold(source.indexOf(u'<', token.Begin + 1) < 0 || source.indexOf(u'<', token.Begin + 1) >= token.End);
        }
    }
    mustHold(at == source.size());
}

void checkText(const QString &source, quillon::HtmlExtras extras)
{
    const QString text = quillon::textOfHtml(source, extras);
    mustHold(text.isEmpty() || text.endsWith(u"\r\n"_s));
    mustHold(!text.contains(QChar(QChar::Nbsp)));
    mustHold(text.size() <= 64 * (source.size() + 1)); // lists and quotes are indented to a bounded depth
}

/// Words that are written as HTML come back as they are.
void checkWords(const QString &source)
{
    QString words;
    QString html;
    for (const QChar c : source) {
        const bool printed = c > u' ' && c != QChar(QChar::Nbsp) && !c.isSurrogate();
        words += printed ? c : u' ';
        html += !printed       ? u" \n"_s
                : c == u'<'    ? u"&lt;"_s
                : c == u'&'    ? u"&amp;"_s
                : c == u'\x7f' ? u"&#127;"_s
                               : QString(c);
    }
    QString expected;
    for (const QString &word : words.split(u' ', Qt::SkipEmptyParts)) {
        expected += (expected.isEmpty() ? u""_s : u" "_s) + word;
    }
    mustHold(quillon::textOfHtml(u"<html><title>not shown</title><p>"_s + html) ==
             (expected.isEmpty() ? expected : expected + u"\r\n"_s));
    mustHold(quillon::decodeHtmlText(QString(source).replace(u'&', u"&amp;"_s)) == source);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString source = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    checkPieces(source);
    checkText(source, quillon::HtmlExtras::Told);
    checkText(source, quillon::HtmlExtras::LeftOut);
    checkWords(source);
    return 0;
}
