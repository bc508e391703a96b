#include "quillon/mail/htmlmail.h"
#include "quillon/mail/htmlscanner.h"
#include "quillon/mail/htmltext.h"
#include "randomtext.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillon;

class TestHtmlText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textVersionIsReadable();
    void textVersionIsReadable_data();
    void eachElementBreaksTheTextAsItsKindDoes_data();
    void eachElementBreaksTheTextAsItsKindDoes();
    void brokenDocumentsGiveWhatABrowserShows();
    void brokenDocumentsGiveWhatABrowserShows_data();
    void entitiesAreDecoded();
    void withoutExtrasThereIsOnlyWhatStandsOnThePage();
    void deepNestingCannotOutgrowTheSource();
    void hugeBrokenSourcesAreScannedToTheEnd();
    void piecesPutTogetherAreTheSource();
    void metaCharsetIsRewrittenInBothForms();
    void metaCharsetIsRewrittenInBothForms_data();
    void referencesAreOfferedAndReplaced();
    void misfitsBecomeReferencesInHtml();
    void misfitInAScriptAsksForAnotherCharset();
};

void TestHtmlText::textVersionIsReadable_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("words") << u"one\n  two"_s << u"one two\r\n"_s;
    QTest::newRow("head, style, script, comment")
        << u"<!DOCTYPE html><html><head><title>T</title><style>p{}</style><script>if(a<b){}</script></head>"
           "<body><!-- c -->seen</body></html>"_s
        << u"seen\r\n"_s;
    QTest::newRow("paragraphs") << u"<p>a</p><p>b</p>"_s << u"a\r\n\r\nb\r\n"_s;
    QTest::newRow("divs of an editor") << u"<div>a</div><div><br></div><div>b</div>"_s << u"a\r\n\r\nb\r\n"_s;
    QTest::newRow("breaks") << u"a<br>b<BR/>c"_s << u"a\r\nb\r\nc\r\n"_s;
    QTest::newRow("link") << u"see <a href=\"http://x.example/?a=1&amp;b=2\">here</a>."_s
                          << u"see here <http://x.example/?a=1&b=2>.\r\n"_s;
    QTest::newRow("link that says itself")
        << u"<a href='http://x.example/'>http://x.example</a>"_s << u"http://x.example\r\n"_s;
    QTest::newRow("mail link") << u"<a href=mailto:a@example.org>write</a>"_s << u"write <a@example.org>\r\n"_s;
    QTest::newRow("anchor leads nowhere") << u"<a href='#top'>up</a>"_s << u"up\r\n"_s;
    QTest::newRow("lists") << u"<ul><li>a<li>b<ul><li>c</ul></ul><ol><li>x</li><li>y</li></ol>"_s
                           << u"- a\r\n- b\r\n  - c\r\n\r\n1. x\r\n2. y\r\n"_s;
    QTest::newRow("table") << u"<table><tr><th>Name</th><th>Price</th></tr><tr><td>Tea</td><td>3</td></tr></table>"_s
                           << u"Name | Price\r\nTea | 3\r\n"_s;
    QTest::newRow("quote") << u"a<blockquote>b<br>c</blockquote>d"_s << u"a\r\n\r\n> b\r\n> c\r\n\r\nd\r\n"_s;
    QTest::newRow("preformatted") << u"<pre>a  b\n  c</pre>"_s << u"a  b\r\n  c\r\n"_s;
    QTest::newRow("picture") << u"<img src=x alt='our shop'>"_s << u"[our shop]\r\n"_s;
    for (const QString &scheme : {u"http"_s, u"https"_s, u"ftp"_s, u"tel"_s}) {
        const QString link = scheme.toUpper() + u":1"_s;
        QTest::newRow(qPrintable(scheme)) << u"<a href='%1'>x</a>"_s.arg(link) << u"x <%1>\r\n"_s.arg(link);
    }
    QTest::newRow("mail in any case") << u"<a href=MailTo:a@b>x</a>"_s << u"x <a@b>\r\n"_s;
    QTest::newRow("other schemes") << u"<a href='javascript:x'>a</a> <a href=/b>c</a> <a name=d>e</a>"_s
                                   << u"a c e\r\n"_s;
    QTest::newRow("links that say themselves")
        << u"<a href='mailto:a@b'> a@b </a>, <a href='mailto:c@d'>mailto:c@d</a>, <a href=http:e>http:e</a>"_s
        << u"a@b , mailto:c@d, http:e\r\n"_s;
    QTest::newRow("link that says more") << u"<a href='http:a/'>http:a//</a>"_s << u"http:a// <http:a/>\r\n"_s;
    QTest::newRow("links that say themselves behind marks")
        << u"<ul><li><a href=http:a>http:a</a></ul><blockquote><a href=http:b>http:b</a></blockquote>"_s
        << u"- http:a\r\n\r\n> http:b\r\n"_s;
    QTest::newRow("link without a text") << u"a <a href=http:b></a> c<a href=http:d></a>"_s
                                         << u"a <http:b> c<http:d>\r\n"_s;
    QTest::newRow("linked picture") << u"<a href=' http:a&amp;b '><img alt=L></a>"_s << u"[L] <http:a&b>\r\n"_s;
    QTest::newRow("two links") << u"<a href=http:a>x</a> y <a>z</a>"_s << u"x <http:a> y z\r\n"_s;
    QTest::newRow("pictures without a name") << u"a<img alt=''><img><img alt=' '>b"_s << u"ab\r\n"_s;
    QTest::newRow("first of two attributes") << u"<img ALT=a alt=b>"_s << u"[a]\r\n"_s;
    QTest::newRow("entries of two lines")
        << u"<ol><li>a<br>b<ul><li>c<br>d</ul><li>e</ol>f"_s << u"1. a\r\n  b\r\n  - c\r\n    d\r\n2. e\r\n\r\nf\r\n"_s;
    QTest::newRow("other lists") << u"<dir><li>a</dir><menu><li>b</menu><dl><dt>c<dd>d</dl>"_s
                                 << u"- a\r\n\r\n- b\r\n\r\nc\r\nd\r\n"_s;
    QTest::newRow("list behind a text") << u"a<ul><li>b</ul>c"_s << u"a\r\n\r\n- b\r\n\r\nc\r\n"_s;
    QTest::newRow("entry without a list") << u"a<li>b</li>c"_s << u"a\r\n- b\r\nc\r\n"_s;
    QTest::newRow("rule") << u"a<hr>b"_s << u"a\r\n"_s + QString(40, u'-') + u"\r\nb\r\n"_s;
    QTest::newRow("headings") << u"<h1>a</h1>b<h6>c</h6>d"_s << u"a\r\n\r\nb\r\n\r\nc\r\n\r\nd\r\n"_s;
    QTest::newRow("blocks") << u"a<div>b</div>c<section>d</section>e"_s << u"a\r\nb\r\nc\r\nd\r\ne\r\n"_s;
    QTest::newRow("many breaks") << u"a<br><br>b<br><br><br>c<br><br><br><br>d"_s
                                 << u"a\r\n\r\nb\r\n\r\n\r\nc\r\n\r\n\r\nd\r\n"_s;
    QTest::newRow("breaks at both ends") << u"<br>a<br><br>"_s << u"a\r\n"_s;
    QTest::newRow("blanks around breaks") << u"a <br> b"_s << u"a\r\nb\r\n"_s;
    QTest::newRow("cells") << u"<tr><td><td>a</td> <td></td><td>b<br>c<td>d<tr><td>e"_s << u"a | b\r\nc | d\r\ne\r\n"_s;
    QTest::newRow("quotes in quotes") << u"<blockquote>a<blockquote>b<br><br>c</blockquote>d</blockquote>e"_s
                                      << u"> a\r\n>\r\n>> b\r\n>>\r\n>> c\r\n>\r\n> d\r\n\r\ne\r\n"_s;
    QTest::newRow("list in a quote") << u"<blockquote><ul><li>a</ul></blockquote>"_s << u"> - a\r\n"_s;
    QTest::newRow("deepest quote") << u"<blockquote>"_s.repeated(8) + u"a"_s << u">>>>>>>> a\r\n"_s;
    QTest::newRow("deeper quote") << u"<blockquote>"_s.repeated(9) + u"a<br><br>b"_s
                                  << u">>>>>>>> a\r\n>>>>>>>>\r\n>>>>>>>> b\r\n"_s;
    QTest::newRow("deepest list") << u"<ul>"_s.repeated(8) + u"<li>a"_s << QString(14, u' ') + u"- a\r\n"_s;
    QTest::newRow("deeper list") << u"<ul>"_s.repeated(9) + u"<li>a"_s << QString(14, u' ') + u"- a\r\n"_s;
    QTest::newRow("line ends of preformatted text")
        << u"<pre>a\rb\r\nc\n\rd\r</pre>"_s << u"a\r\nb\r\nc\r\n\r\nd\r\n"_s;
    QTest::newRow("carriage returns at the end")
        << u"<pre>a\r</pre><pre>b\r\rc</pre>"_s << u"a\r\n\r\nb\r\n\r\nc\r\n"_s;
    QTest::newRow("blanks at the end of preformatted lines") << u"<pre>a \t\n\tb </pre>"_s << u"a\r\n\tb\r\n"_s;
    QTest::newRow("preformatted twice") << u"<pre>a<listing>b</listing>c  d</pre>e  f"_s
                                        << u"a\r\n\r\nb\r\n\r\nc  d\r\n\r\ne f\r\n"_s;
    QTest::newRow("text area") << u"<textarea>a &lt;\n  b</textarea>"_s << u"a <\r\n  b\r\n"_s;
    QTest::newRow("blanks between elements") << u"a <b> b</b>\t\f<i>\r\nc</i>d"_s << u"a b cd\r\n"_s;
    QTest::newRow("no-break and other blanks") << u"&nbsp;a&nbsp; b &nbsp;c&nbsp;"_s << u" a b  c\r\n"_s;
    QTest::newRow("blanks behind a no-break space") << u"a b&nbsp; c &nbsp; d"_s << u"a b c  d\r\n"_s;
    QTest::newRow("no-break spaces") << u"a&nbsp;&nbsp;b"_s << u"a  b\r\n"_s;
}

void TestHtmlText::textVersionIsReadable()
{
    QFETCH(QString, html);
    QFETCH(QString, text);
    QCOMPARE(textOfHtml(html), text);
}

void TestHtmlText::eachElementBreaksTheTextAsItsKindDoes_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("behind"); // what stands between a text and that of the element
    QTest::addColumn<QString>("after");  // between the element's and the next
    const auto rows = [](const QString &behind, const QString &after, const QString &elements) {
        for (const QString &element : elements.split(u' ')) {
            QTest::newRow(qPrintable(element)) << element << behind << after;
        }
    };
    const QString line = u"\r\n"_s;
    const QString empty = u"\r\n\r\n"_s;
    rows(line, line,
         u"address article aside caption center dd div dt fieldset figcaption footer form header main nav option "
         "section tr"_s);
    rows(empty, empty, u"dl figure h1 h2 h3 h4 h5 h6 listing p pre table"_s);
    rows(empty + u"  "_s, empty, u"dir menu ol ul"_s);
    rows(u"\r\n\r\n> "_s, empty, u"blockquote"_s);
    rows(line + u"- "_s, line, u"li"_s);
    rows(u" | "_s, QString(), u"td th"_s);
    rows(line, QString(), u"br"_s);
    rows(line + QString(40, u'-') + line, QString(), u"hr"_s);
    rows(QString(), QString(), u"a img b span font body html blink addresses ins"_s);
}

void TestHtmlText::eachElementBreaksTheTextAsItsKindDoes()
{
    QFETCH(QString, element);
    QFETCH(QString, behind);
    QFETCH(QString, after);
    const QString expected = u'x' + behind + u'y' + after + u"z\r\n"_s;
    QCOMPARE(textOfHtml(u"x<%1>y</%1>z"_s.arg(element)), expected);
    QCOMPARE(textOfHtml(u"x<%1>y</%1>z"_s.arg(element.toUpper())), expected);
}

void TestHtmlText::brokenDocumentsGiveWhatABrowserShows_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("text");
    QTest::newRow("less-than in text") << u"1 < 2 and 3 <4"_s << u"1 < 2 and 3 <4\r\n"_s;
    QTest::newRow("open comment") << u"a<!-- b"_s << u"a\r\n"_s;
    QTest::newRow("open tag") << u"a<b c"_s << u"a\r\n"_s;
    QTest::newRow("open quote") << u"a<b c=\"d>e"_s << u"a\r\n"_s;
    QTest::newRow("open script") << u"a<script>b"_s << u"a\r\n"_s;
    QTest::newRow("greater-than in a value") << u"<b title='a>b'>c</b>"_s << u"c\r\n"_s;
    QTest::newRow("ends without begins") << u"</ul></p></a></blockquote>a</pre>b"_s << u"a\r\n\r\nb\r\n"_s;
    QTest::newRow("end of a quote alone") << u"</blockquote><blockquote>a</blockquote>"_s << u"> a\r\n"_s;
    QTest::newRow("end of a list alone") << u"</ul><ul><li>a</ul>"_s << u"- a\r\n"_s;
    QTest::newRow("end of preformatted text alone") << u"</pre><pre>a  b</pre>"_s << u"a  b\r\n"_s;
    QTest::newRow("ends that end nothing") << u"a</br></hr></td></img>b"_s << u"ab\r\n"_s;
    QTest::newRow("link in a link") << u"<a href=http:a>x<a href=http:b>y</a>z</a>"_s << u"x <http:a>y <http:b>z\r\n"_s;
    QTest::newRow("link in an anchor that leads nowhere")
        << u"<a name=n>x<a href=http:b>y</a>"_s << u"xy <http:b>\r\n"_s;
    QTest::newRow("tag left open at the end") << u"<img alt=shop"_s << u"[shop]\r\n"_s;
    QTest::newRow("link left open at the end") << u"go <a href=http:a"_s << u"go <http:a>\r\n"_s;
    QTest::newRow("frames for who has none") << u"<noframes>a</noframes><xmp>b</xmp>c"_s << u"c\r\n"_s;
    QTest::newRow("unknown elements") << u"a<figcaptions>b</blockquotes>c"_s << u"abc\r\n"_s;
    QTest::newRow("lone marks") << u"&; &amp &#; &#x; <"_s << u"&; & &#; &#x; <\r\n"_s;
    QTest::newRow("open link") << u"<a href=http://x.example>y"_s << u"y <http://x.example>\r\n"_s;
}

void TestHtmlText::brokenDocumentsGiveWhatABrowserShows()
{
    QFETCH(QString, html);
    QFETCH(QString, text);
    QCOMPARE(textOfHtml(html), text);
}

void TestHtmlText::entitiesAreDecoded()
{
    QCOMPARE(decodeHtmlText(u"&lt;&gt;&amp;&quot;&euro;&auml;&#8364;&#x20AC;&#X20ac;&#128;&zwnj;&Alpha;"),
             u"<>&\"€ä€€€€\u200CΑ"_s);
    QCOMPARE(decodeHtmlText(u"&#0;&#xD800;&#99999999999;"), u"\uFFFD\uFFFD\uFFFD"_s);
    QCOMPARE(decodeHtmlText(u"?a=1&copy=2 &unknown; &eur;"), u"?a=1&copy=2 &unknown; &eur;"_s);
}

void TestHtmlText::withoutExtrasThereIsOnlyWhatStandsOnThePage()
{
    const QString html = u"<p><a href='https://example.com'>Site</a> <img alt='Logo'>and <a "
                         "href='mailto:a@x.org'>mail</a><ul><li>one</ul>"_s;
    QCOMPARE(textOfHtml(html), u"Site <https://example.com> [Logo]and mail <a@x.org>\r\n\r\n- one\r\n"_s);
    QCOMPARE(textOfHtml(html, HtmlExtras::LeftOut), u"Site and mail\r\n\r\n- one\r\n"_s);
}

void TestHtmlText::deepNestingCannotOutgrowTheSource()
{
    const QString html = u"<ul><li>a<blockquote>b"_s.repeated(20000);
    QVERIFY(textOfHtml(html).size() < 4 * html.size());
}

void TestHtmlText::hugeBrokenSourcesAreScannedToTheEnd()
{
    for (const QString &piece : {u"<"_s, u"<!--"_s, u"<a "_s, u"<a b='"_s, u"</"_s, u"<script>"_s, u"<p a=b c"_s,
                                 u"&#"_s, u"<textarea></"_s, u"<a href=http:x>"_s, u"<pre>\n"_s}) {
        const QString html = piece.repeated(300000);
        QVERIFY(textOfHtml(html).size() <= 4 * html.size());
    }
}

void TestHtmlText::piecesPutTogetherAreTheSource()
{
    QRandomGenerator random(7);
    const QString alphabet = u"<>/!-\"'= abscript&;"_s;
    for (int i = 0; i < 20000; ++i) {
        QString html;
        for (int length = random.bounded(60); length > 0; --length) {
            html += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
        }
        HtmlScanner scanner(html);
        HtmlToken token;
        qsizetype at = 0;
        while (scanner.next(token)) {
            QCOMPARE(token.Begin, at);
            QVERIFY(token.End > token.Begin && token.End <= html.size());
            at = token.End;
        }
        QCOMPARE(at, html.size());
        QCOMPARE(htmlForMail(html, "utf-8", [](const QString &) { return QString(); }).Html, html);
        QVERIFY(textOfHtml(html).size() <= 60 * html.size());
    }
}

void TestHtmlText::metaCharsetIsRewrittenInBothForms_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("expected");
    QTest::newRow("quoted") << u"<meta charset=\"utf-8\">"_s << u"<meta charset=\"koi8-r\">"_s;
    QTest::newRow("bare") << u"<META CHARSET=utf-8 />"_s << u"<META CHARSET=koi8-r />"_s;
    QTest::newRow("http-equiv") << u"<meta http-equiv='Content-Type' content='text/html; charset=gb2312'>"_s
                                << u"<meta http-equiv='Content-Type' content='text/html; charset=koi8-r'>"_s;
    QTest::newRow("other meta") << u"<meta name=a content='charset=x'>"_s << u"<meta name=a content='charset=x'>"_s;
    QTest::newRow("in a comment") << u"<!-- <meta charset=x> -->"_s << u"<!-- <meta charset=x> -->"_s;
}

void TestHtmlText::metaCharsetIsRewrittenInBothForms()
{
    QFETCH(QString, html);
    QFETCH(QString, expected);
    QCOMPARE(htmlForMail(html, "koi8-r", [](const QString &) { return QString(); }).Html, expected);
}

void TestHtmlText::referencesAreOfferedAndReplaced()
{
    QStringList offered;
    const auto replace = [&offered](const QString &reference) {
        offered.append(reference);
        return reference.startsWith(u"/"_s) ? u"cid:"_s + QString::number(offered.size()) : QString();
    };
    const QString html = u"<body background='/a b.png'><IMG alt=\"x\" SRC=\"/c&amp;d.png\" width=1><img src=/e.png>"
                         "<bgsound src=\"/f.mid\"><td background=/g.png><a href='/no'><script src='/no'></script>"
                         "<img src=http://x/y.png>"_s;
    QCOMPARE(htmlForMail(html, "utf-8", replace).Html,
             u"<body background='cid:1'><IMG alt=\"x\" SRC=\"cid:2\" width=1><img src=cid:3>"
             "<bgsound src=\"cid:4\"><td background=cid:5><a href='/no'><script src='/no'></script>"
             "<img src=http://x/y.png>"_s);
    QCOMPARE(offered,
             (QStringList{u"/a b.png"_s, u"/c&d.png"_s, u"/e.png"_s, u"/f.mid"_s, u"/g.png"_s, u"http://x/y.png"_s}));
}

void TestHtmlText::misfitsBecomeReferencesInHtml()
{
    QCOMPARE(encodeHtml({u"<p title='€'>ä€😀</p>"_s, {}}, "iso-8859-1"),
             std::optional<QByteArray>("<p title='&#8364;'>\xE4&#8364;&#128512;</p>"));
    QVERIFY(!encodeHtml({u"ä"_s, {}}, "x-nothing"));
}

void TestHtmlText::misfitInAScriptAsksForAnotherCharset()
{
    const auto keep = [](const QString &) { return QString(); };
    QVERIFY(!encodeHtml(htmlForMail(u"<style>a:after{content:'€'}</style>x"_s, "us-ascii", keep), "us-ascii"));
    QVERIFY(encodeHtml(htmlForMail(u"<style>a{}</style>€<title>€</title>"_s, "us-ascii", keep), "us-ascii"));
}

QTEST_APPLESS_MAIN(TestHtmlText)
#include "test_htmltext.moc"
