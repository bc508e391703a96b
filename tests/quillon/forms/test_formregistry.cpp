#include "quillon/fault.h"
#include "quillon/forms/arraynames.h"
#include "quillon/forms/formregistry.h"

#include <QAction>
#include <QCloseEvent>
#include <QEventLoop>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

class Form : public QWidget {
    Q_OBJECT

public:
    Form() : edit(new QLineEdit(u"design"_s, this)) {}

    QLineEdit *edit;
    bool refuses = false;
    bool closed = false;

protected:
    void closeEvent(QCloseEvent *event) override
    {
        closed = true;
        event->setAccepted(!refuses);
    }
};

/// Turns an outermost event loop until it would wait.
void rest()
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
    QTimer::singleShot(1, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

class TestFormRegistry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFormIsLoadedOnFirstTouch();
    void anUnloadedFormIsMadeAnewWithItsDesignValues();
    void unloadingWhatIsNotLoadedIsNoError();
    void anUnknownFormIsAFault();
    void closingAFormUnloadsIt();
    void aFormThatRefusesToCloseStaysLoaded();
    void hidingAFormKeepsItLoaded();
    void aFormCanBeUnloadedInItsOwnEvent();
    void aFormUnloadedInItsOwnNestedLoopOutlivesTheHandler_data();
    void aFormUnloadedInItsOwnNestedLoopOutlivesTheHandler();
    void timersOfAnUnloadedFormStop();
    void aFormThatAsksForItselfWhileBeingMadeIsAFault();
    void aFormThatCouldNotBeMadeIsAFaultAndMayBeAskedForAgain();
    void anUnloadedFormGivesItsNameBack();
    void theRegistryTakesItsFormsWithIt();
    void arrayNamesAreGivenBack();
};

void TestFormRegistry::aFormIsLoadedOnFirstTouch()
{
    quillon::FormRegistry forms;
    int made = 0;
    forms.add(u"frmPubA"_s, [&made] {
        ++made;
        return new Form;
    });
    QVERIFY(!forms.isLoaded(u"frmPubA"_s));
    QCOMPARE(made, 0);
    QWidget *form = forms.form(u"frmPubA"_s);
    QVERIFY(form);
    QVERIFY(forms.isLoaded(u"frmPubA"_s));
    QVERIFY(!form->isVisible());
    QCOMPARE(form->objectName(), u"frmPubA"_s);
    QCOMPARE(forms.form(u"frmPubA"_s), form);
    QCOMPARE(forms.as<Form>(u"frmPubA"_s), form);
    QCOMPARE(made, 1);
}

void TestFormRegistry::anUnloadedFormIsMadeAnewWithItsDesignValues()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    forms.as<Form>(u"frmPubA"_s)->edit->setText(u"typed"_s);
    forms.unload(u"frmPubA"_s);
    QVERIFY(!forms.isLoaded(u"frmPubA"_s));
    QCOMPARE(forms.as<Form>(u"frmPubA"_s)->edit->text(), u"design"_s);
}

void TestFormRegistry::unloadingWhatIsNotLoadedIsNoError()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    const int faults = quillon::faultCount();
    forms.unload(u"frmPubA"_s);
    forms.unload(u"frmPubB"_s);
    QCOMPARE(quillon::faultCount(), faults);
}

void TestFormRegistry::anUnknownFormIsAFault()
{
    quillon::FormRegistry forms;
    const int faults = quillon::faultCount();
    QVERIFY(!forms.form(u"frmPubB"_s));
    QCOMPARE(quillon::faultCount(), faults + 1);
    QVERIFY(!forms.isLoaded(u"frmPubB"_s));
}

void TestFormRegistry::closingAFormUnloadsIt()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    const QPointer<QWidget> form = forms.form(u"frmPubA"_s);
    form->show();
    form->close();
    QVERIFY(!forms.isLoaded(u"frmPubA"_s));
    rest();
    QVERIFY(form.isNull());
}

void TestFormRegistry::aFormThatRefusesToCloseStaysLoaded()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    Form *form = forms.as<Form>(u"frmPubA"_s);
    form->refuses = true;
    form->show();
    forms.unload(u"frmPubA"_s);
    QVERIFY(form->closed);
    QVERIFY(forms.isLoaded(u"frmPubA"_s));
    QVERIFY(form->isVisible());

    form->refuses = false;
    forms.unload(u"frmPubA"_s);
    QVERIFY(!forms.isLoaded(u"frmPubA"_s));
}

void TestFormRegistry::hidingAFormKeepsItLoaded()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    QWidget *form = forms.form(u"frmPubA"_s);
    form->show();
    form->hide();
    QVERIFY(forms.isLoaded(u"frmPubA"_s));
    QCOMPARE(forms.form(u"frmPubA"_s), form);
}

void TestFormRegistry::aFormCanBeUnloadedInItsOwnEvent()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    const QPointer<Form> form = forms.as<Form>(u"frmPubA"_s);
    auto *button = new QPushButton(form);
    QString after = u"never asked"_s;
    connect(button, &QPushButton::clicked, form, [&] {
        forms.unload(u"frmPubA"_s);
        after = form->edit->text(); // the handler goes on in a form that is still there
    });
    form->show();
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(after, u"design"_s);
    QVERIFY(!forms.isLoaded(u"frmPubA"_s));
    rest();
    QVERIFY(form.isNull());
}

void TestFormRegistry::aFormUnloadedInItsOwnNestedLoopOutlivesTheHandler_data()
{
    QTest::addColumn<bool>("deletesItself");
    QTest::newRow("as it comes") << false;
    QTest::newRow("made to be deleted on close") << true; // which only the registry decides
}

void TestFormRegistry::aFormUnloadedInItsOwnNestedLoopOutlivesTheHandler()
{
    QFETCH(const bool, deletesItself);
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [deletesItself] {
        auto *form = new Form;
        form->setAttribute(Qt::WA_DeleteOnClose, deletesItself);
        return form;
    });
    const QPointer<Form> form = forms.as<Form>(u"frmPubA"_s);
    bool there = false;
    // The handler runs inside an event loop, as in the program, and waits in a loop of its own.
    QEventLoop outermost;
    QTimer::singleShot(0, form, [&] {
        QEventLoop nested;
        QTimer::singleShot(0, form, [&] { forms.unload(u"frmPubA"_s); });
        QTimer::singleShot(1, &nested, &QEventLoop::quit);
        nested.exec();
        QCoreApplication::processEvents();
        there = !form.isNull() && form->edit->text() == u"design";
        QTimer::singleShot(0, &outermost, &QEventLoop::quit);
    });
    outermost.exec();
    QVERIFY(there);
    rest();
    QVERIFY(form.isNull());
}

void TestFormRegistry::timersOfAnUnloadedFormStop()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    const QPointer<QWidget> form = forms.form(u"frmPubA"_s);
    QTimer timer(form);
    timer.start(100000);
    auto *deep = new QTimer(new QWidget(form));
    deep->start(100000);
    forms.unload(u"frmPubA"_s);
    QVERIFY(form);
    QVERIFY(!timer.isActive());
    QVERIFY(!deep->isActive());
    timer.setParent(nullptr);
}

void TestFormRegistry::aFormThatAsksForItselfWhileBeingMadeIsAFault()
{
    quillon::FormRegistry forms;
    QWidget other;
    QWidget *inside = &other;
    forms.add(u"frmPubA"_s, [&] {
        inside = forms.form(u"frmPubA"_s);
        return new Form;
    });
    const int faults = quillon::faultCount();
    QVERIFY(forms.form(u"frmPubA"_s));
    QVERIFY(!inside);
    QCOMPARE(quillon::faultCount(), faults + 1);
}

void TestFormRegistry::theRegistryTakesItsFormsWithIt()
{
    QPointer<QWidget> loaded;
    QPointer<QWidget> unloaded;
    {
        quillon::FormRegistry forms;
        forms.add(u"frmPubA"_s, [] { return new Form; });
        forms.add(u"frmPubB"_s, [] { return new Form; });
        loaded = forms.form(u"frmPubA"_s);
        unloaded = forms.form(u"frmPubB"_s);
        forms.unload(u"frmPubB"_s);
    }
    QVERIFY(loaded.isNull());
    QVERIFY(unloaded.isNull());
}

void TestFormRegistry::arrayNamesAreGivenBack()
{
    QWidget form;
    const auto child = [&form](const QString &name) {
        auto *edit = new QLineEdit(&form);
        edit->setObjectName(name);
        return edit;
    };
    QLineEdit *first = child(u"txt_0_"_s);
    QLineEdit *twelfth = child(u"txt_12_"_s);
    QLineEdit *plain = child(u"utbSubject"_s);
    QLineEdit *open = child(u"txt_3"_s);
    auto *action = new QAction(&form);
    action->setObjectName(u"menoesa_3_"_s);

    quillon::adoptArrayNames(&form);
    QCOMPARE(first->objectName(), u"txt(0)"_s);
    QCOMPARE(twelfth->objectName(), u"txt(12)"_s);
    QCOMPARE(plain->objectName(), u"utbSubject"_s);
    QCOMPARE(open->objectName(), u"txt_3"_s);
    QCOMPARE(action->objectName(), u"menoesa(3)"_s);
    const auto array = quillon::controlArray<QLineEdit, 2>(&form, u"txt"_s);
    QCOMPARE(array[0], first);
    QCOMPARE(array[1], nullptr);
}

void TestFormRegistry::aFormThatCouldNotBeMadeIsAFaultAndMayBeAskedForAgain()
{
    quillon::FormRegistry forms;
    QWidget *next = nullptr;
    forms.add(u"frmPubA"_s, [&next] { return next; });
    const int faults = quillon::faultCount();
    QCOMPARE(forms.form(u"frmPubA"_s), nullptr);
    QVERIFY(!forms.isLoaded(u"frmPubA"_s));
    QCOMPARE(quillon::faultCount(), faults + 1);
    next = new Form;
    QCOMPARE(forms.form(u"frmPubA"_s), next);
    QVERIFY(forms.isLoaded(u"frmPubA"_s));
    QCOMPARE(quillon::faultCount(), faults + 1);
}

void TestFormRegistry::anUnloadedFormGivesItsNameBack()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubA"_s, [] { return new Form; });
    const QPointer<QWidget> old = forms.form(u"frmPubA"_s);
    forms.unload(u"frmPubA"_s);
    QVERIFY(old);
    QCOMPARE(old->objectName(), QString());
    QVERIFY(old->property(quillon::unloadedProperty).toBool());
    QWidget *made = forms.form(u"frmPubA"_s);
    QVERIFY(made != old);
    QVERIFY(!made->property(quillon::unloadedProperty).toBool());
    old->close(); // of the one that went, the registry hears nothing any more
    QVERIFY(forms.isLoaded(u"frmPubA"_s));
}

QTEST_MAIN(TestFormRegistry)
#include "test_formregistry.moc"
