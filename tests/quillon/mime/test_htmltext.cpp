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
    QTest::newRow("no-break spaces") << u"a&nbsp;&nbsp;b"_s << u"a  b\r\n"_s;
}

void TestHtmlText::textVersionIsReadable()
{
    QFETCH(QString, html);
    QFETCH(QString, text);
    QCOMPARE(textOfHtml(html), text);
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
