#include "mailoctets.h"
#include "quillon/mail/charset.h"
#include "quillon/mail/encodedmail.h"
#include "quillon/mail/encodinglist.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillon;

class TestCharset : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyOfferedCharsetIsKnownAndBuildsMail();
    void entriesReadCodeBarDisplayName();
    void anEntryIsReadAsItIsWritten();
    void entriesWithAnUnderscoreOrWithoutANameAreNotOffered();
    void defaultEncodingHasItsDisplayName();
    void entriesAreInTheOrderOfTheirNames();
    void theWholeListStandsAsPeopleHaveItInTheirTemplates();
    void underscoreEntriesAreThereToBeSkipped();
    void textThatFitsComesBack();
    void textThatDoesNotFitIsRefused();
    void textThatDoesNotFitIsRefused_data();
    void charsetNameCarriesNoOptions();
    void statefulCharsetEndsInItsInitialState();
    void utf8TakesEveryText();
    void brokenOctetsAreRefused();
    void aFailedConversionLeavesNoTraceInTheNext();
    void namesOfCharsetsMayBeInAnyCaseAndForm();
    void charactersAreRefusedFromTheFirstToTheLastOfTheirKind_data();
    void charactersAreRefusedFromTheFirstToTheLastOfTheirKind();
};

void TestCharset::everyOfferedCharsetIsKnownAndBuildsMail()
{
    MailEncoder encoder;
    const QList<EncodingEntry> offered = offeredEncodings(encodingList());
    QVERIFY(offered.size() > 10);
    for (const EncodingEntry &entry : offered) {
        const QByteArray code = entry.Code.toLatin1();
        QVERIFY2(isKnownCharset(code), code.constData());
        QCOMPARE(encodeStrictly(u"plain"_s, code), std::optional<QByteArray>("plain"));
        MailMessage message;
        message.From.Address = u"a@example.org"_s;
        message.Content = u"plain\r\n"_s;
        message.Charset = QString::fromLatin1(code);
        const QByteArray mail = mailOctets(encoder.encode(message, QDateTime::currentDateTime()));
        QCOMPARE(headerOf(mail, "Content-Type"), "text/plain; charset=" + code);
    }
}

void TestCharset::theWholeListStandsAsPeopleHaveItInTheirTemplates()
{
    // Written out, since a code beside another name would send every mail of that choice in another charset.
    const QStringList expected{
        u"_autodetect | Auto-Select"_s,
        u"_user | User Defined"_s,
        u"iso-8859-6 | Arabic (ISO)"_s,
        u"windows-1256 | Arabic (Windows)"_s,
        u"iso-8859-4 | Baltic (ISO)"_s,
        u"iso-8859-13 | Baltic (ISO-8859-13)"_s,
        u"windows-1257 | Baltic (Windows)"_s,
        u"iso-8859-14 | Celtic (ISO)"_s,
        u"iso-8859-2 | Central European (ISO)"_s,
        u"windows-1250 | Central European (Windows)"_s,
        u"gb18030 | Chinese Simplified (GB18030)"_s,
        u"gb2312 | Chinese Simplified (GB2312)"_s,
        u"big5 | Chinese Traditional (Big5)"_s,
        u"iso-8859-5 | Cyrillic (ISO)"_s,
        u"koi8-r | Cyrillic (KOI8-R)"_s,
        u"koi8-u | Cyrillic (KOI8-U)"_s,
        u"windows-1251 | Cyrillic (Windows)"_s,
        u"iso-8859-7 | Greek (ISO)"_s,
        u"windows-1253 | Greek (Windows)"_s,
        u"iso-8859-8 | Hebrew (ISO)"_s,
        u"windows-1255 | Hebrew (Windows)"_s,
        u"euc-jp | Japanese (EUC)"_s,
        u"iso-2022-jp | Japanese (JIS)"_s,
        u"shift_jis | Japanese (Shift-JIS)"_s,
        u"euc-kr | Korean"_s,
        u"iso-8859-10 | Nordic (ISO)"_s,
        u"iso-8859-3 | South European (ISO)"_s,
        u"iso-8859-16 | South-Eastern European (ISO)"_s,
        u"tis-620 | Thai"_s,
        u"iso-8859-9 | Turkish (ISO)"_s,
        u"windows-1254 | Turkish (Windows)"_s,
        u"utf-8 | Unicode (UTF-8)"_s,
        u"us-ascii | US-ASCII"_s,
        u"windows-1258 | Vietnamese (Windows)"_s,
        u"iso-8859-1 | Western European (ISO)"_s,
        u"iso-8859-15 | Western European (ISO-8859-15)"_s,
        u"windows-1252 | Western European (Windows)"_s,
    };
    QCOMPARE(encodingList().split(u" || "_s), expected);
}

void TestCharset::entriesReadCodeBarDisplayName()
{
    for (const QString &entry : encodingList().split(u" || "_s)) {
        const QStringList fields = entry.split(u" | "_s);
        QCOMPARE(fields.size(), 2);
        QVERIFY(!fields[0].isEmpty() && fields[0] == fields[0].trimmed());
        QVERIFY(!fields[1].isEmpty() && fields[1] == fields[1].trimmed());
    }
}

void TestCharset::anEntryIsReadAsItIsWritten()
{
    const EncodingEntry entry = {u"utf-8"_s, u"Unicode | (UTF-8)"_s};
    QCOMPARE(entry.format(), u"utf-8 | Unicode | (UTF-8)"_s);
    QCOMPARE(EncodingEntry::parse(entry.format()), std::optional(entry));
    QCOMPARE(EncodingEntry::parse(u"utf-8"_s), std::nullopt);
    QCOMPARE(EncodingEntry::parse(QString()), std::nullopt);
    QCOMPARE(EncodingEntry::parse(u"utf-8|Unicode"_s), std::nullopt);
}

void TestCharset::entriesWithAnUnderscoreOrWithoutANameAreNotOffered()
{
    const QList<EncodingEntry> expected = {{u"a"_s, u"A"_s}, {u"b_"_s, u"_B"_s}};
    QCOMPARE(offeredEncodings(u"_x | X || a | A ||  || no bar || b_ | _B || _y"_s), expected);
    QCOMPARE(offeredEncodings(QString()), QList<EncodingEntry>());
}

void TestCharset::defaultEncodingHasItsDisplayName()
{
    QVERIFY(encodingList().split(u" || "_s).contains(u"utf-8 | Unicode (UTF-8)"_s));
}

void TestCharset::entriesAreInTheOrderOfTheirNames()
{
    QStringList names;
    for (const EncodingEntry &entry : offeredEncodings(encodingList())) {
        names.append(entry.Name);
    }
    QStringList sorted = names;
    sorted.sort(Qt::CaseInsensitive);
    QCOMPARE(names, sorted);
    QCOMPARE(sorted.removeDuplicates(), 0);
}

void TestCharset::underscoreEntriesAreThereToBeSkipped()
{
    QVERIFY(encodingList().startsWith(u'_'));
}

void TestCharset::textThatFitsComesBack()
{
    QCOMPARE(encodeStrictly(u"Grüße"_s, "ISO-8859-1"), std::optional<QByteArray>("Gr\xFC\xDF"
                                                                                 "e"));
    QCOMPARE(encodeStrictly(u"€"_s, "windows-1252"), std::optional<QByteArray>("\x80"));
    QCOMPARE(encodeStrictly(u"日"_s, "shift_jis"), std::optional<QByteArray>("\x93\xFA"));
    QCOMPARE(decodeStrictly("\x93\xFA", "shift_jis"), std::optional<QString>(u"日"_s));
}

void TestCharset::textThatDoesNotFitIsRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("charset");
    QTest::newRow("euro in Latin-1") << u"€"_s << QByteArray("iso-8859-1");
    QTest::newRow("umlaut in US-ASCII") << u"ü"_s << QByteArray("us-ascii");
    QTest::newRow("control that readers take for Windows-1252") << QString(QChar(0x85)) << QByteArray("iso-8859-1");
    QTest::newRow("yen that readers take for a backslash") << u"¥"_s << QByteArray("shift_jis");
    QTest::newRow("backslash that readers take for a yen") << u"\\"_s << QByteArray("shift_jis");
    QTest::newRow("wave dash that readers take for a tilde") << u"\u301C"_s << QByteArray("shift_jis");
    QTest::newRow("dot that readers of GBK read otherwise") << u"\u30FB"_s << QByteArray("gb2312");
    QTest::newRow("bar that readers of GBK read otherwise") << u"\u2015"_s << QByteArray("gb2312");
    QTest::newRow("bar that readers of vendors' tables read otherwise") << u"\u00A6"_s << QByteArray("euc-jp");
    QTest::newRow("sign that readers of UHC do not know") << u"\u327E"_s << QByteArray("euc-kr");
    QTest::newRow("macron that readers in Hong Kong read otherwise") << u"\u00AF"_s << QByteArray("big5");
    QTest::newRow("composed Vietnamese by another name") << u"\u1EBF"_s << QByteArray("cp1258");
    QTest::newRow("composed Hebrew") << u"\uFB2B"_s << QByteArray("windows-1255");
    QTest::newRow("composed Vietnamese") << u"\u1EBF"_s << QByteArray("windows-1258");
    QTest::newRow("vendor's addition to Big5") << u"\u2551"_s << QByteArray("big5");
    QTest::newRow("sign that JIS tables map to two") << u"\u2212"_s << QByteArray("iso-2022-jp");
    QTest::newRow("moved between editions of GB 18030") << u"\u1E3F"_s << QByteArray("gb18030");
    QTest::newRow("private character") << QString(QChar(0xE000)) << QByteArray("gb18030");
    QTest::newRow("lone surrogate") << QString(QChar(0xD800)) << QByteArray("gb18030");
    QTest::newRow("unknown charset") << u"a"_s << QByteArray("x-nothing");
    QTest::newRow("no charset") << u"a"_s << QByteArray();
}

void TestCharset::textThatDoesNotFitIsRefused()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, charset);
    QVERIFY(!encodeStrictly(text, charset));
}

void TestCharset::charsetNameCarriesNoOptions()
{
    QVERIFY(!isKnownCharset("us-ascii//TRANSLIT"));
    QVERIFY(!isKnownCharset("utf-8\r\nX: y"));
    QVERIFY(!encodeStrictly(u"ü"_s, "us-ascii//IGNORE"));
}

void TestCharset::statefulCharsetEndsInItsInitialState()
{
    const auto first = encodeStrictly(u"日本"_s, "iso-2022-jp");
    QVERIFY(first && first->endsWith("\x1B(B"));
    QCOMPARE(encodeStrictly(u"日本"_s, "iso-2022-jp"), first);
}

void TestCharset::utf8TakesEveryText()
{
    for (const char *name : {"utf-8", "utf8", "UTF-8", "Utf8"}) {
        QCOMPARE(encodeStrictly(QString(QChar(0xDC00)) + u"😀"_s, name), std::optional<QByteArray>("\xEF\xBF\xBD😀"));
        QCOMPARE(encodeStrictly(u"\u0085\uE000"_s, name), std::optional<QByteArray>("\xC2\x85\xEE\x80\x80"));
        QCOMPARE(decodeStrictly("\xEF\xBB\xBFx", name), std::optional<QString>(u"\uFEFFx"_s));
        QCOMPARE(decodeStrictly(QByteArrayView("a\0", 2), name), std::optional(QString(u"a"_s + QChar(0))));
        QCOMPARE(decodeStrictly("", name), std::optional(QString()));
    }
}

void TestCharset::brokenOctetsAreRefused()
{
    for (const char *octets :
         {"a\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xEF\xBB", "\xFFz", "\x80", "\xC3z", "\xED\xA0\x80"}) {
        QVERIFY2(!decodeStrictly(octets, "utf-8"), QByteArray(octets).toHex());
    }
    QVERIFY(!decodeStrictly("\xFF", "euc-jp"));
    QVERIFY(!decodeStrictly("a", "x-nothing"));
}

void TestCharset::aFailedConversionLeavesNoTraceInTheNext()
{
    // What fails has shifted to another set of characters before; what follows must begin anew.
    QVERIFY(!encodeStrictly(u"日😀"_s, "iso-2022-jp"));
    QCOMPARE(encodeStrictly(u"a"_s, "iso-2022-jp"), std::optional<QByteArray>("a"));
    QVERIFY(!encodeStrictly(u"日😀"_s, "iso-2022-jp"));
    QCOMPARE(encodeStrictly(u"日本"_s, "iso-2022-jp"), std::optional<QByteArray>("\x1B$BF|K\\\x1B(B"));
    QVERIFY(!decodeStrictly("\x1B$BF|K", "iso-2022-jp"));
    QCOMPARE(decodeStrictly("ab", "iso-2022-jp"), std::optional<QString>(u"ab"_s));
    QVERIFY(!decodeStrictly("\x1B$BF|\xFF", "iso-2022-jp"));
    QCOMPARE(decodeStrictly("\x1B$BF|K\\\x1B(B", "iso-2022-jp"), std::optional<QString>(u"日本"_s));
}

void TestCharset::namesOfCharsetsMayBeInAnyCaseAndForm()
{
    for (const char *name : {"UTF-8", "utf8", "Utf-8", "KOI8-R", "ISO_8859-1:1987", "ansi_x3.4-1968", "US-ASCII"}) {
        QVERIFY2(isKnownCharset(name), name);
        QCOMPARE(encodeStrictly(u"a\u007F"_s, name), std::optional<QByteArray>("a\x7F"));
        QCOMPARE(decodeStrictly("a\x7F", name), std::optional<QString>(u"a\u007F"_s));
    }
    QCOMPARE(encodeStrictly(u"ü"_s, "UTF8"), std::optional<QByteArray>("ü"));
    QCOMPARE(encodeStrictly(u"ü"_s, "Iso-8859-2"), std::optional<QByteArray>("\xFC"));
    QVERIFY(!encodeStrictly(u"日"_s, "Us-Ascii"));
    // Vendors' characters are read, as most who say Shift_JIS write them, but not written.
    QCOMPARE(decodeStrictly("\x87\x40", "Shift_JIS"), std::optional<QString>(u"①"_s));
    QVERIFY(!encodeStrictly(u"①"_s, "shift_jis"));
    for (const char *name : {"", "x-nothing", "utf-8 ", " utf-8", "utf-8//IGNORE"}) {
        QVERIFY2(!isKnownCharset(name), name);
    }
}

void TestCharset::charactersAreRefusedFromTheFirstToTheLastOfTheirKind_data()
{
    QTest::addColumn<QByteArray>("charset");
    QTest::addColumn<QString>("taken");
    QTest::addColumn<QString>("refused");
    // No reader's other table is behind these two, so that nothing but the rule for controls refuses them.
    QTest::newRow("controls") << QByteArray("iso-8859-2") << u"\u007F\u00A0\u0001"_s << u"\u0080\u0085\u009F"_s;
    QTest::newRow("Latin-1") << QByteArray("iso-8859-1") << u"\u00A0\u00FF~"_s << u"\u0080\u009F\u0100"_s;
    QTest::newRow("private") << QByteArray("gb18030") << u"\u9FA5\uF900日"_s << u"\uE000\uE765\uF8FF"_s;
    QTest::newRow("editions") << QByteArray("gb18030") << u"\u1E3E\u9FBC\uFE1A"_s
                              << u"\u1E3F\u9FB4\u9FB8\u9FBB\uFE10\uFE14\uFE19"_s;
    QTest::newRow("lineages") << QByteArray("iso-2022-jp") << u"\u00A7\u2015\uFF5D日"_s
                              << u"\u00A2\u00A3\u00A5\u00AC\u2016\u203E\u2212\u301C"_s;
    QTest::newRow("tilde") << QByteArray("euc-jp") << u"\uFF5D日"_s << u"\uFF5E"_s;
    QTest::newRow("filler") << QByteArray("euc-kr") << u"\u3163한"_s << u"\u3164"_s;
    QTest::newRow("vendors") << QByteArray("big5") << u"\u2550\u255E\u2561\u256A中"_s
                             << u"\u2551\u255D\u255F\u2560\u2562\u256C\u58BB\u5AFA\u6052\u7881\u7CA7\u88CF\u92B9"_s;
    QTest::newRow("one rule for each charset") << QByteArray("utf-8") << u"\u0085\uE000\u2551\u1E3F"_s << QString();
}

void TestCharset::charactersAreRefusedFromTheFirstToTheLastOfTheirKind()
{
    QFETCH(QByteArray, charset);
    QFETCH(QString, taken);
    QFETCH(QString, refused);
    for (const QChar c : std::as_const(taken)) {
        const auto bytes = encodeStrictly(QString(c), charset);
        QVERIFY2(bytes, qPrintable(QString::number(c.unicode(), 16)));
        QCOMPARE(decodeStrictly(*bytes, charset), std::optional(QString(c)));
    }
    for (const QChar c : std::as_const(refused)) {
        QVERIFY2(!encodeStrictly(QString(c), charset), qPrintable(QString::number(c.unicode(), 16)));
    }
}

QTEST_APPLESS_MAIN(TestCharset)
#include "test_charset.moc"
