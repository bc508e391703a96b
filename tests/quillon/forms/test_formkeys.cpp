#include "quillon/forms/formkeys.h"

#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

struct Sample {
    Sample()
    {
        edit = new QLineEdit(u"content"_s, &form);
        other = new QLineEdit(u"other"_s, &form);
        text = new QPlainTextEdit(u"plain"_s, &form);
        button = new QPushButton(u"&Add"_s, &form);
        other->move(0, 40);
        text->move(0, 80);
        button->move(200, 0);
        form.resize(400, 300);
        QObject::connect(&form, &QDialog::finished, &form, [this] { ++finished; });
        QObject::connect(button, &QPushButton::clicked, &form, [this] { ++clicks; });
    }

    void show()
    {
        form.show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        edit->setFocus();
        QCoreApplication::processEvents();
    }

    QDialog form;
    QLineEdit *edit;
    QLineEdit *other;
    QPlainTextEdit *text;
    QPushButton *button;
    int finished = 0;
    int clicks = 0;
};

} // namespace

class TestFormKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void enterAndEscapeDoNothingUnlessListed();
    void aButtonAddedLaterIsNoDefaultEither();
    void aListedKeyRunsItsFunction();
    void aListedKeyComesBeforeTheControl();
    void aListedKeyComesBeforeMnemonics();
    void aMnemonicThatIsNotListedStillWorks();
    void aConditionDecidesWhichLineIsTaken();
    void otherModifiersAreAnotherKey();
    void aKeyThatUnloadsTheFormIsSafe();
    void keysOfAnotherWindowAreNotTaken();
    void aBoxSelectsAllItsTextOnFocus();
    void aBoxThatGetsTheFocusBackKeepsItsSelection();
    void aKeyThatIsNotListedGoesToItsControl();
    void aDisabledFormTakesNoKeys();
    void actionsRunOnThePressOnly();
};

void TestFormKeys::enterAndEscapeDoNothingUnlessListed()
{
    Sample sample;
    sample.button->setDefault(true);
    quillon::FormKeys keys(&sample.form);
    QVERIFY(!sample.button->isDefault() && !sample.button->autoDefault());
    sample.show();
    QTest::keyClick(sample.edit, Qt::Key_Return);
    QTest::keyClick(sample.edit, Qt::Key_Enter);
    QTest::keyClick(sample.edit, Qt::Key_Escape);
    QTest::keyClick(sample.button, Qt::Key_Return);
    QTest::keyClick(&sample.form, Qt::Key_Escape);
    QCOMPARE(sample.clicks, 0);
    QCOMPARE(sample.finished, 0);
    QVERIFY(sample.form.isVisible());
    QTest::keyClick(sample.button, Qt::Key_Space);
    QCOMPARE(sample.clicks, 1);
}

void TestFormKeys::aButtonAddedLaterIsNoDefaultEither()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    QPushButton late(u"Late"_s, &sample.form);
    QSignalSpy clicked(&late, &QPushButton::clicked);
    sample.show();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        QTest::keyClick(sample.edit, key);
        QTest::keyClick(&sample.form, key);
    }
    QCOMPARE(clicked.count(), 0);
    QCOMPARE(sample.finished, 0);
}

void TestFormKeys::aListedKeyRunsItsFunction()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int helps = 0;
    int escapes = 0;
    keys.on(Qt::Key_F1, [&] { ++helps; });
    keys.on(Qt::Key_Escape, [&] { ++escapes; });
    sample.show();
    QTest::keyClick(sample.edit, Qt::Key_F1);
    QTest::keyClick(sample.text, Qt::Key_F1);
    QTest::keyClick(sample.button, Qt::Key_Escape);
    QCOMPARE(helps, 2);
    QCOMPARE(escapes, 1);
    QVERIFY(sample.form.isVisible());
}

void TestFormKeys::aListedKeyComesBeforeTheControl()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int deletes = 0;
    keys.on(Qt::Key_Delete, [&] { ++deletes; });
    sample.show();
    sample.edit->setCursorPosition(0);
    QTest::keyClick(sample.edit, Qt::Key_Delete);
    QCOMPARE(deletes, 1);
    QCOMPARE(sample.edit->text(), u"content"_s);
}

void TestFormKeys::aListedKeyComesBeforeMnemonics()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int adds = 0;
    keys.on(Qt::ALT | Qt::Key_A, [&] { ++adds; });
    sample.show();
    QTest::keyClick(sample.edit, Qt::Key_A, Qt::AltModifier);
    QCOMPARE(adds, 1);
    QCOMPARE(sample.clicks, 0);
}

void TestFormKeys::aMnemonicThatIsNotListedStillWorks()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    keys.on(Qt::ALT | Qt::Key_E, [] {});
    sample.show();
    QTest::keyClick(sample.edit, Qt::Key_A, Qt::AltModifier);
    QTRY_COMPARE(sample.clicks, 1);
}

void TestFormKeys::aConditionDecidesWhichLineIsTaken()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int tab = 0;
    QStringList ran;
    keys.on(
        Qt::ALT | Qt::Key_E, [&] { ran.append(u"edit"_s); }, [&] { return tab == 0; });
    keys.on(
        Qt::ALT | Qt::Key_E, [&] { ran.append(u"delete"_s); }, [&] { return tab == 1; });
    sample.show();
    for (tab = 0; tab < 3; ++tab) {
        QTest::keyClick(sample.edit, Qt::Key_E, Qt::AltModifier);
    }
    QCOMPARE(ran, (QStringList{u"edit"_s, u"delete"_s}));
}

void TestFormKeys::otherModifiersAreAnotherKey()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int ran = 0;
    keys.on(Qt::CTRL | Qt::Key_S, [&] { ++ran; });
    sample.show();
    QTest::keyClick(sample.edit, Qt::Key_S);
    QTest::keyClick(sample.edit, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(ran, 0);
    QTest::keyClick(sample.edit, Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(ran, 1);
    // Where a key stands, or the layout that it is typed with, makes no other key of it.
    QTest::keyClick(sample.edit, Qt::Key_S, Qt::ControlModifier | Qt::KeypadModifier);
    QCOMPARE(ran, 2);
    QTest::keyClick(sample.edit, Qt::Key_S, Qt::ControlModifier | Qt::GroupSwitchModifier);
    QCOMPARE(ran, 3);
}

void TestFormKeys::aKeyThatUnloadsTheFormIsSafe()
{
    Sample sample;
    auto *keys = new quillon::FormKeys(&sample.form);
    bool ran = false;
    keys->on(Qt::Key_F2, [&ran, keys] {
        delete keys;
        ran = true;
    });
    sample.show();
    QTest::keyClick(sample.edit, Qt::Key_F2);
    QVERIFY(ran);
}

void TestFormKeys::keysOfAnotherWindowAreNotTaken()
{
    Sample sample;
    Sample second;
    quillon::FormKeys keys(&sample.form);
    int ran = 0;
    keys.on(Qt::Key_F1, [&] { ++ran; });
    sample.show();
    second.show();
    QTest::keyClick(second.edit, Qt::Key_F1);
    QCOMPARE(ran, 0);
    QTest::keyClick(second.edit, Qt::Key_Escape);
    QCOMPARE(second.finished, 1);
}

void TestFormKeys::aBoxSelectsAllItsTextOnFocus()
{
    Sample sample;
    quillon::selectAllOnFocus(sample.other);
    quillon::selectAllOnFocus(sample.text);
    sample.show();
    QCOMPARE(sample.other->selectedText(), QString());
    sample.other->setFocus(Qt::TabFocusReason);
    QTRY_COMPARE(sample.other->selectedText(), u"other"_s);
    sample.text->setFocus(Qt::OtherFocusReason);
    QTRY_COMPARE(sample.text->textCursor().selectedText(), u"plain"_s);
    sample.other->deselect();
    QTest::mouseClick(sample.other, Qt::LeftButton);
    QTRY_COMPARE(sample.other->selectedText(), u"other"_s);
}

void TestFormKeys::aBoxThatGetsTheFocusBackKeepsItsSelection()
{
    Sample sample;
    auto *rich = new QTextEdit(u"rich"_s, &sample.form);
    quillon::selectAllOnFocus(sample.other);
    quillon::selectAllOnFocus(rich);
    sample.show();
    for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
        for (QWidget *box : {static_cast<QWidget *>(sample.other), static_cast<QWidget *>(rich)}) {
            sample.edit->setFocus();
            sample.other->setSelection(1, 2);
            QCoreApplication::processEvents();
            box->setFocus(reason);
            QCoreApplication::processEvents();
            QVERIFY(box->hasFocus());
            QCOMPARE(sample.other->selectedText(), u"th"_s);
            QVERIFY(!rich->textCursor().hasSelection());
        }
    }
    sample.edit->setFocus();
    rich->setFocus(Qt::BacktabFocusReason);
    QTRY_COMPARE(rich->textCursor().selectedText(), u"rich"_s);
}

void TestFormKeys::aKeyThatIsNotListedGoesToItsControl()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int ran = 0;
    keys.on(
        Qt::Key_Return, [&] { ++ran; }, [] { return false; });
    sample.show();
    sample.text->moveCursor(QTextCursor::End);
    QTest::keyClick(sample.text, Qt::Key_Return);
    QTest::keyClicks(sample.text, u"x"_s);
    QCOMPARE(sample.text->toPlainText(), u"plain\nx"_s);
    QCOMPARE(ran, 0);
}

void TestFormKeys::aDisabledFormTakesNoKeys()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int ran = 0;
    keys.on(Qt::Key_F1, [&] { ++ran; });
    sample.show();
    sample.form.setEnabled(false);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    QCoreApplication::sendEvent(&sample.form, &press);
    QCOMPARE(ran, 0);
    sample.form.setEnabled(true);
    QCoreApplication::sendEvent(&sample.form, &press);
    QCOMPARE(ran, 1);
}

void TestFormKeys::actionsRunOnThePressOnly()
{
    Sample sample;
    quillon::FormKeys keys(&sample.form);
    int ran = 0;
    keys.on(Qt::Key_F1, [&] { ++ran; });
    sample.show();
    QKeyEvent before(QEvent::ShortcutOverride, Qt::Key_F1, Qt::NoModifier);
    before.ignore();
    QVERIFY(keys.eventFilter(sample.edit, &before));
    QVERIFY2(before.isAccepted(), "a shortcut of that key must not be taken first");
    QCOMPARE(ran, 0);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_F1, Qt::NoModifier);
    QVERIFY(!keys.eventFilter(sample.edit, &release));
    QKeyEvent press(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    QVERIFY(keys.eventFilter(sample.edit, &press));
    QCOMPARE(ran, 1);
}

QTEST_MAIN(TestFormKeys)
#include "test_formkeys.moc"
