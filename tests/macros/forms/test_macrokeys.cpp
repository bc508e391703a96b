#include "macrofixture.h"
#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"

#include <QAccessible>
#include <QHeaderView>
#include <QLabel>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

const QStringList formNames = {u"frmPubMacro"_s, u"frmPubMacroDetail"_s};

/// Letters after a single "&" in the captions of a form.
QStringList mnemonics(const QWidget *form)
{
    QStringList letters;
    const auto collect = [&](const QString &caption) {
        static const QRegularExpression mnemonic(u"(?<!&)&([^&])"_s);
        const auto match = mnemonic.match(QString(caption).replace(u"&&"_s, u"+"_s));
        if (match.hasMatch()) {
            letters.append(match.captured(1).toUpper());
        }
    };
    const QList<QPushButton *> buttons = form->findChildren<QPushButton *>();
    for (const QPushButton *button : buttons) {
        collect(button->text());
    }
    const QList<QLabel *> labels = form->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        collect(label->text());
    }
    return letters;
}

} // namespace

class TestMacroKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<MacroFixture>(); }
    void cleanup() { m.reset(); }

    void altAAdds();
    void altEEditsAUsersRowOnly();
    void deleteDeletesAUsersRowOnly();
    void f1AndTheButtonOpenTheHelp();
    void aHookThatIsNotSetIsAFaultByItsName();
    void enterAndEscapeDoNothing();
    void altAInTheDetailSavesAndAdds();
    void altCInTheDetailSavesAndCloses();
    void keysWorkFromWithinATextBox();
    void closeSavesNothing();
    void aTextBoxThatGetsTheFocusIsSelected();
    void aLongTextIsNotCut();
    void theTabKeyGoesThroughTheFieldsInOrder();
    void mnemonicsAreUniqueAndAgreeWithTheKeys();
    void everyControlHasANameForAssistiveTools();
    void everyTextOfTheLanguageFileHasItsControl();
    void withoutALanguageFileTheDialogsReadTheSame();
    void theDialogsCanBeResizedAndNothingIsCutOff();
    void onlyAMacroThatIsThereIsSelectedAfterAFault();
    void aDetailThatWasNotBegunSavesNothing();

private:
    QWidget *form(const QString &name) { return m->forms.form(name); }

    std::unique_ptr<MacroFixture> m;
};

void TestMacroKeys::altAAdds()
{
    m->show();
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1,
                       [this] { QCOMPARE(m->detail()->mode(), frmPubMacroDetail::Mode::Add); });
    QTest::keyClick(m->list(), Qt::Key_A, Qt::AltModifier);
}

void TestMacroKeys::altEEditsAUsersRowOnly()
{
    m->show();
    ExpectedPrompts prompts;
    QTest::keyClick(m->list(), Qt::Key_E, Qt::AltModifier);
    QVERIFY(prompts.log().isEmpty());
    m->list()->setCurrentItem(m->row(u"{My Website}"_s));
    prompts.expectForm(u"frmPubMacroDetail"_s, -1,
                       [this] { QCOMPARE(m->detail()->windowTitle(), u"Edit Macro - {My Website}"_s); });
    QTest::keyClick(m->list(), Qt::Key_E, Qt::AltModifier);
}

void TestMacroKeys::deleteDeletesAUsersRowOnly()
{
    m->show();
    ExpectedPrompts prompts;
    QTest::keyClick(m->list(), Qt::Key_Delete);
    QVERIFY(prompts.log().isEmpty());
    m->list()->setCurrentItem(m->row(u"{My Website}"_s));
    prompts.expectBox(u"DEL_MACRO_PROMPT"_s, 36, quillon::BoxAnswer::Yes);
    QTest::keyClick(m->list(), Qt::Key_Delete);
    QCOMPARE(m->lines().size(), 19);
}

void TestMacroKeys::f1AndTheButtonOpenTheHelp()
{
    int opened = 0;
    m->help = [&opened] { ++opened; };
    for (const QString &name : formNames) {
        form(name)->show();
        QVERIFY(QTest::qWaitForWindowActive(form(name)));
        opened = 0;
        QTest::keyClick(form(name), Qt::Key_F1);
        QCOMPARE(opened, 1);
        MacroFixture::get<QPushButton>(form(name), u"sbtHelp"_s)->click();
        QCOMPARE(opened, 2);
        m->forms.unload(name);
    }
}

void TestMacroKeys::aHookThatIsNotSetIsAFaultByItsName()
{
    for (const char *name : {"frmPubMacro::loadMacroMenu", "frmPubMacro::help", "frmPubMacroDetail::help"}) {
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: "_s + QString::fromLatin1(name)));
    }
    const int before = quillon::faultCount();
    frmPubMacro manager(m->tree.globals, m->forms, {});
    const frmPubMacroDetail detail({});
    QCOMPARE(quillon::faultCount() - before, 3);
    manager.close();
}

void TestMacroKeys::enterAndEscapeDoNothing()
{
    const ExpectedPrompts prompts;
    for (const QString &name : formNames) {
        form(name)->show();
        QVERIFY(QTest::qWaitForWindowActive(form(name)));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            QTest::keyClick(form(name)->focusWidget(), key);
        }
        QVERIFY(form(name)->isVisible());
    }
    QVERIFY(prompts.log().isEmpty());
}

void TestMacroKeys::altAInTheDetailSavesAndAdds()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->showDetail();
        m->enter(u"{a}"_s, u"1"_s);
        QTest::keyClick(m->detail(), Qt::Key_A, Qt::AltModifier);
        QVERIFY(m->detail()->isVisible());
        QCOMPARE(m->txtMacro()->text(), u"{}"_s);
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines().constLast(), u"{a}\t1\tMy Information\tU"_s);
}

void TestMacroKeys::altCInTheDetailSavesAndCloses()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->showDetail();
        m->enter(u"{a}"_s, u"1"_s);
        QTest::keyClick(m->detail(), Qt::Key_C, Qt::AltModifier);
        QVERIFY(!m->forms.isLoaded(u"frmPubMacroDetail"_s));
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines().constLast(), u"{a}\t1\tMy Information\tU"_s);
}

void TestMacroKeys::keysWorkFromWithinATextBox()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->showDetail();
        m->enter(u"{a}"_s, QString());
        m->txtString()->setFocus();
        QTest::keyClicks(m->txtString(), u"one"_s);
        QTest::keyClick(m->txtString(), Qt::Key_A, Qt::AltModifier);
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines().constLast(), u"{a}\tone\tMy Information\tU"_s);
}

void TestMacroKeys::closeSavesNothing()
{
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->enter(u"{a}"_s, u"1"_s);
        m->detailButton(u"sbtClose"_s)->click();
        QVERIFY(!m->forms.isLoaded(u"frmPubMacroDetail"_s));
    });
    m->button(u"sbtAdd"_s)->click();
    QCOMPARE(m->lines(), predefinedMacroLines());
}

void TestMacroKeys::aTextBoxThatGetsTheFocusIsSelected()
{
    m->showDetail();
    m->txtString()->setText(u"some text"_s);
    for (QLineEdit *edit : {m->txtString(), m->txtMacro()}) {
        edit->deselect();
        edit->setFocus();
        QCoreApplication::processEvents();
        QCOMPARE(edit->selectedText(), edit->text());
    }
}

void TestMacroKeys::aLongTextIsNotCut()
{
    const QString text = u"0123456789"_s.repeated(10'000);
    writeFile(m->file(), "{a}\t" + text.toUtf8() + "\tMy Information\tU\r\n{b}\t2\tMy Information\tU\r\n");
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [&] {
        QCOMPARE(m->txtString()->text().size(), text.size());
        m->detailButton(u"sbtSC"_s)->click();
    });
    m->button(u"sbtEdit"_s)->click();
    QCOMPARE(m->lines().constFirst(), u"{a}\t"_s + text + u"\tMy Information\tU"_s);
}

void TestMacroKeys::theTabKeyGoesThroughTheFieldsInOrder()
{
    m->showDetail();
    m->txtMacro()->setFocus();
    for (const QString &next : {u"txtString"_s, u"cbbCate"_s, u"sbtSA"_s, u"sbtSC"_s, u"sbtClose"_s}) {
        QTest::keyClick(m->detail()->focusWidget(), Qt::Key_Tab);
        QCOMPARE(m->detail()->focusWidget()->objectName(), next);
    }
}

void TestMacroKeys::mnemonicsAreUniqueAndAgreeWithTheKeys()
{
    for (const QString &name : formNames) {
        QStringList letters = mnemonics(form(name));
        QVERIFY(letters.size() >= 5);
        letters.sort();
        QCOMPARE(letters.removeDuplicates(), 0);
    }
    QVERIFY(m->button(u"sbtAdd"_s)->text().contains(u"&A"_s));
    QVERIFY(m->button(u"sbtEdit"_s)->text().contains(u"&E"_s));
    QVERIFY(m->detailButton(u"sbtSA"_s)->text().contains(u"&A"_s));
    QVERIFY(m->detailButton(u"sbtSC"_s)->text().contains(u"&C"_s));
}

void TestMacroKeys::everyControlHasANameForAssistiveTools()
{
    const auto nameOf = [](QWidget *control) {
        return QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
    };
    QCOMPARE(nameOf(m->list()), u"Macros"_s);
    QCOMPARE(nameOf(m->txtMacro()), u"Macro"_s);
    QCOMPARE(nameOf(m->txtString()), u"Text"_s);
    const auto labels = QAccessible::queryAccessibleInterface(m->cbbCate())->relations(QAccessible::Label);
    QCOMPARE(labels.size(), 1);
    QCOMPARE(labels.constFirst().first->text(QAccessible::Name), u"Category:"_s);
    for (const QString &name : formNames) {
        const QList<QPushButton *> buttons = form(name)->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            QVERIFY(!nameOf(button).isEmpty());
            QVERIFY(!button->toolTip().isEmpty());
        }
    }
}

void TestMacroKeys::everyTextOfTheLanguageFileHasItsControl()
{
    const QString folder = QStringLiteral(TEST_SOURCE_DIR) + u"/../../../language/en"_s;
    const quillon::SettingsFile tips(folder + u"/tips.dll"_s);
    setLanguageFolder(folder);
    for (const QString &name : formNames) {
        QCOMPARE(form(name)->windowTitle(), tips.value(name, name));
        const QStringList keys = tips.keys(name);
        QVERIFY(keys.size() > 10);
        for (const QString &key : keys) {
            const QString control = key.section(u'.', 0, 0);
            auto *widget = form(name)->findChild<QWidget *>(control);
            QVERIFY2(widget || control == name, qPrintable(key));
            if (widget && key.endsWith(u".tip"_s)) {
                QCOMPARE(widget->toolTip(), tips.value(name, key));
            }
        }
    }
}

void TestMacroKeys::withoutALanguageFileTheDialogsReadTheSame()
{
    const auto captions = [this] {
        QStringList texts;
        for (const QString &name : formNames) {
            texts.append(form(name)->windowTitle());
            const QList<QWidget *> widgets = form(name)->findChildren<QWidget *>();
            for (const QWidget *widget : widgets) {
                texts.append(widget->toolTip());
                if (const auto *button = qobject_cast<const QPushButton *>(widget)) {
                    texts.append(button->text());
                } else if (const auto *label = qobject_cast<const QLabel *>(widget)) {
                    texts.append(label->text());
                }
            }
            m->forms.unload(name);
        }
        return texts;
    };
    const QStringList designed = captions();
    setLanguageFolder(QStringLiteral(TEST_SOURCE_DIR) + u"/../../../language/en"_s);
    QCOMPARE(captions(), designed);
}

void TestMacroKeys::theDialogsCanBeResizedAndNothingIsCutOff()
{
    for (const QString &name : formNames) {
        QWidget *window = form(name);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        for (const QSize size : {window->minimumSizeHint(), window->sizeHint(), QSize(1400, 900)}) {
            window->resize(size);
            QCoreApplication::processEvents();
            QCOMPARE(window->size(), size);
            const QList<QPushButton *> buttons = window->findChildren<QPushButton *>();
            for (const QPushButton *button : buttons) {
                QVERIFY2(window->rect().contains(button->geometry()), qPrintable(button->objectName()));
                QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->objectName()));
            }
        }
    }
}

void TestMacroKeys::onlyAMacroThatIsThereIsSelectedAfterAFault()
{
    // The key is pressed in the field itself, which so does not get the focus anew.
    ExpectedPrompts prompts;
    prompts.expectForm(u"frmPubMacroDetail"_s, -1, [this] {
        m->showDetail();
        for (const auto &[macro, text, selected] :
             {std::tuple(u"{}"_s, u"x"_s, QString()), std::tuple(u"{a}"_s, QString(), QString()),
              std::tuple(u"abc"_s, u"x"_s, u"abc"_s), std::tuple(u"{Long Date}"_s, u"x"_s, u"{Long Date}"_s)}) {
            m->txtMacro()->setFocus();
            QCoreApplication::processEvents();
            m->enter(macro, text);
            m->txtMacro()->deselect();
            QTest::keyClick(m->txtMacro(), Qt::Key_C, Qt::AltModifier);
            QCoreApplication::processEvents();
            QCOMPARE(m->txtMacro()->selectedText(), selected);
        }
    });
    for (const QString &key : {u"NO_MACRO"_s, u"NO_MACRO"_s, u"ERR_MACRO_DELIMITER"_s, u"MACRO_EXISTS"_s}) {
        prompts.expectBox(key, 64);
    }
    m->button(u"sbtAdd"_s)->click();
}

void TestMacroKeys::aDetailThatWasNotBegunSavesNothing()
{
    const ExpectedPrompts prompts;
    m->showDetail();
    m->enter(u"{a}"_s, u"1"_s);
    m->detailButton(u"sbtSA"_s)->click();
    m->detailButton(u"sbtSC"_s)->click();
    QVERIFY(m->detail()->isVisible());
    QCOMPARE(m->lines(), predefinedMacroLines());
}

QTEST_MAIN(TestMacroKeys)
#include "test_macrokeys.moc"
