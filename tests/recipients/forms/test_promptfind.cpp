#include "promptdialogbench.h"
#include "quillon/files/settingsfile.h"

#include <QAccessible>
#include <QLabel>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

/// Finding entries, and the keys and looks of the dialog.
class TestPromptFind : public QObject, private PromptDialogBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void findSelectsEveryRowThatHoldsTheText();
    void findDeselectsWhatWasSelected();
    void findGoesToTheFirstHitSoThatEditTakesIt();
    void anEmptyFindKeepsTheSelection();
    void findDoesNotSelectThePlaceholder();
    void aHundredThousandHitsInTurnStaySelectable();

    void altAAdds();
    void altEEdits();
    void deleteKeyDeletes();
    void f3Finds();
    void f1AndTheButtonOpenTheHelp();
    void aHelpThatIsNotSetIsAFault();
    void enterAndEscapeDoNothing();
    void closeUnloads();
    void mnemonicsAreUnique();
    void everyTextOfTheLanguageFileHasItsControl();
    void nothingIsCutOffAtAnySize();
};

void TestPromptFind::findSelectsEveryRowThatHoldsTheText()
{
    prompts({u"Ann Lee <x@y.org>"_s, u"bob@leeds.org"_s, u"Zoe <z@y.org>"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u" LEE "_s).expectInput(u"FIND_RECI"_s, QString(), u"Y.Org"_s);
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), (QStringList{u"Ann Lee <x@y.org>"_s, u"bob@leeds.org"_s}));
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), (QStringList{u"Ann Lee <x@y.org>"_s, u"Zoe <z@y.org>"_s}));
}

void TestPromptFind::findDeselectsWhatWasSelected()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s});
    selectRows({0, 1});
    list()->selectionModel()->setCurrentIndex(list()->model()->index(1, 0), QItemSelectionModel::NoUpdate);
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"nobody"_s);
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), QStringList());
    QCOMPARE(list()->currentIndex().row(), 1);
}

void TestPromptFind::findGoesToTheFirstHitSoThatEditTakesIt()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s, u"bb@x.org"_s});
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"b"_s).expectInput(u"INPUT_RECIP"_s, u"b@x.org"_s, QString());
    button(u"sbtFind"_s)->click();
    button(u"sbtEdit"_s)->click();
    QCOMPARE(selected(), (QStringList{u"b@x.org"_s, u"bb@x.org"_s}));
}

void TestPromptFind::anEmptyFindKeepsTheSelection()
{
    prompts({u"a@x.org"_s, u"b@x.org"_s});
    selectRows({1});
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"  "_s);
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), QStringList{u"b@x.org"_s});
}

void TestPromptFind::findDoesNotSelectThePlaceholder()
{
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), LookupText(u"NO_PROMPT"_s));
    button(u"sbtFind"_s)->click();
    QCOMPARE(selected(), QStringList());
}

void TestPromptFind::aHundredThousandHitsInTurnStaySelectable()
{
    QStringList entries;
    for (int i = 0; i < 100'000; ++i) {
        entries.append((i % 2 == 0 ? u"even"_s : u"odd"_s) + QString::number(i) + u"@x.org"_s);
    }
    prompts(entries);
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), u"even"_s)
        .expectInput(u"FIND_RECI"_s, QString(), u"odd"_s)
        .expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    button(u"sbtFind"_s)->click();
    QCOMPARE(list()->selectionModel()->selection().size(), 50'000);
    QCoreApplication::processEvents();
    button(u"sbtFind"_s)->click();
    QVERIFY(!list()->selectionModel()->isRowSelected(0));
    QVERIFY(list()->selectionModel()->isRowSelected(99'999));
    QCoreApplication::processEvents();
    button(u"sbtDel"_s)->click();
    QCOMPARE(lines().size(), 50'000);
    QCOMPARE(rows(), lines());
}

void TestPromptFind::altAAdds()
{
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, QString(), QString());
    QTest::keyClick(list(), Qt::Key_A, Qt::AltModifier);
}

void TestPromptFind::altEEdits()
{
    prompts({u"a@x.org"_s});
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"INPUT_RECIP"_s, u"a@x.org"_s, QString());
    QTest::keyClick(list(), Qt::Key_E, Qt::AltModifier);
}

void TestPromptFind::deleteKeyDeletes()
{
    prompts({u"a@x.org"_s});
    show();
    selectRows({0});
    ExpectedPrompts asked;
    asked.expectBox(u"DEL_RECI_PROMPT"_s, 36, BoxAnswer::Yes);
    QTest::keyClick(list(), Qt::Key_Delete);
    QCOMPARE(lines(), QStringList());
}

void TestPromptFind::f3Finds()
{
    show();
    ExpectedPrompts asked;
    asked.expectInput(u"FIND_RECI"_s, QString(), QString());
    QTest::keyClick(list(), Qt::Key_F3);
}

void TestPromptFind::f1AndTheButtonOpenTheHelp()
{
    int opened = 0;
    m_help = [&opened] { ++opened; };
    show();
    QTest::keyClick(list(), Qt::Key_F1);
    button(u"sbtHelp"_s)->click();
    QCOMPARE(opened, 2);
}

void TestPromptFind::aHelpThatIsNotSetIsAFault()
{
    QTest::ignoreMessage(QtWarningMsg, "hook not set: frmPubPrompt::help");
    const int before = quillon::faultCount();
    const frmPubPrompt dialog(m_tree->globals, {}, {});
    QCOMPARE(quillon::faultCount() - before, 1);
}

void TestPromptFind::enterAndEscapeDoNothing()
{
    show();
    const ExpectedPrompts asked;
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        QTest::keyClick(list(), key);
    }
    QVERIFY(form()->isVisible());
    QVERIFY(asked.log().isEmpty());
}

void TestPromptFind::closeUnloads()
{
    show();
    button(u"sbtClose"_s)->click();
    QVERIFY(!m_forms->isLoaded(u"frmPubPrompt"_s));
}

void TestPromptFind::mnemonicsAreUnique()
{
    QSet<QChar> letters;
    const auto take = [&](const QString &caption) {
        const qsizetype at = caption.indexOf(u'&');
        QVERIFY2(at >= 0, qPrintable(caption));
        const QChar letter = caption.at(at + 1).toUpper();
        QVERIFY2(!letters.contains(letter), qPrintable(caption));
        letters.insert(letter);
    };
    for (const char16_t *name : {u"sbtAdd", u"sbtEdit", u"sbtDel", u"sbtFind", u"sbtClose", u"sbtHelp"}) {
        take(button(QString::fromUtf16(name))->text());
    }
    take(form()->findChild<QLabel *>(u"lblRecips"_s)->text());
    QVERIFY(button(u"sbtAdd"_s)->text().contains(u"&A"_s));
    QVERIFY(button(u"sbtEdit"_s)->text().contains(u"&E"_s));
    QCOMPARE(QAccessible::queryAccessibleInterface(list())->text(QAccessible::Name), u"Input prompts"_s);
}

void TestPromptFind::everyTextOfTheLanguageFileHasItsControl()
{
    const quillon::SettingsFile tips(languageFolder() + u"/tips.dll"_s);
    const QStringList keys = tips.keys(u"frmPubPrompt"_s);
    QVERIFY(keys.size() > 10);
    for (const QString &key : keys) {
        const QString name = key.section(u'.', 0, 0);
        const auto *widget = form()->findChild<QWidget *>(name);
        QVERIFY2(widget || name == u"frmPubPrompt", qPrintable(key));
        if (widget && key.endsWith(u".tip"_s)) {
            QCOMPARE(widget->toolTip(), tips.value(u"frmPubPrompt"_s, key));
        }
    }
}

void TestPromptFind::nothingIsCutOffAtAnySize()
{
    show();
    for (const QSize size : {form()->minimumSizeHint(), form()->sizeHint(), QSize(1400, 900)}) {
        form()->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(form()->size(), size);
        const QList<QPushButton *> buttons = form()->findChildren<QPushButton *>();
        for (const QPushButton *each : buttons) {
            QVERIFY2(form()->rect().contains(each->geometry()), qPrintable(each->objectName()));
            QVERIFY2(each->width() >= each->sizeHint().width(), qPrintable(each->objectName()));
        }
    }
}

QTEST_MAIN(TestPromptFind)
#include "test_promptfind.moc"
