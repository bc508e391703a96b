#include "optionsbench.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

/// The limits of the number boxes where a button is pressed without the mouse, or faster than the box can be checked.
class TestOptionMnemonics : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saveByItsMnemonicChecksTheLimitFirst_data();
    void saveByItsMnemonicChecksTheLimitFirst();
    void saveByItsMnemonicSavesAGoodValue();
    void closeByItsMnemonicStaysWithTheBadValue();
    void helpByItsKeyStaysWithTheBadValue();
    void aQuickClickOnSaveChecksTheLimitFirst();
    void enterInABoxSavesNothing();

private:
    static void enter(OptionsBench &bench, int index, const QString &value)
    {
        bench.focus(bench.txt(index));
        bench.txt(index)->setText(value);
    }
    static void pressMnemonic(OptionsBench &bench, QAbstractButton *button)
    {
        const QKeyCombination key = QKeySequence::mnemonic(button->text())[0];
        QTest::keyClick(bench.form()->focusWidget(), key.key(), key.keyboardModifiers());
        while (bench.isLoaded() && button->isDown()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
};

void TestOptionMnemonics::saveByItsMnemonicChecksTheLimitFirst_data()
{
    QTest::addColumn<int>("box");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("message");
    QTest::newRow("interval") << 14 << u"2"_s << u"INTERVAL_LIMIT"_s;
    QTest::newRow("times") << 15 << u"0"_s << u"TIMES_LIMIT"_s;
    QTest::newRow("one by one") << 0 << u"9999"_s << u"OBO_LIMIT"_s;
}

void TestOptionMnemonics::saveByItsMnemonicChecksTheLimitFirst()
{
    QFETCH(int, box);
    QFETCH(QString, value);
    QFETCH(QString, message);
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    const QByteArray before = bench.options();
    enter(bench, box, value);
    bench.prompts.expectBox(message, 64);
    pressMnemonic(bench, bench.sbt(0));
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.options(), before);
    QVERIFY(bench.txt(box)->hasFocus());
    QCOMPARE(bench.txt(box)->text(), value);
}

void TestOptionMnemonics::saveByItsMnemonicSavesAGoodValue()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    enter(bench, 14, u"30"_s);
    bench.prompts.expectBox(u"SAVE_SUCC"_s, 64);
    pressMnemonic(bench, bench.sbt(0));
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.other(u"Interval"_s), u"30"_s);
}

void TestOptionMnemonics::closeByItsMnemonicStaysWithTheBadValue()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    enter(bench, 14, u"2"_s);
    bench.prompts.expectBox(u"INTERVAL_LIMIT"_s, 64);
    pressMnemonic(bench, bench.sbt(2));
    QVERIFY(bench.isLoaded());
    QVERIFY(bench.form()->isVisible());
}

void TestOptionMnemonics::helpByItsKeyStaysWithTheBadValue()
{
    OptionsBench bench;
    bool helped = false;
    bench.help = [&helped] { helped = true; };
    bench.open(Tab::OtherTab);
    enter(bench, 0, u"301"_s);
    bench.prompts.expectBox(u"OBO_LIMIT"_s, 64);
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_F1);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QVERIFY(!helped);
}

void TestOptionMnemonics::aQuickClickOnSaveChecksTheLimitFirst()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    const QByteArray before = bench.options();
    enter(bench, 14, u"2"_s);
    bench.prompts.expectBox(u"INTERVAL_LIMIT"_s, 64);
    QTest::mouseClick(bench.sbt(0), Qt::LeftButton); // press and release with nothing between them
    QCoreApplication::processEvents();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.options(), before);
    QVERIFY(bench.txt(14)->hasFocus());
}

void TestOptionMnemonics::enterInABoxSavesNothing()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    const QByteArray before = bench.options();
    enter(bench, 14, u"30"_s);
    QTest::keyClick(bench.txt(14), Qt::Key_Return);
    QTest::keyClick(bench.txt(14), Qt::Key_Enter);
    QCoreApplication::processEvents();
    QCOMPARE(bench.options(), before);
    QVERIFY(bench.txt(14)->hasFocus());
}

QTEST_MAIN(TestOptionMnemonics)
#include "test_optionmnemonics.moc"
