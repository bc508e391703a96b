#include "quillon/mail/htmlmail.h"
#include "quillon/mail/htmlscanner.h"
#include "quillon/mail/htmltext.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillon;

/// How a document is cut into tags, attributes and references, and what is put into it before it travels.
class TestHtmlScanner : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void piecesAreWhatABrowserSees_data();
    void piecesAreWhatABrowserSees();
    void attributesAreThoseABrowserFinds_data();
    void attributesAreThoseABrowserFinds();
    void referencesAreDecodedAsBrowsersDo_data();
    void referencesAreDecodedAsBrowsersDo();
    void charsetOfAMetaElementIsRewritten_data();
    void charsetOfAMetaElementIsRewritten();
    void onlyPicturesSoundsAndBackgroundsNameFiles_data();
    void onlyPicturesSoundsAndBackgroundsNameFiles();
    void rawTextIsFoundBehindAReplacedReference();
};

namespace {

/// The pieces of @p html: their kind, their name where they have one, and their source.
QStringList pieces(const QString &html)
{
    constexpr std::array kinds{u"text", u"raw", u"start", u"end", u"markup"};
    QStringList found;
    HtmlScanner scanner(html);
    HtmlToken token;
    while (scanner.next(token)) {
        const bool named = token.What != HtmlToken::Kind::Text && token.What != HtmlToken::Kind::Markup;
        found.append(QString::fromUtf16(kinds[static_cast<size_t>(token.What)]) +
                     (named ? u' ' + token.Name : QString()) + u": "_s +
                     html.sliced(token.Begin, token.End - token.Begin));
    }
    return found;
}

QString keep(const QString & /*reference*/)
{
    return {};
}

} // namespace

void TestHtmlScanner::piecesAreWhatABrowserSees_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QString &html, const QStringList &expected) {
        QTest::newRow(name) << html << expected;
    };
    row("tags", u"a<B>b</I>c"_s, {u"text: a"_s, u"start b: <B>"_s, u"text: b"_s, u"end i: </I>"_s, u"text: c"_s});
    row("ends of names", u"<a/><b\tx><c\nx><d\rx><e\fx>"_s,
        {u"start a: <a/>"_s, u"start b: <b\tx>"_s, u"start c: <c\nx>"_s, u"start d: <d\rx>"_s, u"start e: <e\fx>"_s});
    row("comment", u"<!--a--b>c-->d"_s, {u"markup: <!--a--b>c-->"_s, u"text: d"_s});
    row("shortest comments", u"<!-->a<!--->b"_s, {u"markup: <!-->"_s, u"text: a"_s, u"markup: <!--->"_s, u"text: b"_s});
    row("open comment", u"<!--a>b"_s, {u"markup: <!--a>b"_s});
    row("declarations", u"<!x>a<?x>b</ x>c"_s,
        {u"markup: <!x>"_s, u"text: a"_s, u"markup: <?x>"_s, u"text: b"_s, u"markup: </ x>"_s, u"text: c"_s});
    row("less-than", u"<3 < a"_s, {u"text: <3 "_s, u"text: < a"_s});
    row("quoted end of a tag", u"<a b='>' c = \">\" d>e"_s, {u"start a: <a b='>' c = \">\" d>"_s, u"text: e"_s});
    row("quotes that quote nothing", u"<a 'x>y' b=z'>u'"_s, {u"start a: <a 'x>"_s, u"text: y' b=z'>u'"_s});
    row("quote within a value", u"<a b=z'>u"_s, {u"start a: <a b=z'>"_s, u"text: u"_s});
    row("open quote", u"<a b='x>y"_s, {u"start a: <a b='x>y"_s});
    row("open tag", u"a<b c"_s, {u"text: a"_s, u"start b: <b c"_s});
    row("open name", u"a<b"_s, {u"text: a"_s, u"start b: <b"_s});
    row("open name of an end", u"a</b"_s, {u"text: a"_s, u"end b: </b"_s});
    row("less-than at the end", u"a<"_s, {u"text: a"_s, u"text: <"_s});
    row("begin of an end at the end", u"a</"_s, {u"text: a"_s, u"markup: </"_s});
    row("begin of markup at the end", u"a<!"_s, {u"text: a"_s, u"markup: <!"_s});
    for (const QString &element : {u"script"_s, u"style"_s, u"title"_s, u"textarea"_s, u"xmp"_s, u"noframes"_s}) {
        row(element.toLatin1().constData(), u"<%1>a<b></%2></%1x></%1>c"_s.arg(element, element.chopped(1)),
            {u"start %1: <%1>"_s.arg(element), u"raw %1: a<b></%2></%1x>"_s.arg(element, element.chopped(1)),
             u"end %1: </%1>"_s.arg(element), u"text: c"_s});
    }
    row("raw text that ends in another case", u"<STYLE>a</Style >b"_s,
        {u"start style: <STYLE>"_s, u"raw style: a"_s, u"end style: </Style >"_s, u"text: b"_s});
    row("raw text that ends with the source", u"<style>a</style"_s,
        {u"start style: <style>"_s, u"raw style: a"_s, u"end style: </style"_s});
    row("no raw text", u"<style></style><b>"_s,
        {u"start style: <style>"_s, u"end style: </style>"_s, u"start b: <b>"_s});
    row("end tag begins no raw text", u"</style><b>"_s, {u"end style: </style>"_s, u"start b: <b>"_s});
    row("open raw text", u"<style>a</"_s, {u"start style: <style>"_s, u"raw style: a</"_s});
}

void TestHtmlScanner::piecesAreWhatABrowserSees()
{
    QFETCH(QString, html);
    QTEST(pieces(html), "expected");
}

void TestHtmlScanner::attributesAreThoseABrowserFinds_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QStringList>("expected"); // name, "=", value; quotes where it was quoted
    QTest::newRow("none") << u"<a>"_s << QStringList();
    QTest::newRow("all forms") << u"<a B=c d='e f' g=\"h i\" j k = l m = 'n'>"_s
                               << QStringList{u"b=c"_s, u"d='e f'"_s, u"g='h i'"_s, u"j="_s, u"k=l"_s, u"m='n'"_s};
    QTest::newRow("slashes") << u"<a/b=c/d/e/f=g/>"_s << QStringList{u"b=c/d/e/f=g/"_s};
    QTest::newRow("slash between names") << u"<a b/c d=e />"_s << QStringList{u"b="_s, u"c="_s, u"d=e"_s};
    QTest::newRow("no blank behind quotes") << u"<a b='c'd=\"e\"f>"_s << QStringList{u"b='c'"_s, u"d='e'"_s, u"f="_s};
    QTest::newRow("equals sign first") << u"<a =b=c>"_s << QStringList{u"=b=c"_s};
    QTest::newRow("empty values") << u"<a b='' c= d=>"_s << QStringList{u"b=''"_s, u"c=d="_s};
    QTest::newRow("line ends") << u"<a\r\nb\n=\tc\r\n>"_s << QStringList{u"b=c"_s};
    QTest::newRow("open at the end, bare") << u"<a b=cd"_s << QStringList{u"b=cd"_s};
    QTest::newRow("open at the end, name") << u"<a bc"_s << QStringList{u"bc="_s};
    QTest::newRow("open at the end, quoted") << u"<a b='cd"_s << QStringList{u"b='cd'"_s};
    QTest::newRow("open quote ends with its tag") << u"<a =\" b='c\" d>e'"_s << QStringList{u"=\"="_s, u"b='c\" d'"_s};
    QTest::newRow("other quote inside") << u"<a b='\"' c=\"'\">"_s << QStringList{u"b='\"'"_s, u"c='''"_s};
}

void TestHtmlScanner::attributesAreThoseABrowserFinds()
{
    QFETCH(QString, html);
    HtmlScanner scanner(html);
    HtmlToken token;
    QVERIFY(scanner.next(token));
    HtmlAttributes attributes(html, token);
    HtmlAttribute attribute;
    QStringList found;
    while (attributes.next(attribute)) {
        const QString value = html.sliced(attribute.ValueBegin, attribute.ValueEnd - attribute.ValueBegin);
        found.append(attribute.Name + u'=' + (attribute.Quoted ? u'\'' + value + u'\'' : value));
    }
    QTEST(found, "expected");
}

void TestHtmlScanner::referencesAreDecodedAsBrowsersDo_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("text");
    const auto row = [](const QString &source, const QString &text) {
        QTest::newRow(source.toLatin1().constData()) << source << text;
    };
    row(u"a"_s, u"a"_s);
    row(u"&AElig;&AMP;&zwnj;&zwj;"_s, u"Æ&AMP;\u200C\u200D"_s);
    row(u"&frac12;&there4;&thetasym;"_s, u"½∴ϑ"_s);
    row(u"&lt&gt &amp"_s, u"<> &"_s);
    row(u"&yuml &yuml"_s, u"ÿ ÿ"_s);
    row(u"&euro &euro"_s, u"&euro &euro"_s);
    row(u"&copy=&copy;="_s, u"&copy=©="_s);
    row(u"&amp;amp;"_s, u"&amp;"_s);
    row(u"&amp;lt;&;&"_s, u"&lt;&;&"_s);
    row(u"&#65;;&#65x&#x41;&#X4a;&#x4A"_s, u"A;AxAJJ"_s);
    row(u"&#;&#x;&#xg;&#a;&#"_s, u"&#;&#x;&#xg;&#a;&#"_s);
    row(u"&#127;&#128;&#129;&#159;&#160;"_s, u"\u007F€\u0081Ÿ\u00A0"_s);
    row(u"&#55295;&#55296;&#57343;&#57344;"_s, u"\uD7FF\uFFFD\uFFFD\uE000"_s);
    row(u"&#1114111;&#1114112;&#0;"_s, QString::fromUcs4(U"\U0010FFFF\uFFFD", 2) + u"\uFFFD"_s);
    row(u"&#18446744073709551681;&#x100000041;"_s, u"\uFFFD\uFFFD"_s);
    row(u"&abcdefghijklmn;&ä;"_s, u"&abcdefghijklmn;&ä;"_s);
}

void TestHtmlScanner::referencesAreDecodedAsBrowsersDo()
{
    QFETCH(QString, source);
    QTEST(decodeHtmlText(source), "text");
}

void TestHtmlScanner::charsetOfAMetaElementIsRewritten_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QString &html, const QString &expected) {
        QTest::newRow(name) << html << expected;
    };
    row("any case", u"<META Content=\"TEXT/html; CHARSET=x\">"_s, u"<META Content=\"TEXT/html; CHARSET=koi8-r\">"_s);
    row("more behind", u"<meta content='text/html;charset=x; y'>"_s, u"<meta content='text/html;charset=koi8-r; y'>"_s);
    row("blank behind", u"<meta content='text/html;charset=x y'>"_s, u"<meta content='text/html;charset=koi8-r y'>"_s);
    row("no charset", u"<meta content='text/html'>"_s, u"<meta content='text/html'>"_s);
    row("no text", u"<meta content='a text/html;charset=x'>"_s, u"<meta content='a text/html;charset=x'>"_s);
    row("text open at the end", u"<meta charset=xyz"_s, u"<meta charset=koi8-r"_s);
    row("other element", u"<script charset=x></script><a content='text/a;charset=x'>"_s,
        u"<script charset=x></script><a content='text/a;charset=x'>"_s);
}

void TestHtmlScanner::charsetOfAMetaElementIsRewritten()
{
    QFETCH(QString, html);
    QTEST(htmlForMail(html, "koi8-r", keep).Html, "expected");
}

void TestHtmlScanner::onlyPicturesSoundsAndBackgroundsNameFiles_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QStringList>("offered");
    QTest::newRow("picture") << u"<img src=' /a&amp;b '>"_s << QStringList{u"/a&b"_s};
    QTest::newRow("sound") << u"<bgsound src=/a>"_s << QStringList{u"/a"_s};
    QTest::newRow("background of anything") << u"<x background=/a>"_s << QStringList{u"/a"_s};
    QTest::newRow("others") << u"<input src=/a><img href=/a><embed src=/a></img src=/a>"_s << QStringList();
    QTest::newRow("two in one tag") << u"<img src=/a background=/b>"_s << QStringList{u"/a"_s, u"/b"_s};
}

void TestHtmlScanner::onlyPicturesSoundsAndBackgroundsNameFiles()
{
    QFETCH(QString, html);
    QStringList offered;
    const auto note = [&offered](const QString &reference) {
        offered.append(reference);
        return QString();
    };
    QCOMPARE(htmlForMail(html, "utf-8", note).Html, html);
    QTEST(offered, "offered");
}

void TestHtmlScanner::rawTextIsFoundBehindAReplacedReference()
{
    const auto longer = [](const QString &) { return u"cid:"_s + QString(50, u'x'); };
    const QString before = u"<img src=/a>"_s;
    for (const QString &element : {u"script"_s, u"style"_s, u"xmp"_s, u"noframes"_s}) {
        const HtmlMail mail = htmlForMail(before + u"<%1>€</%1>"_s.arg(element), "us-ascii", longer);
        QCOMPARE(mail.Raw.size(), 1);
        QCOMPARE(mail.Html.sliced(mail.Raw.first().Begin, mail.Raw.first().End - mail.Raw.first().Begin), u"€"_s);
        QVERIFY(!encodeHtml(mail, "us-ascii"));
    }
    for (const QString &element : {u"title"_s, u"textarea"_s}) {
        const HtmlMail mail = htmlForMail(before + u"<%1>€</%1>"_s.arg(element), "us-ascii", longer);
        QCOMPARE(encodeHtml(mail, "us-ascii"),
                 std::optional("<img src=cid:" + QByteArray(50, 'x') + "><" + element.toLatin1() + ">&#8364;</" +
                               element.toLatin1() + '>'));
    }
}

QTEST_APPLESS_MAIN(TestHtmlScanner)
#include "test_htmlscanner.moc"
