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
    void underscoreEntriesAreThereToBeSkipped();
    void textThatFitsComesBack();
    void textThatDoesNotFitIsRefused();
    void textThatDoesNotFitIsRefused_data();
    void charsetNameCarriesNoOptions();
    void statefulCharsetEndsInItsInitialState();
    void utf8TakesEveryText();
    void brokenOctetsAreRefused();
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
    QCOMPARE(encodeStrictly(QString(QChar(0xDC00)) + u"😀"_s, "utf-8"), std::optional<QByteArray>("\xEF\xBF\xBD😀"));
    QCOMPARE(decodeStrictly("\xEF\xBB\xBFx", "utf-8"), std::optional<QString>(u"\uFEFFx"_s));
}

void TestCharset::brokenOctetsAreRefused()
{
    QVERIFY(!decodeStrictly("a\xC3", "utf-8"));
    QVERIFY(!decodeStrictly("\xFFz", "utf-8"));
    QVERIFY(!decodeStrictly("\xFF", "euc-jp"));
    QVERIFY(!decodeStrictly("a", "x-nothing"));
}

QTEST_APPLESS_MAIN(TestCharset)
#include "test_charset.moc"
