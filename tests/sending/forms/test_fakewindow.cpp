#include "support/fakewindow.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Field = corvane::Message::Field;

/// What the stand-in for the main window has beyond a message.
class TestFakeWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aListLeavesTheTextOfItsBox();
    void aTestCanEditBetweenTwoReadings();
    void whatWasShownIsRecorded();
};

void TestFakeWindow::aListLeavesTheTextOfItsBox()
{
    FakeWindow window;
    window.setText(Field::Account, u"mine"_s);
    window.setList(Field::Account, {u"a"_s, u"b"_s});
    QCOMPARE(window.text(Field::Account), u"mine"_s);
    QCOMPARE(window.list(Field::Account), (QStringList{u"a"_s, u"b"_s}));
}

void TestFakeWindow::aTestCanEditBetweenTwoReadings()
{
    FakeWindow window;
    int readings = 0;
    window.beforeRead = [&](Field field) {
        if (field == Field::Subject) {
            window.setText(Field::Subject, QString::number(++readings));
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
    progress.setAtRest();
    QCOMPARE(progress.steps, (QList<std::pair<int, int>>{{1, 2}, FakeProgress::rest}));
}

QTEST_GUILESS_MAIN(TestFakeWindow)
#include "test_fakewindow.moc"
