#include "quillon/text/textorder.h"

#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using quillon::TextOrder;

class TestTextOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachLocaleHasItsOrder_data();
    void eachLocaleHasItsOrder();
    void caseMakesNoDifference();
    void numbersGoByTheirValue();
    void whatIsNoNumberStandsBehind();
};

void TestTextOrder::eachLocaleHasItsOrder_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QStringList>("sorted");
    QTest::newRow("English") << QLocale(QLocale::English) << QStringList{u"\u00c4rger"_s, u"Azur"_s, u"Zebra"_s};
    QTest::newRow("Swedish") << QLocale(QLocale::Swedish) << QStringList{u"Azur"_s, u"Zebra"_s, u"\u00c4rger"_s};
    QTest::newRow("none of its own") << QLocale::c() << QStringList{u"\u00c4rger"_s, u"Azur"_s, u"Zebra"_s};
}

void TestTextOrder::eachLocaleHasItsOrder()
{
    QFETCH(QLocale, locale);
    QFETCH(QStringList, sorted);
    const TextOrder order(locale);
    QStringList texts = {u"Zebra"_s, u"\u00c4rger"_s, u"Azur"_s};
    std::sort(texts.begin(), texts.end(),
              [&order](const QString &left, const QString &right) { return order.compare(left, right) < 0; });
    QCOMPARE(texts, sorted);
}

void TestTextOrder::caseMakesNoDifference()
{
    const TextOrder order;
    QCOMPARE(order.compare(u"ann"_s, u"ANN"_s), 0);
    QVERIFY(order.compare(u"ann"_s, u"BOB"_s) < 0);
    QVERIFY(order.compare(u"BOB"_s, u"ann"_s) > 0);
    QVERIFY(order.compare({}, u"a"_s) < 0);
}

void TestTextOrder::numbersGoByTheirValue()
{
    const TextOrder order;
    QVERIFY(order.compareNumbers(u"25"_s, u"1080"_s) < 0);
    QVERIFY(order.compareNumbers(u"1080"_s, u"25"_s) > 0);
    QCOMPARE(order.compareNumbers(u" 25"_s, u"025 "_s), 0);
}

void TestTextOrder::whatIsNoNumberStandsBehind()
{
    const TextOrder order;
    QVERIFY(order.compareNumbers(u"smtp"_s, u"1"_s) > 0);
    QVERIFY(order.compareNumbers(u"1"_s, u""_s) < 0);
    QVERIFY(order.compareNumbers(u"a"_s, u"b"_s) < 0);
    QCOMPARE(order.compareNumbers(u""_s, u""_s), 0);
}

QTEST_GUILESS_MAIN(TestTextOrder)
#include "test_textorder.moc"
