#include "mainfixture.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

class TestRecipientCounts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theLineTellsHowManySeeEachOther_data();
    void theLineTellsHowManySeeEachOther();
    void oneByOneHidesTheLineAtOnceAndBringsItBack();
    void theButtonBesideItChoosesOneByOneAndNothingElse();
    void eachBoxTellsItsCountInItsToolTip();
    void aNewTextOfTheLanguageFileKeepsItsCount();
};

namespace {

QLabel *lineOf(const MainFixture &main)
{
    return main.get<QLabel>(u"lblSeen"_s);
}

/// What a reader of the line sees.
QString textOf(const MainFixture &main)
{
    const QAbstractButton *instead = main.button(u"sbtSeen"_s);
    return (lineOf(main)->isVisible() ? lineOf(main)->text() : QString()) +
           (instead->isVisible() ? u' ' + instead->text() : QString());
}

bool tellsACount(const QWidget *box)
{
    static const QRegularExpression count(u"[1-9][0-9]* recipients?\\.$"_s);
    return count.match(box->toolTip()).hasMatch();
}

} // namespace

void TestRecipientCounts::theLineTellsHowManySeeEachOther_data()
{
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("cc");
    QTest::addColumn<QString>("bcc");
    QTest::addColumn<int>("number");
    QTest::newRow("nobody") << u""_s << u""_s << u""_s << 0;
    QTest::newRow("one") << u"a@example.com"_s << u""_s << u""_s << 0;
    QTest::newRow("one with a trailing comma") << u"a@example.com, "_s << u""_s << u""_s << 0;
    QTest::newRow("two") << u"a@example.com, b@example.com"_s << u""_s << u""_s << 2;
    QTest::newRow("one and a copy") << u"a@example.com"_s << u"Bob <b@example.com>"_s << u""_s << 2;
    QTest::newRow("copies alone") << u""_s << u"a@example.com,b@example.com,c@example.com"_s << u""_s << 3;
    QTest::newRow("empty pieces") << u", a@example.com, ,"_s << u""_s << u""_s << 0;
    QTest::newRow("hidden copies") << u"a@example.com"_s << u""_s << u"b@example.com, c@example.com"_s << 0;
    QTest::newRow("all three") << u"a@example.com"_s << u"b@example.com"_s << u"c@example.com, d@example.com"_s << 2;
}

void TestRecipientCounts::theLineTellsHowManySeeEachOther()
{
    QFETCH(const QString, to);
    QFETCH(const QString, cc);
    QFETCH(const QString, bcc);
    QFETCH(const int, number);
    MainFixture main;
    QVERIFY(!lineOf(main)->isVisible());
    main.recipients(0)->setPlainText(u"x@example.com, y@example.com"_s);
    const QString start = u"2 people will see each other's addresses. Send one by one instead"_s;
    QTRY_COMPARE(textOf(main), start);
    main.recipients(0)->setPlainText(to);
    main.recipients(1)->setPlainText(cc);
    main.recipients(2)->setPlainText(bcc);
    const QString expected = number == 0 ? QString() : QString(start).replace(u'2', QString::number(number));
    QTRY_COMPARE(tellsACount(main.recipients(0)), to.contains(u'@'));
    QTRY_COMPARE(textOf(main), expected);
}

void TestRecipientCounts::oneByOneHidesTheLineAtOnceAndBringsItBack()
{
    MainFixture main;
    main.recipients(1)->setPlainText(u"a@example.com, b@example.com"_s);
    QTRY_VERIFY(lineOf(main)->isVisible());
    main.message().setOneByOne(true);
    QVERIFY(!lineOf(main)->isVisible());
    main.recipients(1)->setPlainText(u"a@example.com, b@example.com, c@example.com"_s);
    QTRY_VERIFY(main.recipients(1)->toolTip().contains(u"3 recipients."_s));
    QVERIFY(!lineOf(main)->isVisible());
    main.message().setOneByOne(false);
    QVERIFY(textOf(main).startsWith(u"3 people"_s));
}

void TestRecipientCounts::theButtonBesideItChoosesOneByOneAndNothingElse()
{
    MainFixture main;
    main.recipients(0)->setPlainText(u"a@example.com, b@example.com"_s);
    QTRY_VERIFY(lineOf(main)->isVisible());
    main.message().pblnChanged = false;
    main.recipients(2)->setFocus();
    QTRY_VERIFY(main.recipients(2)->hasFocus());
    QTest::keyClick(main.recipients(2), Qt::Key_Tab);
    QVERIFY(main.button(u"sbtSeen"_s)->hasFocus());
    QTest::keyClick(main.button(u"sbtSeen"_s), Qt::Key_Space);
    QVERIFY(main.message().oneByOne());
    QVERIFY(main.item(u"tlbOBO"_s)->isChecked());
    QVERIFY(!lineOf(main)->isVisible());
    QCOMPARE(main.sends, 0);
    QCOMPARE(main.message().text(Field::To), u"a@example.com, b@example.com"_s);
}

void TestRecipientCounts::eachBoxTellsItsCountInItsToolTip()
{
    MainFixture main;
    QStringList tips;
    for (int box = 0; box < 3; ++box) {
        tips.append(main.recipients(box)->toolTip());
        QVERIFY(tips.last().endsWith(u'.'));
    }
    main.recipients(0)->setPlainText(u"a@example.com"_s);
    main.recipients(1)->setPlainText(u"a@example.com, b@example.com, , Carl <c@example.com>,"_s);
    QTRY_COMPARE(main.recipients(0)->toolTip(), tips.at(0) + u" 1 recipient."_s);
    QCOMPARE(main.recipients(1)->toolTip(), tips.at(1) + u" 3 recipients."_s);
    QCOMPARE(main.recipients(2)->toolTip(), tips.at(2));
    main.recipients(1)->clear();
    main.recipients(2)->setPlainText(u"b@example.com, c@example.com"_s);
    QTRY_COMPARE(main.recipients(2)->toolTip(), tips.at(2) + u" 2 recipients."_s);
    QCOMPARE(main.recipients(1)->toolTip(), tips.at(1));
}

void TestRecipientCounts::aNewTextOfTheLanguageFileKeepsItsCount()
{
    MainFixture main({}, false);
    main.recipients(2)->setPlainText(u"b@example.com, c@example.com"_s);
    main.window->load(); // brings the texts again
    QVERIFY2(main.recipients(2)->toolTip().endsWith(u". 2 recipients."_s), qPrintable(main.recipients(2)->toolTip()));
    QCOMPARE(main.recipients(2)->toolTip().count(u"recipients."_s), 1);
}

QTEST_MAIN(TestRecipientCounts)
#include "test_recipientcounts.moc"
