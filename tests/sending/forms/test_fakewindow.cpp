#include "support/fakewindow.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Field = corvane::Message::Field;

/// The stand-in keeps the promises of the window it stands for.
class TestFakeWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void settingAFieldMarksTheMessageAsChanged();
    void textsComeWithCarriageReturns();
    void aListLeavesTheTextOfItsBox();
    void theSelectedEncodingIsAnEntry();
    void aTestCanEditBetweenTwoReadings();
    void whatWasShownIsRecorded();
};

void TestFakeWindow::settingAFieldMarksTheMessageAsChanged()
{
    const auto changes = [](const std::function<void(corvane::Message &)> &edit) {
        FakeWindow window;
        edit(window);
        return window.pblnChanged;
    };
    using W = corvane::Message;
    QVERIFY(changes([](W &w) { w.setText(Field::Subject, u"a"_s); }));
    QVERIFY(changes([](W &w) { w.setActual(W::Choice::Sender, false); }));
    QVERIFY(changes([](W &w) { w.setFormat(W::Format::Rich); }));
    QVERIFY(changes([](W &w) { w.setPriority(W::Priority::High); }));
    QVERIFY(changes([](W &w) { w.setOneByOne(true); }));
    QVERIFY(changes([](W &w) { w.setReceipt(true); }));
    QVERIFY(changes([](W &w) { w.setAttachmentPaths({u"/a"_s}); }));
    QVERIFY(changes([](W &w) { w.setCustomDateTime(QDate(2026, 1, 2), QTime(3, 4)); }));
    QVERIFY(!changes([](W &w) { w.setText(Field::Subject, QString()); }));
    QVERIFY(!changes([](W &w) { w.setStatusText(u"a"_s); }));
    QVERIFY(!changes([](W &w) { w.setList(Field::Account, {u"a"_s}); }));
}

void TestFakeWindow::textsComeWithCarriageReturns()
{
    FakeWindow window;
    window.setText(Field::PlainContent, u"a\nb\r\nc"_s);
    QCOMPARE(window.text(Field::PlainContent), u"a\r\nb\r\nc"_s);
}

void TestFakeWindow::aListLeavesTheTextOfItsBox()
{
    FakeWindow window;
    window.setText(Field::Account, u"mine"_s);
    window.setList(Field::Account, {u"a"_s, u"b"_s});
    QCOMPARE(window.text(Field::Account), u"mine"_s);
    QCOMPARE(window.list(Field::Account), (QStringList{u"a"_s, u"b"_s}));
}

void TestFakeWindow::theSelectedEncodingIsAnEntry()
{
    FakeWindow window;
    window.encodings = {u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic (KOI8-R)"_s};
    QCOMPARE(window.encodingCount(), 2);
    window.selectEncoding(1);
    QCOMPARE(window.selectedEncoding(), u"koi8-r | Cyrillic (KOI8-R)"_s);
    window.selectEncoding(2);
    QCOMPARE(window.selectedEncoding(), QString());
}

void TestFakeWindow::aTestCanEditBetweenTwoReadings()
{
    FakeWindow window;
    int readings = 0;
    window.beforeRead = [&](Field field) {
        if (field == Field::Subject) {
            window.texts[Field::Subject] = QString::number(++readings);
        }
    };
    QCOMPARE(window.text(Field::Subject), u"1"_s);
    QCOMPARE(window.text(Field::Subject), u"2"_s);
}

void TestFakeWindow::whatWasShownIsRecorded()
{
    FakeWindow window;
    window.setFocus(Field::To);
    window.setFocus(Field::Subject);
    window.setStatusText(u"a"_s);
    window.setStatusText(u"b"_s);
    QCOMPARE(window.focused, (QList<Field>{Field::To, Field::Subject}));
    QCOMPARE(window.statusTexts, (QStringList{u"a"_s, u"b"_s}));
    QCOMPARE(window.statusText(), u"b"_s);

    FakeProgress progress;
    QCOMPARE(progress.counter(), u"Sending emails..."_s);
    progress.setCounter(u"Sending 1/2 emails..."_s);
    progress.setProgress(1, 2);
    QCOMPARE(progress.counters, QStringList{u"Sending 1/2 emails..."_s});
    QCOMPARE(progress.steps, (QList<std::pair<int, int>>{{1, 2}}));
}

QTEST_GUILESS_MAIN(TestFakeWindow)
#include "test_fakewindow.moc"
