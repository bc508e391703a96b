#include "quillon/fault.h"
#include "quillon/text/quillontext.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestQuillonText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void encodingListHasUtf8AndEntriesThatAreNotOffered();
    void colorsAreWrittenForHtml();
    void isInListIsExact();
    void daysAndMonthsAreThoseOfMail();
    void numbersOutOfRangeAreFaults();

private:
    quillon::QuillonText m_text;
};

void TestQuillonText::encodingListHasUtf8AndEntriesThatAreNotOffered()
{
    const QStringList entries = m_text.GetEncodingList().split(u" || "_s);
    QVERIFY(entries.contains(u"utf-8 | Unicode (UTF-8)"_s));
    int notOffered = 0;
    for (const QString &entry : entries) {
        QCOMPARE(entry.count(u" | "_s), 1);
        notOffered += entry.startsWith(u'_') ? 1 : 0;
    }
    QVERIFY(notOffered > 0);
    QVERIFY(entries.size() - notOffered > 10);
}

void TestQuillonText::colorsAreWrittenForHtml()
{
    QCOMPARE(m_text.ColorToHtml(0), u"#000000"_s);
    QCOMPARE(m_text.ColorToHtml(0x0000FF), u"#FF0000"_s);
    QCOMPARE(m_text.ColorToHtml(0xC0800A), u"#0A80C0"_s);
}

void TestQuillonText::isInListIsExact()
{
    QVERIFY(m_text.IsInList(u"True"_s, {u"True"_s, u"False"_s}));
    QVERIFY(!m_text.IsInList(u"true"_s, {u"True"_s, u"False"_s}));
    QVERIFY(!m_text.IsInList(QString(), {u"True"_s, u"False"_s}));
}

void TestQuillonText::daysAndMonthsAreThoseOfMail()
{
    QCOMPARE(m_text.WeekdayText(1), u"Sun"_s);
    QCOMPARE(m_text.WeekdayText(7), u"Sat"_s);
    QCOMPARE(m_text.MonthText(1), u"Jan"_s);
    QCOMPARE(m_text.MonthText(12), u"Dec"_s);
}

void TestQuillonText::numbersOutOfRangeAreFaults()
{
    const int before = quillon::faultCount();
    QCOMPARE(m_text.WeekdayText(0), QString());
    QCOMPARE(m_text.MonthText(13), QString());
    QCOMPARE(quillon::faultCount(), before + 2);
}

QTEST_GUILESS_MAIN(TestQuillonText)
#include "test_quillontext.moc"
