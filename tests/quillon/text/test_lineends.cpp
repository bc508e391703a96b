#include "quillon/text/lineends.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestLineEnds : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyLineEndBecomesCrLf_data();
    void everyLineEndBecomesCrLf();
    void aTextGoesOnOneLine_data();
    void aTextGoesOnOneLine();
    void controlsBecomeBlanks_data();
    void controlsBecomeBlanks();
};

void TestLineEnds::everyLineEndBecomesCrLf_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << u"äß"_s << u"äß"_s;
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("line feed") << u"a\nb\n"_s << u"a\r\nb\r\n"_s;
    QTest::newRow("carriage return") << u"a\rb\r"_s << u"a\r\nb\r\n"_s;
    QTest::newRow("both") << u"a\r\nb\r\n"_s << u"a\r\nb\r\n"_s;
    QTest::newRow("mixed") << u"\n\r\n\r\r\n\n\ra"_s << u"\r\n\r\n\r\n\r\n\r\n\r\na"_s;
    QTest::newRow("separators are letters") << u"a\u2028b\u2029c\u0085d"_s << u"a\u2028b\u2029c\u0085d"_s;
}

void TestLineEnds::everyLineEndBecomesCrLf()
{
    QFETCH(QString, text);
    QTEST(quillon::withCrLf(text), "expected");
}

void TestLineEnds::aTextGoesOnOneLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("one line") << u" a b "_s << u" a b "_s;
    QTest::newRow("carriage return and line feed") << u"a\r\nb"_s << u"a b"_s;
    QTest::newRow("each by itself") << u"a\rb\nc"_s << u"a b c"_s;
    QTest::newRow("the other way round") << u"a\n\rb"_s << u"a  b"_s;
    QTest::newRow("separators") << u"a\u2028b\u2029c"_s << u"a b c"_s;
    QTest::newRow("tabs and other controls stay") << u"\ta\u0001b\u000Bc\u0085d"_s << u"\ta\u0001b\u000Bc\u0085d"_s;
}

void TestLineEnds::aTextGoesOnOneLine()
{
    QFETCH(QString, text);
    QTEST(quillon::onOneLine(text), "expected");
}

void TestLineEnds::controlsBecomeBlanks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << u" a b "_s << u" a b "_s;
    QTest::newRow("line ends") << u"a\r\nb\rc\nd"_s << u"a b c d"_s;
    QTest::newRow("separators") << u"a\u2028b\u2029c"_s << u"a b c"_s;
    QTest::newRow("tab") << u"\ta\tb"_s << u" a b"_s;
    QTest::newRow("others") << u"a\u0001b\u000Bc\u007Fd\u0085e"_s << u"a b c d e"_s;
    QTest::newRow("NUL") << QString(u"a"_s + QChar(u'\0') + u'b') << u"a b"_s;
    QTest::newRow("no controls") << u"a\u00A0b\u200Bc"_s << u"a\u00A0b\u200Bc"_s;
}

void TestLineEnds::controlsBecomeBlanks()
{
    QFETCH(QString, text);
    QTEST(quillon::withoutControls(text), "expected");
}

QTEST_GUILESS_MAIN(TestLineEnds)
#include "test_lineends.moc"
