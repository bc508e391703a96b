#include "macrofixture.h"
#include "quillon/forms/qtprompts.h"
#include "support/fulldisk.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;

/// The two dialogs as the program shows them: modal, one above the other, on the screen.
class TestMacroSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m = std::make_unique<MacroFixture>();
        m_asker = std::make_unique<quillon::QtPrompts>(m->forms);
        quillon::setPrompts(m_asker.get());
    }
    void cleanup()
    {
        quillon::setPrompts(nullptr);
        m_asker.reset();
        m.reset();
    }

    void aMacroIsAddedThroughBothDialogs();
    void theDetailIsMadeAnewForEachUse();
    void theManagerMayGoWhileItsDetailIsOpen();
    void theDetailMayGoWhileItIsOpen();
    void aMacroThatCannotBeWrittenIsNoRow();

private:
    void manage() { quillon::prompts().showModalForm(u"frmPubMacro"_s, -1); }
    /// Runs @p doings once a modal form is on the screen and waits for its user.
    void whenShown(const std::function<void()> &doings) { QTimer::singleShot(0, m->manager(), doings); }

    std::unique_ptr<MacroFixture> m;
    std::unique_ptr<quillon::QtPrompts> m_asker;
};

void TestMacroSession::aMacroIsAddedThroughBothDialogs()
{
    bool wasShown = false;
    whenShown([&] {
        whenShown([&] {
            QCOMPARE(QApplication::activeModalWidget(), m->detail());
            m->enter(u"{a}"_s, u"1"_s);
            m->detailButton(u"sbtSC"_s)->click();
        });
        m->button(u"sbtAdd"_s)->click();
        wasShown = true;
        QVERIFY(m->manager()->isVisible());
        QVERIFY(!m->forms.isLoaded(u"frmPubMacroDetail"_s));
        QCOMPARE(m->column(0).constLast(), u"{a}"_s);
        m->button(u"sbtClose"_s)->click();
    });
    manage();
    QVERIFY(wasShown);
    QVERIFY(!m->forms.isLoaded(u"frmPubMacro"_s));
    QCOMPARE(m->menuLoads, 1);
    QVERIFY(macroMenuCaptions(m->tree.globals).contains(u"{a}"_s));
}

void TestMacroSession::theDetailIsMadeAnewForEachUse()
{
    QStringList captions;
    whenShown([&] {
        m->list()->setCurrentItem(m->row(u"{My Website}"_s));
        for (const char16_t *name : {u"sbtEdit", u"sbtAdd"}) {
            whenShown([&] {
                captions.append(m->detail()->windowTitle() + u'|' + m->txtMacro()->text());
                m->txtMacro()->setText(u"{left over}"_s);
                m->detailButton(u"sbtClose"_s)->click();
            });
            m->button(QString::fromUtf16(name))->click();
        }
        m->button(u"sbtClose"_s)->click();
    });
    manage();
    QCOMPARE(captions, (QStringList{u"Edit Macro - {My Website}|{My Website}"_s, u"Add Macro|{}"_s}));
    QCOMPARE(m->lines(), predefinedMacroLines());
}

void TestMacroSession::theManagerMayGoWhileItsDetailIsOpen()
{
    whenShown([&] {
        whenShown([&] {
            m->enter(u"{a}"_s, u"1"_s);
            m->forms.unload(u"frmPubMacro"_s);
            QCOMPARE(m->menuLoads, 1);
            m->detailButton(u"sbtSC"_s)->click();
        });
        m->button(u"sbtAdd"_s)->click();
    });
    manage();
    QCOMPARE(m->menuLoads, 1);
    QCOMPARE(m->lines().constLast(), u"{a}\t1\tMy Information\tU"_s); // what the user saved is kept
}

void TestMacroSession::theDetailMayGoWhileItIsOpen()
{
    bool cameBack = false;
    whenShown([&] {
        whenShown([&] { m->forms.unload(u"frmPubMacroDetail"_s); });
        m->button(u"sbtAdd"_s)->click();
        cameBack = true;
        m->button(u"sbtClose"_s)->click();
    });
    manage();
    QVERIFY(cameBack);
    QCOMPARE(m->lines(), predefinedMacroLines());
}

void TestMacroSession::aMacroThatCannotBeWrittenIsNoRow()
{
    ExpectedPrompts prompts;
    addMacro(m->tree.globals, {u"{mine}"_s, u"1"_s, u"Other Information"_s});
    m->show();
    const QStringList before = m->column(0);
    const QByteArray file = contentOf(m->file());
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [&] {
        m->enter(u"{a}"_s, u"1"_s);
        const SizeLimit limit(static_cast<rlim_t>(file.size()) / 2);
        m->detailButton(u"sbtSC"_s)->click();
        QVERIFY(m->forms.isLoaded(u"frmPubMacroDetail"_s));
        QCOMPARE(m->txtMacro()->text(), u"{a}"_s); // what was entered is still there
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->column(0), before);

    m->click(u"{mine}"_s);
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [&] {
        m->enter(u"{other}"_s, u"2"_s);
        const SizeLimit limit(static_cast<rlim_t>(file.size()) / 2);
        m->detailButton(u"sbtSA"_s)->click();
        QCOMPARE(m->txtMacro()->text(), u"{other}"_s);
    });
    m->button(u"sbtEdit"_s)->click();
    QCOMPARE(m->column(0), before);
    QCOMPARE(m->list()->currentItem()->text(0), u"{mine}"_s);

    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, quillon::YesNoBox, quillon::BoxAnswer::Yes);
    {
        const SizeLimit limit(static_cast<rlim_t>(file.size()) / 2);
        m->button(u"sbtDel"_s)->click();
    }
    QCOMPARE(m->column(0), before);
    QCOMPARE(contentOf(m->file()), file);
    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, quillon::YesNoBox, quillon::BoxAnswer::Yes);
    m->click(u"{mine}"_s);
    m->button(u"sbtDel"_s)->click();
    QCOMPARE(m->column(0), before.first(before.size() - 1));
}

QTEST_MAIN(TestMacroSession)
#include "test_macrosession.moc"
