#include "quillon/mail/transfercoding.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillon;

/// Which coding a text gets, and the exact octets of each.
class TestTransferCoding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyTextThatServersLeaveAloneTravelsUncoded_data();
    void onlyTextThatServersLeaveAloneTravelsUncoded();
    void theShorterCodingIsTaken_data();
    void theShorterCodingIsTaken();
    void quotedPrintableIsExact_data();
    void quotedPrintableIsExact();
    void base64HasLinesOf76AndItsSizeIsKnown_data();
    void base64HasLinesOf76AndItsSizeIsKnown();
    void eachCodingIsWrittenUnderItsName();
};

namespace {

QByteArray x(qsizetype count)
{
    return {count, 'x'};
}

} // namespace

void TestTransferCoding::onlyTextThatServersLeaveAloneTravelsUncoded_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("uncoded");
    const auto row = [](const char *name, const QByteArray &text, bool uncoded) {
        QTest::newRow(name) << text << uncoded;
    };
    row("nothing", "", true);
    row("blank lines", "\r\n\r\n", true);
    row("printable", " !~\ta\r\n", true);
    row("76 characters", x(76) + "\r\n", true);
    row("77 characters", x(77) + "\r\n", false);
    row("76 in the second line", "a\r\n" + x(76) + "\r\n", true);
    row("77 in the second line", "a\r\n" + x(77) + "\r\n", false);
    row("line of the mail store", "From me\r\n", false);
    row("line of the mail store, second", "a\r\nFrom me\r\n", false);
    row("indented line of the mail store", " From me\r\n", true);
    row("word that begins like it", "Fromage\r\n", true);
    row("mail store in another case", "from me\r\n", true);
    row("boundary", "--=_a\r\n", false);
    row("signature", "-- \r\n", false);
    row("dashes", "--=a\r\n", true);
    row("blank at the end of a line", "a \r\n", false);
    row("tab at the end of a line", "a\t\r\n", false);
    row("tab at the end of a second line", "a\r\nb\t\r\n", false);
    row("lone line feed", "a\nb\r\n", false);
    row("line feed first", "\na\r\n", false);
    row("lone carriage return", "a\rb\r\n", false);
    row("two carriage returns", "a\r\r\n", false);
    row("control", "a\x1F\r\n", false);
    row("delete", "a\x7F\r\n", false);
    row("eighth bit", "\xC3\xBC\r\n", false);
}

void TestTransferCoding::onlyTextThatServersLeaveAloneTravelsUncoded()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, uncoded);
    QCOMPARE(bestTransferCoding(text, true) == TransferCoding::SevenBit, uncoded);
    QCOMPARE(bestTransferCoding(text, false) == TransferCoding::SevenBit, uncoded);
    if (text.endsWith("\r\n") && text.size() > 2) {
        // Without its last line end a text can only stay as it is where a boundary follows.
        QCOMPARE(bestTransferCoding(text.chopped(2), false) == TransferCoding::SevenBit, uncoded);
        QVERIFY(bestTransferCoding(text.chopped(2), true) != TransferCoding::SevenBit || text == "\r\n\r\n");
    }
}

void TestTransferCoding::theShorterCodingIsTaken_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("quoted");
    QTest::newRow("shorter") << QByteArray("\xC3\xC3xxx") << true;                               // 9 octets to 10
    QTest::newRow("as long") << QByteArray("\xC3\xC3\xC3x") << true;                             // 10 to 10
    QTest::newRow("longer") << QByteArray("\xC3\xC3\xC3\xC3") << false;                          // 12 to 10
    QTest::newRow("blanks and line ends cost one") << QByteArray(" \t\r\n\xC3\xC3\xC3") << true; // 13 to 14
    QTest::newRow("an equals sign costs three") << QByteArray("====\x01") << false;
    QTest::newRow("so does a control") << QByteArray("\x01\x7F\x02\x03") << false;
    // Per 6 octets 10 to 8: what decides is longer than a line, so soft breaks and line ends are counted.
    QTest::newRow("long and mostly plain") << QByteArray("\xC3xxxxxxxx").repeated(100) << true;
    QTest::newRow("long and mostly not") << QByteArray("\xC3xxxx").repeated(100) << false;
}

void TestTransferCoding::theShorterCodingIsTaken()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, quoted);
    const TransferCoding wanted = quoted ? TransferCoding::QuotedPrintable : TransferCoding::Base64;
    QVERIFY(bestTransferCoding(text, true) == wanted);
    QVERIFY(bestTransferCoding(text, false) == wanted);
}

void TestTransferCoding::quotedPrintableIsExact_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("coded"); // with the last line closed
    const auto row = [](const char *name, const QByteArray &text, const QByteArray &coded) {
        QTest::newRow(name) << text << coded;
    };
    row("nothing", "", "");
    row("line", "a\r\n", "a\r\n");
    row("open line", "a", "a=\r\n");
    row("what stands for itself", "!~<>?@ \tx\r\n", "!~<>?@ \tx\r\n");
    row("what does not", QByteArray("=\x7F\x80\xFF\0\x1F", 6), "=3D=7F=80=FF=00=1F=\r\n");
    row("blank at the end", "a \r\nb ", "a=20\r\nb=20=\r\n");
    row("tab at the end", "a\t\r\nb\t", "a=09\r\nb=09=\r\n");
    row("two blanks at the end", "a  \r\n", "a =20\r\n");
    row("blank line of blanks", " \r\n", "=20\r\n");
    row("lone line ends", "a\nb\rc\r", "a=0Ab=0Dc=0D=\r\n");
    row("carriage return before a line end", "a\r\r\n", "a=0D\r\n");
    row("mail store", "From me\r\nFrom you\r\n", "=46rom me\r\n=46rom you\r\n");
    row("mail store within a line", "x From me\r\n", "x From me\r\n");
    row("no mail store", "Fromage\r\n", "Fromage\r\n");
    row("mail store at the end", "From ", "=46rom=20=\r\n");
    row("75", x(75), x(75) + "=\r\n");
    row("76 and open", x(76), x(75) + "=\r\nx=\r\n");
    row("76", x(76) + "\r\n", x(76) + "\r\n");
    row("77", x(77) + "\r\n", x(75) + "=\r\nxx\r\n");
    row("151", x(151) + "\r\n", x(75) + "=\r\n" + x(76) + "\r\n");
    row("escape that fills the line", x(73) + "=\r\n", x(73) + "=3D\r\n");
    row("escape too long for the line", x(74) + "=\r\n", x(74) + "=\r\n=3D\r\n");
    row("escape before the soft break", x(72) + "=y\r\n", x(72) + "=3Dy\r\n");
    row("escape behind the soft break", x(73) + "=y\r\n", x(73) + "=\r\n=3Dy\r\n");
    row("mail store behind a soft break", x(75) + "From me\r\n", x(75) + "=\r\n=46rom me\r\n");
    row("blank that a soft break would end with", x(74) + " yy\r\n", x(74) + " =\r\nyy\r\n");
}

void TestTransferCoding::quotedPrintableIsExact()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, coded);
    QByteArray closed = "head";
    appendQuotedPrintable(closed, text, true);
    QCOMPARE(closed, "head" + coded);
    QByteArray open = "head";
    appendQuotedPrintable(open, text, false);
    const bool ended = text.isEmpty() || text.endsWith("\r\n");
    QCOMPARE(open, "head" + (ended ? coded : coded.chopped(3)));
}

void TestTransferCoding::base64HasLinesOf76AndItsSizeIsKnown_data()
{
    QTest::addColumn<int>("octets");
    QTest::addColumn<QList<int>>("lines");
    QTest::newRow("none") << 0 << QList<int>();
    QTest::newRow("1") << 1 << QList<int>{4};
    QTest::newRow("3") << 3 << QList<int>{4};
    QTest::newRow("4") << 4 << QList<int>{8};
    QTest::newRow("56") << 56 << QList<int>{76};
    QTest::newRow("57") << 57 << QList<int>{76};
    QTest::newRow("58") << 58 << QList<int>{76, 4};
    QTest::newRow("114") << 114 << QList<int>{76, 76};
    QTest::newRow("115") << 115 << QList<int>{76, 76, 4};
}

void TestTransferCoding::base64HasLinesOf76AndItsSizeIsKnown()
{
    QFETCH(int, octets);
    QFETCH(QList<int>, lines);
    QByteArray coded = "head";
    appendBase64(coded, QByteArray(octets, '\xFE'));
    QVERIFY(coded.startsWith("head"));
    coded = coded.sliced(4);
    QCOMPARE(base64Size(octets), qint64(coded.size()));
    QByteArray joined;
    for (const int length : lines) {
        joined += coded.first(length);
        QCOMPARE(coded.sliced(length, 2), QByteArray("\r\n"));
        coded = coded.sliced(length + 2);
    }
    QCOMPARE(coded, QByteArray());
    QCOMPARE(QByteArray::fromBase64(joined), QByteArray(octets, '\xFE'));
}

void TestTransferCoding::eachCodingIsWrittenUnderItsName()
{
    const QList<std::tuple<TransferCoding, QByteArray, QByteArray, QByteArray>> rows = {
        {TransferCoding::SevenBit, "7bit", "a=b", "a=b"},
        {TransferCoding::QuotedPrintable, "quoted-printable", "a=3Db=\r\n", "a=3Db"},
        {TransferCoding::Base64, "base64", "YT1i\r\n", "YT1i\r\n"}};
    for (const auto &[coding, name, alone, between] : rows) {
        QCOMPARE(transferCodingName(coding), name);
        QByteArray out;
        appendCoded(out, "a=b", coding, true);
        QCOMPARE(out, alone);
        out.clear();
        appendCoded(out, "a=b", coding, false);
        QCOMPARE(out, between);
    }
}

QTEST_APPLESS_MAIN(TestTransferCoding)
#include "test_transfercoding.moc"
