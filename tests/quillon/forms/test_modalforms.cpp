#include "modaldriver.h"
#include "quillon/forms/tabbedform.h"

#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

class TabForm : public QDialog, public quillon::TabbedForm {
    Q_OBJECT

public:
    void showTab(int tab) override { shownTab = tab; }
    int shownTab = -1;
};

} // namespace

/// The modal showing of forms.
class TestModalForms : public QObject, private QtPromptsBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void aModalFormIsShownOnItsTabAndUnloadedAfter();
    void aModalFormBelongsAboveTheWindowInFront();
    void aModalFormOpenedTwiceIsShownOnce();
    void aModalFormThatIsUnloadedMeanwhileEndsTheWait();
    void aModalWindowThatIsNoDialogIsWaitedForToo();
    void aHiddenWindowThatIsNoDialogIsUnloaded();
    void aFormThatWasMadeAnewMeanwhileStays();
    void aFormThatIsNotThereIsNotWaitedFor();
};

void TestModalForms::aModalFormIsShownOnItsTabAndUnloadedAfter()
{
    m_forms->add(u"frmPubOptions"_s, [] { return new TabForm; });
    int tab = -1;
    bool modal = false;
    meet<TabForm>([&](TabForm *form) {
        tab = form->shownTab;
        modal = form->isModal();
        form->close();
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 1);
    QCOMPARE(tab, 1);
    QVERIFY(modal);
    QVERIFY(!m_forms->isLoaded(u"frmPubOptions"_s));

    meet<TabForm>([&tab](TabForm *form) {
        tab = form->shownTab;
        form->hide(); // as a dialog's own reject would
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, -1);
    QCOMPARE(tab, -1);
    QVERIFY(!m_forms->isLoaded(u"frmPubOptions"_s));

    meet<TabForm>([&tab](TabForm *form) {
        tab = form->shownTab;
        form->close();
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 0);
    QCOMPARE(tab, 0);
}

void TestModalForms::aModalFormBelongsAboveTheWindowInFront()
{
    QWidget main;
    main.show();
    main.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&main));
    m_forms->add(u"frmPubOptions"_s, [] { return new TabForm; });
    const QWindow *below = nullptr;
    meet<TabForm>([&](TabForm *form) {
        below = form->windowHandle()->transientParent();
        form->close();
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 0);
    QCOMPARE(below, main.windowHandle());
}

void TestModalForms::aModalFormOpenedTwiceIsShownOnce()
{
    int made = 0;
    m_forms->add(u"frmPubOptions"_s, [&made] {
        ++made;
        return new TabForm;
    });
    bool stillThere = false;
    meet<TabForm>([&](TabForm *form) {
        m_prompts->showModalForm(u"frmPubOptions"_s, 3); // would hang here if it waited for a second one
        stillThere = form->isVisible() && m_forms->isLoaded(u"frmPubOptions"_s);
        form->close();
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 1);
    QCOMPARE(made, 1);
    QVERIFY(stillThere);
}

void TestModalForms::aModalFormThatIsUnloadedMeanwhileEndsTheWait()
{
    m_forms->add(u"frmPubOptions"_s, [] { return new TabForm; });
    meet<TabForm>([&](TabForm *) { m_forms->unload(u"frmPubOptions"_s); });
    m_prompts->showModalForm(u"frmPubOptions"_s, 1);
    QVERIFY(!m_forms->isLoaded(u"frmPubOptions"_s));
}

void TestModalForms::aModalWindowThatIsNoDialogIsWaitedForToo()
{
    m_forms->add(u"frmPubAbout"_s, [] { return new QWidget; });
    bool modal = false;
    meet<QWidget>([&modal](QWidget *form) {
        modal = form->isModal();
        form->close();
    });
    m_prompts->showModalForm(u"frmPubAbout"_s, -1);
    QVERIFY(modal);
    QVERIFY(!m_forms->isLoaded(u"frmPubAbout"_s));
}

void TestModalForms::aHiddenWindowThatIsNoDialogIsUnloaded()
{
    m_forms->add(u"frmPubAbout"_s, [] { return new QWidget; });
    meet<QWidget>([](QWidget *form) { form->hide(); });
    m_prompts->showModalForm(u"frmPubAbout"_s, -1);
    QVERIFY(!m_forms->isLoaded(u"frmPubAbout"_s));
}

void TestModalForms::aFormThatWasMadeAnewMeanwhileStays()
{
    m_forms->add(u"frmPubOptions"_s, [] { return new TabForm; });
    const QWidget *made = nullptr;
    meet<TabForm>([&](TabForm *form) {
        form->close();
        made = m_forms->form(u"frmPubOptions"_s);
        QVERIFY(made != form);
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 0);
    QVERIFY(m_forms->isLoaded(u"frmPubOptions"_s));
    QCOMPARE(m_forms->form(u"frmPubOptions"_s), made);
}

void TestModalForms::aFormThatIsNotThereIsNotWaitedFor()
{
    m_prompts->showModalForm(u"frmPubNone"_s, 1);
    QVERIFY(!m_forms->isLoaded(u"frmPubNone"_s));
}

QTEST_MAIN(TestModalForms)
#include "test_modalforms.moc"
