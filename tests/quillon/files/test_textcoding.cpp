#include "quillon/files/textcoding.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillon;

/// What the octets of a file mean, and how lines become octets.
class TestTextCoding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineIsUtf8OrElseWindows1252_data();
    void aLineIsUtf8OrElseWindows1252();
    void everyOctetOfWindows1252IsRead();
    void aTextIsReadByItsMarkOrLineByLine_data();
    void aTextIsReadByItsMarkOrLineByLine();
    void linesEndWithALineFeed_data();
    void linesEndWithALineFeed();
    void joinedLinesAreTheSameLinesAgain_data();
    void joinedLinesAreTheSameLinesAgain();
    void onlyAMarkIsAMark();
};

namespace {

const QByteArray mark = "\xEF\xBB\xBF";

} // namespace

void TestTextCoding::aLineIsUtf8OrElseWindows1252_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("UTF-8") << QByteArray("\xC3\xBC\xF0\x9F\x98\x80") << u"ü😀"_s;
    QTest::newRow("Windows-1252") << QByteArray("\xFC\x80") << u"ü€"_s;
    QTest::newRow("cut at the end") << QByteArray("a\xC3") << u"aÃ"_s;
    QTest::newRow("cut at the end, three of four") << QByteArray("\xF0\x9F\x98") << u"ðŸ˜"_s;
    QTest::newRow("mark") << mark + "a" << u"\uFEFFa"_s;
}

void TestTextCoding::aLineIsUtf8OrElseWindows1252()
{
    QFETCH(QByteArray, bytes);
    QTEST(decodeLine(bytes), "text");
}

void TestTextCoding::everyOctetOfWindows1252IsRead()
{
    QByteArray upper;
    for (int octet = 0x7F; octet < 0x100; ++octet) {
        upper += static_cast<char>(octet);
    }
    QString expected = u"\u007F€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸ"_s;
    for (char16_t letter = 0xA0; letter < 0x100; ++letter) {
        expected += QChar(letter);
    }
    QCOMPARE(decodeLine(upper), expected);
}

void TestTextCoding::aTextIsReadByItsMarkOrLineByLine_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("UTF-8") << QByteArray("\xC3\xBC\n\xC3\xBC") << u"ü\nü"_s;
    QTest::newRow("mark") << mark + "\xC3\xBC" << u"ü"_s;
    QTest::newRow("mark before Windows-1252") << mark + "\xFC\n\xC3\xBC" << u"ü\nü"_s;
    QTest::newRow("two marks") << mark + mark + "a" << u"\uFEFFa"_s;
    QTest::newRow("lines of two charsets") << QByteArray("\xC3\xBC\r\n\xFC\n\n\xC3\xBC\n\xFC") << u"ü\r\nü\n\nü\nü"_s;
    QTest::newRow("UTF-16, low octet first") << QByteArray("\xFF\xFE\xFC\0\n\0", 6) << u"ü\n"_s;
    QTest::newRow("UTF-16, high octet first") << QByteArray("\xFE\xFF\0\xFC\0\n", 6) << u"ü\n"_s;
    QTest::newRow("UTF-16, nothing else") << QByteArray("\xFF\xFE") << QString();
    QTest::newRow("UTF-16, two marks") << QByteArray("\xFF\xFE\xFF\xFE") << u"\uFEFF"_s;
    QTest::newRow("half a mark") << QByteArray("\xFF") << u"ÿ"_s;
}

void TestTextCoding::aTextIsReadByItsMarkOrLineByLine()
{
    QFETCH(QByteArray, bytes);
    QTEST(decodeText(bytes), "text");
}

void TestTextCoding::linesEndWithALineFeed_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArrayList>("lines");
    QTest::newRow("empty") << QByteArray() << QByteArrayList();
    QTest::newRow("mark alone") << mark << QByteArrayList();
    QTest::newRow("both line ends") << QByteArray("a\r\nb\nc") << QByteArrayList{"a", "b", "c"};
    QTest::newRow("no line behind the last end") << QByteArray("a\r\n") << QByteArrayList{"a"};
    QTest::newRow("empty lines") << QByteArray("\n\r\n\n") << QByteArrayList{"", "", ""};
    QTest::newRow("carriage returns of their own")
        << QByteArray("\ra\rb\r\r\nc\r") << QByteArrayList{"\ra\rb\r", "c\r"};
    QTest::newRow("mark") << mark + "a\n" + mark + "b" << QByteArrayList{"a", mark + "b"};
    QTest::newRow("UTF-16") << QByteArray("\xFE\xFF\0\xFC\0\n\0a", 8) << QByteArrayList{"\xC3\xBC", "a"};
    QTest::newRow("NUL") << QByteArray("a\0b\n", 4) << QByteArrayList{QByteArray("a\0b", 3)};
}

void TestTextCoding::linesEndWithALineFeed()
{
    QFETCH(QByteArray, bytes);
    QTEST(splitLines(bytes), "lines");
}

void TestTextCoding::joinedLinesAreTheSameLinesAgain_data()
{
    QTest::addColumn<QByteArrayList>("lines");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("none") << QByteArrayList() << QByteArray();
    QTest::newRow("empty line") << QByteArrayList{""} << QByteArray("\r\n");
    QTest::newRow("two") << QByteArrayList{"a", "b"} << QByteArray("a\r\nb\r\n");
    QTest::newRow("mark first") << QByteArrayList{mark, "b"} << mark + mark + "\r\nb\r\n";
    QTest::newRow("like UTF-16") << QByteArrayList{"\xFF\xFE"} << mark + "\xFF\xFE\r\n";
    QTest::newRow("like UTF-16 the other way") << QByteArrayList{"\xFE\xFFx"} << mark + "\xFE\xFFx\r\n";
    QTest::newRow("mark later") << QByteArrayList{"a", mark} << "a\r\n" + mark + "\r\n";
}

void TestTextCoding::joinedLinesAreTheSameLinesAgain()
{
    QFETCH(QByteArrayList, lines);
    QFETCH(QByteArray, bytes);
    QCOMPARE(joinLines(lines), bytes);
    QCOMPARE(splitLines(bytes), lines);
}

void TestTextCoding::onlyAMarkIsAMark()
{
    QVERIFY(isMarkOnly(mark));
    QVERIFY(!isMarkOnly(mark + "a") && !isMarkOnly(QByteArray()) && !isMarkOnly(mark.first(2)));
    QVERIFY(isUtf16("\xFF\xFE") && isUtf16("\xFE\xFF") &&
            isUtf16(QByteArray("\xFF\xFE"
                               "a\0",
                               4)));
    QVERIFY(!isUtf16(QByteArray()) && !isUtf16("\xFF") && !isUtf16("\xFF\xFF") && !isUtf16("\xFE\xFE"));
    QCOMPARE(guardedFromMark(QByteArray()), QByteArray());
    QCOMPARE(guardedFromMark("a"), QByteArray("a"));
    QCOMPARE(guardedFromMark(mark.first(2)), mark.first(2));
}

QTEST_APPLESS_MAIN(TestTextCoding)
#include "test_textcoding.moc"
