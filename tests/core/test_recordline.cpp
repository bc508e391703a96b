#include "core/recordline.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestRecordLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFieldHoldsNoLineEndTabOrControl_data();
    void aFieldHoldsNoLineEndTabOrControl();
    void aLineIsItsCleanFieldsWithTabsBetween();
    void aFieldThatIsNotThereIsEmpty();
};

void TestRecordLine::aFieldHoldsNoLineEndTabOrControl_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("field");
    QTest::newRow("blanks around") << u"  a b "_s << u"a b"_s;
    QTest::newRow("tab") << u"\ta\tb\t"_s << u"a b"_s;
    QTest::newRow("line ends") << u"a\r\nb\nc\r"_s << u"a b c"_s;
    QTest::newRow("separators") << u"a\u2028b\u2029"_s << u"a b"_s;
    QTest::newRow("controls") << u"\u0001a\u0007b\u0085"_s << u"a b"_s;
    QTest::newRow("nothing else") << u"\t\r\n"_s << QString();
}

void TestRecordLine::aFieldHoldsNoLineEndTabOrControl()
{
    QFETCH(QString, text);
    QTEST(fieldText(text), "field");
}

void TestRecordLine::aLineIsItsCleanFieldsWithTabsBetween()
{
    QCOMPARE(recordLine({u" a\tb "_s, QString(), u"c\r\n"_s}), u"a b\t\tc"_s);
}

void TestRecordLine::aFieldThatIsNotThereIsEmpty()
{
    const QString line = u"a\t\tc"_s;
    QCOMPARE(recordField(line, 0), u"a"_s);
    QCOMPARE(recordField(line, 1), QString());
    QCOMPARE(recordField(line, 2), u"c"_s);
    QCOMPARE(recordField(line, 3), QString());
    QCOMPARE(recordField(QString(), 0), QString());
}

QTEST_GUILESS_MAIN(TestRecordLine)
#include "test_recordline.moc"
