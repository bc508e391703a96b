#include "quillon/forms/boxtext.h"

#include <QPlainTextEdit>
#include <QTest>

using namespace Qt::StringLiterals;

class TestBoxText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyLineEndIsCrLfAndAllElseStays_data();
    void everyLineEndIsCrLfAndAllElseStays();
    void aTypedLineEndOfEitherKindIsCrLf();
};

void TestBoxText::everyLineEndIsCrLfAndAllElseStays_data()
{
    QTest::addColumn<QString>("put");
    QTest::addColumn<QString>("got");
    QTest::newRow("nothing") << u""_s << u""_s;
    QTest::newRow("no line end") << u" a\tb "_s << u" a\tb "_s;
    QTest::newRow("a no-break space") << u"1\u00a0000"_s << u"1\u00a0000"_s;
    QTest::newRow("each kind") << u"a\nb\r\nc\rd"_s << u"a\r\nb\r\nc\r\nd"_s;
    QTest::newRow("Unicode's") << u"a\u2028b\u2029c"_s << u"a\r\nb\r\nc"_s;
    QTest::newRow("empty lines at both ends") << u"\n\na\n\n"_s << u"\r\n\r\na\r\n\r\n"_s;
}

void TestBoxText::everyLineEndIsCrLfAndAllElseStays()
{
    QFETCH(const QString, put);
    QPlainTextEdit box;
    box.setPlainText(put);
    QTEST(quillon::textOf(&box), "got");
}

void TestBoxText::aTypedLineEndOfEitherKindIsCrLf()
{
    QPlainTextEdit box;
    QTest::keyClicks(&box, u"a"_s);
    QTest::keyClick(&box, Qt::Key_Return);
    QTest::keyClicks(&box, u"b"_s);
    QTest::keyClick(&box, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(&box, u"c"_s);
    QCOMPARE(quillon::textOf(&box), u"a\r\nb\r\nc"_s);
}

QTEST_MAIN(TestBoxText)
#include "test_boxtext.moc"
