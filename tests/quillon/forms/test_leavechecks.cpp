#include "quillon/forms/formkeys.h"
#include "quillon/forms/leavechecks.h"

#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// Two boxes whose text must not be "bad", and what can be pressed beside them.
struct Bench {
    Bench()
    {
        auto *column = new QVBoxLayout(&form);
        for (QWidget *widget : {static_cast<QWidget *>(one), static_cast<QWidget *>(two), static_cast<QWidget *>(save),
                                static_cast<QWidget *>(tick)}) {
            column->addWidget(widget);
        }
        QObject::connect(save, &QPushButton::clicked, &form, [this] { done.append(u"saved"_s); });
        QObject::connect(tick, &QCheckBox::clicked, &form, [this] { done.append(u"ticked"_s); });
        keys = new quillon::FormKeys(&form);
        keys->on(Qt::Key_F1, [this] { done.append(u"helped"_s); });
        checks = new quillon::LeaveChecks(&form);
        for (QLineEdit *box : {one, two}) {
            checks->add(box, [this, box] {
                const bool bad = box->text() == u"bad"_s;
                if (bad) {
                    done.append(box == one ? u"one told"_s : u"two told"_s);
                }
                return !bad;
            });
        }
        form.show();
    }
    void enter(QLineEdit *box, const QString &text)
    {
        QVERIFY(QTest::qWaitForWindowActive(&form));
        box->setFocus();
        QCoreApplication::processEvents();
        box->setText(text);
        done.clear();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(form.focusWidget(), key, modifiers);
        QTest::qWait(0);
        QTRY_VERIFY(!save->isDown()); // a button pressed by its mnemonic shows it for a moment
        QCoreApplication::processEvents();
    }

    QDialog form;
    QLineEdit *one = new QLineEdit;
    QLineEdit *two = new QLineEdit;
    QPushButton *save = new QPushButton(u"Sa&ve"_s);
    QCheckBox *tick = new QCheckBox(u"&Tick"_s);
    quillon::FormKeys *keys = nullptr;
    quillon::LeaveChecks *checks = nullptr;
    QStringList done;
};

} // namespace

class TestLeaveChecks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMnemonicLeavesTheBox();
    void aGoodBoxLetsTheMnemonicThrough();
    void aTickByItsMnemonicLeavesTheBox();
    void aKeyOfTheFormLeavesTheBox();
    void aQuickClickComesAfterTheBox();
    void theMouseOnAnotherControlLeavesTheBox();
    void twoBoxesThatWereLeftAreBothChecked();
    void enterLeavesNoBox();
    void aBoxWithoutTheFocusIsNotChecked();
    void theBoxIsCheckedOnceForEachLeaving();
    void aHiddenPageComesBack();
    void theFormMayGoWhileTheFaultIsTold();
    void aFormWithoutChecksAllowsAll();
};

void TestLeaveChecks::aMnemonicLeavesTheBox()
{
    Bench b;
    b.enter(b.one, u"bad"_s);
    b.press(Qt::Key_V, Qt::AltModifier);
    QCOMPARE(b.done, QStringList{u"one told"_s});
    QVERIFY(b.one->hasFocus());
    b.press(Qt::Key_V, Qt::AltModifier); // and again, as long as it is wrong
    QCOMPARE(b.done, (QStringList{u"one told"_s, u"one told"_s}));
    b.one->setText(u"good"_s);
    b.press(Qt::Key_V, Qt::AltModifier);
    QCOMPARE(b.done.constLast(), u"saved"_s);
}

void TestLeaveChecks::aGoodBoxLetsTheMnemonicThrough()
{
    Bench b;
    b.enter(b.two, u"good"_s);
    b.press(Qt::Key_V, Qt::AltModifier);
    QCOMPARE(b.done, QStringList{u"saved"_s});
}

void TestLeaveChecks::aTickByItsMnemonicLeavesTheBox()
{
    Bench b;
    b.enter(b.two, u"bad"_s);
    b.press(Qt::Key_T, Qt::AltModifier);
    QCOMPARE(b.done, QStringList{u"two told"_s});
    QVERIFY(!b.tick->isChecked());
    QVERIFY(b.two->hasFocus());
}

void TestLeaveChecks::aKeyOfTheFormLeavesTheBox()
{
    Bench b;
    b.enter(b.one, u"bad"_s);
    b.press(Qt::Key_F1);
    QCOMPARE(b.done, QStringList{u"one told"_s});
    b.enter(b.one, u"good"_s);
    b.press(Qt::Key_F1);
    QCOMPARE(b.done, QStringList{u"helped"_s});
}

void TestLeaveChecks::aQuickClickComesAfterTheBox()
{
    Bench b;
    b.save->setFocusPolicy(Qt::StrongFocus);
    b.enter(b.one, u"bad"_s);
    b.save->setFocus(); // as the press does
    QTest::mouseClick(b.save, Qt::LeftButton);
    QCOMPARE(b.done, QStringList{u"one told"_s});
    QVERIFY(!b.save->isDown());
    QVERIFY(b.one->hasFocus());
    QCoreApplication::processEvents();
    QCOMPARE(b.done, QStringList{u"one told"_s});
}

void TestLeaveChecks::theMouseOnAnotherControlLeavesTheBox()
{
    Bench b;
    b.enter(b.one, u"bad"_s);
    b.two->setFocus(Qt::MouseFocusReason);
    QVERIFY(b.done.isEmpty()); // the focus has to arrive first
    QCoreApplication::processEvents();
    QCOMPARE(b.done, QStringList{u"one told"_s});
    QVERIFY(b.one->hasFocus());
    QCoreApplication::processEvents();
    QCOMPARE(b.done.size(), 1); // giving it back leaves nothing
}

void TestLeaveChecks::twoBoxesThatWereLeftAreBothChecked()
{
    Bench b;
    b.two->setText(u"bad"_s);
    b.enter(b.one, u"bad"_s);
    b.two->setFocus();
    b.tick->setFocus();
    QCoreApplication::processEvents();
    QCOMPARE(b.done, (QStringList{u"one told"_s, u"two told"_s}));
}

void TestLeaveChecks::enterLeavesNoBox()
{
    Bench b;
    b.enter(b.one, u"bad"_s);
    b.press(Qt::Key_Return);
    b.press(Qt::Key_Escape);
    QVERIFY(b.done.isEmpty());
    QVERIFY(b.form.isVisible());
}

void TestLeaveChecks::aBoxWithoutTheFocusIsNotChecked()
{
    Bench b;
    b.enter(b.one, u"good"_s);
    b.two->setText(u"bad"_s);
    b.press(Qt::Key_V, Qt::AltModifier);
    QCOMPARE(b.done, QStringList{u"saved"_s});
}

void TestLeaveChecks::theBoxIsCheckedOnceForEachLeaving()
{
    Bench b;
    b.enter(b.one, u"bad"_s);
    b.two->setFocus();
    b.press(Qt::Key_F1); // before the queued check had its turn
    QCoreApplication::processEvents();
    QCOMPARE(b.done, QStringList{u"one told"_s});
}

void TestLeaveChecks::aHiddenPageComesBack()
{
    QDialog form;
    auto *tabs = new QTabWidget(&form);
    auto *page = new QWidget;
    auto *box = new QLineEdit(page);
    tabs->addTab(page, u"1"_s);
    tabs->addTab(new QLineEdit, u"2"_s);
    auto *checks = new quillon::LeaveChecks(&form);
    checks->add(box, [] { return false; });
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    box->setFocus();
    tabs->setCurrentIndex(1);
    QTRY_COMPARE(tabs->currentIndex(), 0);
    QVERIFY(box->hasFocus());
}

void TestLeaveChecks::theFormMayGoWhileTheFaultIsTold()
{
    auto form = std::make_unique<QDialog>();
    auto *box = new QLineEdit(form.get());
    auto *checks = new quillon::LeaveChecks(form.get());
    checks->add(box, [&form] {
        form.reset();
        return false;
    });
    form->show();
    QVERIFY(QTest::qWaitForWindowActive(form.get()));
    box->setFocus();
    QVERIFY(!quillon::LeaveChecks::allow(form.get()));
    QVERIFY(!form);
}

void TestLeaveChecks::aFormWithoutChecksAllowsAll()
{
    const QDialog form;
    QVERIFY(quillon::LeaveChecks::allow(&form));
}

QTEST_MAIN(TestLeaveChecks)
#include "test_leavechecks.moc"
