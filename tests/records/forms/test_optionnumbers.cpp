#include "optionsbench.h"

#include <QClipboard>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

namespace {

/// The three number boxes, with the message of each one's limit and a value that is beyond it.
struct Box {
    int index;
    QString message;
    QString beyond;
};
const QList<Box> boxes = {
    {14, u"INTERVAL_LIMIT"_s, u"5"_s}, {15, u"TIMES_LIMIT"_s, u"0"_s}, {0, u"OBO_LIMIT"_s, u"301"_s}};

} // namespace

class TestOptionNumbers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theBoxesTakeDigitsAndBackspaceOnly();
    void lettersArePastedByNobody();
    void lettersAreSwallowedBehindAStoredTextThatIsNoNumber();
    void limitsAreChecked_data();
    void limitsAreChecked();
    void anEmptyBoxIsNotChecked();
    void aBadValueStaysAndGetsTheFocusBackByKey();
    void aBadValueStaysAndGetsTheFocusBackByMouse();
    void aGoodValueLetsTheFocusGo();
    void twoBadBoxesDoNotPlayPingPong();
    void anotherWindowIsNoLossOfTheFocus();
    void aMenuIsNoLossOfTheFocus();
    void aButtonUnderTheMouseIsNotPressedWhileItsBoxIsShown();
    void anotherTabGivesWayToTheBadValue();
    void closingShowsNoMessage();
    void loadingIsNotChecked();

private:
    /// Enters a value in a box with the focus, as the user does.
    static void enter(OptionsBench &bench, int index, const QString &value)
    {
        bench.focus(bench.txt(index));
        bench.txt(index)->selectAll();
        QTest::keyClicks(bench.txt(index), value);
        QCOMPARE(bench.txt(index)->text(), value);
    }
    static void leaveByKey(OptionsBench &bench)
    {
        QTest::keyClick(bench.form()->focusWidget(), Qt::Key_Tab);
        QCoreApplication::processEvents();
    }
};

void TestOptionNumbers::theBoxesTakeDigitsAndBackspaceOnly()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    for (const Box &box : boxes) {
        QLineEdit *edit = bench.txt(box.index);
        edit->clear();
        QTest::keyClicks(edit, u"1a-2+ .3,ex4"_s);
        for (const QString &digit : {u"\u0664"_s, u"\uff15"_s}) { // digits of another script
            QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, digit, Qt::NoModifier);
        }
        QCOMPARE(edit->text(), u"1234"_s);
        QTest::keyClick(edit, Qt::Key_Backspace);
        QCOMPARE(edit->text(), u"123"_s);
    }
    QCOMPARE(bench.sst()->currentIndex(), 4); // no letter went on to anybody else
}

void TestOptionNumbers::lettersArePastedByNobody()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    for (const Box &box : boxes) {
        QLineEdit *edit = bench.txt(box.index);
        edit->setText(u"8"_s);
        for (const QString &text : {u"x"_s, u"1x"_s, u"-1"_s, u"1\n2"_s}) {
            QApplication::clipboard()->setText(text);
            edit->paste();
            QCOMPARE(edit->text(), u"8"_s);
        }
    }
}

void TestOptionNumbers::lettersAreSwallowedBehindAStoredTextThatIsNoNumber()
{
    OptionsBench bench;
    bench.setOther(Setting::Interval, u"half an hour"_s);
    bench.open(Tab::OtherTab);
    QCOMPARE(bench.txt(14)->text(), u"half an hour"_s);
    QTest::keyClicks(bench.txt(14), u"s/:"_s); // the last two stand beside the digits
    QCOMPARE(bench.txt(14)->text(), u"half an hour"_s);
    bench.focus(bench.txt(14));
    bench.prompts.expectBox(u"INTERVAL_LIMIT"_s, 64);
    leaveByKey(bench);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QTest::keyClick(bench.txt(14), Qt::Key_End);
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(bench.txt(14), Qt::Key_Backspace);
    }
    QTest::keyClicks(bench.txt(14), u"30"_s);
    QCOMPARE(bench.txt(14)->text(), u"30"_s);
}

void TestOptionNumbers::limitsAreChecked_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("interval");
    QTest::addColumn<QString>("message");
    const QString huge(400, u'9');
    const QString none;
    QTest::newRow("interval 5") << 14 << u"5"_s << none << u"INTERVAL_LIMIT"_s;
    QTest::newRow("interval 0") << 14 << u"0"_s << none << u"INTERVAL_LIMIT"_s;
    QTest::newRow("interval 6") << 14 << u"6"_s << none << none;
    QTest::newRow("interval 006") << 14 << u"006"_s << none << none;
    QTest::newRow("interval 4294967301") << 14 << u"4294967301"_s << none << none; // 5 where a number is cut off
    QTest::newRow("interval of 400 digits") << 14 << huge << none << none;
    QTest::newRow("times 0") << 15 << u"0"_s << u"26"_s << u"TIMES_LIMIT"_s;
    QTest::newRow("times 1 with interval 720") << 15 << u"1"_s << u"720"_s << none;
    QTest::newRow("times 1 with interval 721") << 15 << u"1"_s << u"721"_s << u"TIMES_LIMIT"_s;
    QTest::newRow("times 54 with interval 26") << 15 << u"54"_s << u"26"_s << none;
    QTest::newRow("times 55 with interval 26") << 15 << u"55"_s << u"26"_s << u"TIMES_LIMIT"_s;
    QTest::newRow("times 239 with interval 6") << 15 << u"239"_s << u"6"_s << none;
    QTest::newRow("times 240 with interval 6") << 15 << u"240"_s << u"6"_s << u"TIMES_LIMIT"_s;
    QTest::newRow("times of 400 digits") << 15 << huge << u"26"_s << u"TIMES_LIMIT"_s;
    QTest::newRow("times with an interval of 400 digits") << 15 << u"1"_s << huge << u"TIMES_LIMIT"_s;
    QTest::newRow("times 0 with an interval of 400 digits") << 15 << u"0"_s << huge << u"TIMES_LIMIT"_s;
    QTest::newRow("times 9999 without an interval") << 15 << u"9999"_s << u""_s << none;
    QTest::newRow("seconds 300") << 0 << u"300"_s << none << none;
    QTest::newRow("seconds 0") << 0 << u"0"_s << none << none;
    QTest::newRow("seconds 301") << 0 << u"301"_s << none << u"OBO_LIMIT"_s;
    QTest::newRow("seconds 4294967296") << 0 << u"4294967296"_s << none << u"OBO_LIMIT"_s;
    QTest::newRow("seconds of 400 digits") << 0 << huge << none << u"OBO_LIMIT"_s;
}

void TestOptionNumbers::limitsAreChecked()
{
    QFETCH(const int, index);
    QFETCH(const QString, value);
    QFETCH(const QString, interval);
    QFETCH(const QString, message);
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    if (index == 15) {
        bench.txt(14)->setText(interval);
    }
    enter(bench, index, value);
    if (!message.isEmpty()) {
        bench.prompts.expectBox(message, 64);
    }
    leaveByKey(bench);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.focused() == u"txt(%1)"_s.arg(index), !message.isEmpty());
    QCOMPARE(bench.txt(index)->text(), value);
}

void TestOptionNumbers::anEmptyBoxIsNotChecked()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    for (const Box &box : boxes) {
        bench.focus(bench.txt(box.index));
        bench.txt(box.index)->clear();
        leaveByKey(bench);
        QVERIFY(bench.focused() != u"txt(%1)"_s.arg(box.index));
    }
}

void TestOptionNumbers::aBadValueStaysAndGetsTheFocusBackByKey()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    for (const Box &box : boxes) {
        const QString good = bench.txt(box.index)->text();
        enter(bench, box.index, box.beyond);
        for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
            bench.prompts.expectBox(box.message, 64);
            QTest::keyClick(bench.form()->focusWidget(), key);
            QCoreApplication::processEvents();
            QCOMPARE(bench.prompts.leftOver(), QStringList());
            QCOMPARE(bench.focused(), u"txt(%1)"_s.arg(box.index));
            QVERIFY(bench.txt(box.index)->hasFocus());
            QCOMPARE(bench.txt(box.index)->text(), box.beyond);
        }
        bench.txt(box.index)->setText(good);
    }
}

void TestOptionNumbers::aBadValueStaysAndGetsTheFocusBackByMouse()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    for (const Box &box : boxes) {
        const QString good = bench.txt(box.index)->text();
        enter(bench, box.index, box.beyond);
        bench.prompts.expectBox(box.message, 64);
        QTest::mouseClick(bench.cbb(1)->lineEdit(), Qt::LeftButton);
        QCoreApplication::processEvents();
        QCOMPARE(bench.prompts.leftOver(), QStringList());
        QVERIFY(bench.txt(box.index)->hasFocus());
        QCOMPARE(bench.txt(box.index)->text(), box.beyond);
        bench.txt(box.index)->setText(good);
    }
}

void TestOptionNumbers::aGoodValueLetsTheFocusGo()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    enter(bench, 14, u"60"_s);
    leaveByKey(bench);
    QCOMPARE(bench.focused(), u"txt(15)"_s);
    enter(bench, 15, u"23"_s);
    leaveByKey(bench);
    QCOMPARE(bench.focused(), u"txt(0)"_s);
    enter(bench, 0, u"300"_s);
    leaveByKey(bench);
    QCOMPARE(bench.focused(), u"cbx(1)"_s);
}

void TestOptionNumbers::twoBadBoxesDoNotPlayPingPong()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    bench.txt(15)->setText(u"0"_s);
    enter(bench, 14, u"3"_s);
    for (int i = 0; i < 3; ++i) {
        bench.prompts.expectBox(u"INTERVAL_LIMIT"_s, 64); // and no other
        leaveByKey(bench);
        QCoreApplication::processEvents();
        QCOMPARE(bench.prompts.leftOver(), QStringList());
        QCOMPARE(bench.focused(), u"txt(14)"_s);
    }
    enter(bench, 14, u"26"_s);
    leaveByKey(bench);
    QCOMPARE(bench.focused(), u"txt(15)"_s);
    bench.prompts.expectBox(u"TIMES_LIMIT"_s, 64); // the other one has its turn now
    leaveByKey(bench);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.focused(), u"txt(15)"_s);
}

void TestOptionNumbers::anotherWindowIsNoLossOfTheFocus()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    enter(bench, 14, u"3"_s);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QCoreApplication::processEvents();
    QVERIFY(!bench.txt(14)->hasFocus());
    bench.form()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(bench.form()));
    QVERIFY(bench.txt(14)->hasFocus());
    bench.prompts.expectBox(u"INTERVAL_LIMIT"_s, 64);
    leaveByKey(bench);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
}

void TestOptionNumbers::aMenuIsNoLossOfTheFocus()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    for (const Box &box : boxes) {
        QLineEdit *edit = bench.txt(box.index);
        const QString good = edit->text();
        edit->setText(box.beyond);
        for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason, Qt::OtherFocusReason}) {
            QFocusEvent lost(QEvent::FocusOut, reason);
            if (reason == Qt::OtherFocusReason) {
                bench.prompts.expectBox(box.message, 64);
            }
            QCoreApplication::sendEvent(edit, &lost);
            QCoreApplication::processEvents();
            QCOMPARE(bench.prompts.leftOver(), QStringList());
        }
        edit->setText(good);
    }
}

void TestOptionNumbers::aButtonUnderTheMouseIsNotPressedWhileItsBoxIsShown()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    enter(bench, 14, u"3"_s);
    const QByteArray before = bench.options();
    bench.prompts.expectBox(u"INTERVAL_LIMIT"_s, 64);
    QTest::mousePress(bench.sbt(0), Qt::LeftButton);
    QCoreApplication::processEvents(); // a hand is slower than this
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QVERIFY(!bench.sbt(0)->isDown());
    QTest::mouseRelease(bench.sbt(0), Qt::LeftButton);
    QCOMPARE(bench.options(), before);
    QVERIFY(bench.txt(14)->hasFocus());
}

void TestOptionNumbers::anotherTabGivesWayToTheBadValue()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    enter(bench, 0, u"999"_s);
    bench.prompts.expectBox(u"OBO_LIMIT"_s, 64);
    bench.sst()->setCurrentIndex(Tab::SenderTab);
    QCoreApplication::processEvents();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.txt(0)->text(), u"999"_s);
    QCOMPARE(bench.sst()->currentIndex(), 4);
    QVERIFY(bench.txt(0)->hasFocus());
}

void TestOptionNumbers::closingShowsNoMessage()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    enter(bench, 14, u"3"_s);
    bench.form()->close();
    QVERIFY(!bench.isLoaded());
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

void TestOptionNumbers::loadingIsNotChecked()
{
    OptionsBench bench;
    bench.setOther(Setting::Interval, u"1"_s);
    bench.setOther(Setting::Times, u"5000"_s);
    bench.setOther(Setting::OboInterval, u"1000"_s);
    bench.open(Tab::OtherTab);
    QCOMPARE(bench.txt(14)->text(), u"1"_s);
    QCOMPARE(bench.txt(15)->text(), u"5000"_s);
    QCOMPARE(bench.txt(0)->text(), u"1000"_s);
}

QTEST_MAIN(TestOptionNumbers)
#include "test_optionnumbers.moc"
