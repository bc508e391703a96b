#include "programfixture.h"
#include "sending/forms/frmpubprogress.h"
#include "support/fulldisk.h"
#include "support/scriptedserver.h"

#include <QLabel>
#include <QListView>
#include <QPlainTextEdit>
#include <QTabWidget>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestProgramForms : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void menuItemsAndButtonsShowTheirDialogs_data();
    void menuItemsAndButtonsShowTheirDialogs();
    void aDialogOnTheScreenIsModalAndOnItsTab();
    void theListsOfTheOptionsKnowTheirDialogs_data();
    void theListsOfTheOptionsKnowTheirDialogs();
    void helpButtonsOpenTheirPageOfTheSite_data();
    void helpButtonsOpenTheirPageOfTheSite();
    void refillingTheWindowMarksNoChange();
    void typingBesideTheOptionsMarksNoChangeButLaterDoes();
    void theMacroMenuFollowsTheMacroManager();
    void recipientsAreReadAnewAfterTheirDialog();
    void aMacroGoesIntoTheSignatureThatIsBeingEdited();
    void aClickOnTheStatusBarShowsTheProgressOfARun();
    void sendingWithoutAnAccountLeadsToTheAccounts();
    void aFileThatCannotBeWrittenIsToldInTheStatusBar();
    void cancelInTheProgressUnloadsItAndTheNextTouchMakesItAnew();
};

void TestProgramForms::menuItemsAndButtonsShowTheirDialogs_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("form");
    QTest::addColumn<int>("tab");
    QTest::newRow("menti") << u"menti"_s << promptsForm << noTab;
    QTest::newRow("mentm") << u"mentm"_s << macrosForm << noTab;
    QTest::newRow("mento") << u"mento"_s << optionsForm << noTab;
    QTest::newRow("sbtMain(0)") << u"sbtMain(0)"_s << optionsForm << int{AccountTab};
    QTest::newRow("sbtMain(1)") << u"sbtMain(1)"_s << optionsForm << int{SenderTab};
    QTest::newRow("sbtMain(2)") << u"sbtMain(2)"_s << optionsForm << int{SenderTab};
}

void TestProgramForms::menuItemsAndButtonsShowTheirDialogs()
{
    QFETCH(QString, control);
    QFETCH(QString, form);
    QFETCH(int, tab);
    ProgramFixture p;
    p.run();
    QString shown;
    p.prompts.expectForm(form, tab, [&] {
        shown = p.form(form)->objectName();
        p.forms().unload(form);
    });
    if (auto *item = p.main()->findChild<QAction *>(control)) {
        item->trigger();
    } else {
        p.get<QAbstractButton>(p.main(), control)->click();
    }
    QCOMPARE(shown, form);
    QVERIFY(!p.main()->message().pblnChanged);
}

void TestProgramForms::aDialogOnTheScreenIsModalAndOnItsTab()
{
    ProgramFixture p;
    p.onScreen = true;
    p.run();
    int tab = -1;
    bool modal = false;
    QTimer::singleShot(0, p.main(), [&] {
        QWidget *form = QApplication::activeModalWidget();
        modal = form && form->objectName() == optionsForm;
        tab = p.get<QTabWidget>(p.form(optionsForm), u"sst"_s)->currentIndex();
        p.form(optionsForm)->close();
    });
    p.get<QAbstractButton>(p.main(), u"sbtMain(1)"_s)->click();
    QVERIFY(modal);
    QCOMPARE(tab, int{SenderTab});
    QVERIFY(!p.isLoaded(optionsForm));
}

void TestProgramForms::theListsOfTheOptionsKnowTheirDialogs_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("form");
    QTest::newRow("proxies") << u"sbtProxy(0)"_s << proxyForm;
    QTest::newRow("senders") << u"sbtSender(0)"_s << senderForm;
    QTest::newRow("accounts") << u"sbtSMTP(1)"_s << accountForm;
}

void TestProgramForms::theListsOfTheOptionsKnowTheirDialogs()
{
    QFETCH(QString, button);
    QFETCH(QString, form);
    ProgramFixture p;
    p.run();
    QString shown;
    p.prompts.expectForm(form, noTab, [&] { shown = p.form(form)->objectName(); });
    p.button(optionsForm, button)->click();
    QCOMPARE(shown, form);
}

void TestProgramForms::helpButtonsOpenTheirPageOfTheSite_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("page");
    QTest::newRow("options") << optionsForm << u"sbt(3)"_s << u"options.htm"_s;
    QTest::newRow("account") << accountForm << u"sbtHelp"_s << u"smtp-editor.htm"_s;
    QTest::newRow("proxy") << proxyForm << u"sbtHelp"_s << u"proxy-editor.htm"_s;
    QTest::newRow("sender") << senderForm << u"sbt(3)"_s << u"sender-editor.htm"_s;
    QTest::newRow("macros") << macrosForm << u"sbtHelp"_s << u"macros-manager.htm"_s;
    QTest::newRow("macro") << macroDetailForm << u"sbtHelp"_s << u"macro-editor.htm"_s;
    QTest::newRow("prompts") << promptsForm << u"sbtHelp"_s << u"prompts-manager.htm"_s;
    QTest::newRow("progress") << progressForm << u"sbtHelp"_s << u"sending-progress.htm"_s;
}

void TestProgramForms::helpButtonsOpenTheirPageOfTheSite()
{
    QFETCH(QString, form);
    QFETCH(QString, button);
    QFETCH(QString, page);
    ProgramFixture p;
    writeFile(p.programFolder() + u"/site.dll"_s, "[Site]\r\nAddress=http://site.example/corvane\r\n");
    p.run();
    p.button(form, button)->click();
    QCOMPARE(p.opener.opened, QStringList{u"http://site.example/corvane/help/manual/"_s + page});
}

void TestProgramForms::refillingTheWindowMarksNoChange()
{
    ProgramFixture p;
    p.run();
    const auto *accounts = p.get<QComboBox>(p.main(), u"cbb(6)"_s);
    QCOMPARE(accounts->count(), 1);
    p.prompts.expectForm(optionsForm, noTab, [&] {
        writeFile(p.tree.globals.paths.smtpFile,
                  ProgramFixture::account +
                      QByteArray("\r\nmail.example.com\t465\tS\tN\t\t\t\tbob@example.com\t\t\t/SAEND\r\n"));
        writeFile(p.tree.globals.paths.sendersFile, "Cid\tcid@example.com\t\r\n");
        writeFile(p.tree.globals.paths.signsFile, "Formal\t\r\n");
        p.form(optionsForm)->show(); // its loading refills the window
        QCOMPARE(accounts->count(), 2);
        writeFile(p.tree.globals.paths.signsFile, "Formal\t\r\nShort\t\r\n");
        p.form(optionsForm)->close(); // and so does its end
    });
    p.item(u"mento"_s)->trigger();
    QCOMPARE(accounts->count(), 2);
    QCOMPARE(accounts->currentText(), u"ann@example.com"_s);
    QVERIFY(p.get<QComboBox>(p.main(), u"cbb(0)"_s)->findText(u"Cid <cid@example.com>"_s) >= 0);
    QVERIFY(p.main()->findChild<QAction *>(u"menissa(2)"_s));
    QVERIFY(!p.main()->message().pblnChanged);
}

void TestProgramForms::typingBesideTheOptionsMarksNoChangeButLaterDoes()
{
    ProgramFixture p;
    p.run();
    p.form(optionsForm);
    p.main()->message().setText(Message::Field::Subject, u"beside"_s);
    QVERIFY(!p.main()->message().pblnChanged);
    p.forms().unload(optionsForm);
    p.main()->message().setText(Message::Field::Subject, u"later"_s);
    QVERIFY(p.main()->message().pblnChanged);
}

void TestProgramForms::theMacroMenuFollowsTheMacroManager()
{
    ProgramFixture p;
    p.run();
    const auto captions = [&p] {
        QStringList texts;
        const QList<QAction *> items = p.get<QMenu>(p.main(), u"menim"_s)->actions();
        for (const QAction *item : items) {
            texts.append(item->text());
        }
        return texts;
    };
    QVERIFY(!captions().contains(u"{Mine}"_s));
    p.prompts.expectForm(macrosForm, noTab, [&p] {
        p.form(macrosForm)->show();
        p.tree.globals.lines.AppendLine(p.tree.globals.paths.macrosFile, u"{Mine}\tme\t\tMy Information"_s);
        p.form(macrosForm)->close();
    });
    p.item(u"mentm"_s)->trigger();
    QVERIFY2(captions().contains(u"{Mine}"_s), qPrintable(captions().join(u' ')));
}

void TestProgramForms::recipientsAreReadAnewAfterTheirDialog()
{
    ProgramFixture p;
    writeFile(p.tree.globals.paths.promptsFile, "Ann <ann@example.com>\r\n");
    p.run();
    const auto rows = [&p] {
        QStringList texts;
        const QAbstractItemModel *model = p.get<QListView>(p.form(promptsForm), u"lstRecips"_s)->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            texts.append(model->index(row, 0).data().toString());
        }
        p.forms().unload(promptsForm);
        return texts;
    };
    QStringList first;
    p.prompts.expectForm(promptsForm, noTab, [&] {
        first = rows();
        writeFile(p.tree.globals.paths.promptsFile, "Ann <ann@example.com>\r\nBob <bob@example.com>\r\n");
    });
    p.item(u"menti"_s)->trigger();
    QCOMPARE(first, QStringList{u"Ann <ann@example.com>"_s});
    QCOMPARE(rows(), (QStringList{u"Ann <ann@example.com>"_s, u"Bob <bob@example.com>"_s}));
}

void TestProgramForms::aMacroGoesIntoTheSignatureThatIsBeingEdited()
{
    ProgramFixture p;
    writeFile(p.tree.globals.paths.signsFile, "Formal\t\r\n");
    writeFile(p.tree.globals.paths.signs + u"/sign_Formal.dll"_s, "Ann");
    p.run();
    auto *body = p.get<QPlainTextEdit>(p.main(), u"utbContent"_s);
    body->clear();
    QAction *macro = p.item(u"menimsa(1)"_s);
    macro->trigger();
    const QString text = body->toPlainText();
    QVERIFY(text.startsWith(u'{'));

    auto *signature = p.get<QPlainTextEdit>(p.form(optionsForm), u"utbSign"_s);
    macro->trigger(); // loaded, but not shown: nobody edits it
    QCOMPARE(signature->toPlainText(), u"Ann"_s);
    QCOMPARE(body->toPlainText(), text + text);
    p.form(optionsForm)->show();
    p.get<QTabWidget>(p.form(optionsForm), u"sst"_s)->setCurrentIndex(SignaturesTab);
    macro->trigger();
    QCOMPARE(signature->toPlainText(), text + u"Ann"_s);
    QCOMPARE(body->toPlainText(), text + text);
}

void TestProgramForms::aClickOnTheStatusBarShowsTheProgressOfARun()
{
    testsupport::ScriptedServer server;
    server.answer("MAIL", {}); // a mail that stays under way
    ProgramFixture p;
    p.addAccount("127.0.0.1\t" + QByteArray::number(server.port()) + "\tN\tN\t\t\tAnn\tann@example.com\t\t\t/SAEND");
    p.start();
    p.handOver();
    auto *panel = p.get<QLabel>(p.main(), u"stb(1)"_s);
    QTest::mouseClick(panel, Qt::LeftButton);
    QVERIFY(!p.form(progressForm)->isVisible());

    p.main()->message().setText(Message::Field::To, u"bob@example.com"_s);
    p.item(u"menfs"_s)->trigger();
    QTRY_VERIFY(server.heard("MAIL"));
    QVERIFY(p.form(progressForm)->isVisible());
    p.forms().unload(progressForm); // out of the user's way
    QTest::mouseClick(panel, Qt::LeftButton);
    QVERIFY(p.form(progressForm)->isVisible());

    // Cancel lets the mail under way be; the exit does not wait for it, and tells nobody of it.
    p.button(progressForm, u"sbtCancel"_s)->click();
    QVERIFY(!p.isLoaded(progressForm));
    p.main()->message().pblnChanged = false;
    p.item(u"menfu"_s)->trigger();
    QCOMPARE(p.count(u"quit"_s), 1);
    QCoreApplication::processEvents();
    QCOMPARE(p.prompts.log(), QStringList());
    QVERIFY(!p.mainIsVisible());
}

void TestProgramForms::sendingWithoutAnAccountLeadsToTheAccounts()
{
    ProgramFixture p;
    p.prompts.expectBox(u"SMTP_NOT_OK"_s, quillon::YesNoBox, quillon::BoxAnswer::No);
    p.start();
    p.handOver();
    p.prompts.expectBox(u"NEED_SMTP_S"_s, quillon::PlainBox);
    p.prompts.expectForm(optionsForm, AccountTab);
    p.item(u"menfs"_s)->trigger();
    QTRY_COMPARE(p.prompts.leftOver(), QStringList());
}

void TestProgramForms::cancelInTheProgressUnloadsItAndTheNextTouchMakesItAnew()
{
    ProgramFixture p;
    p.run();
    p.forms().as<frmPubProgress>(progressForm)->setCounter(u"Sending 1/2 emails..."_s);
    p.button(progressForm, u"sbtCancel"_s)->click();
    QVERIFY(!p.isLoaded(progressForm));
    QCOMPARE(p.forms().as<frmPubProgress>(progressForm)->counter(), u"Sending emails..."_s);
}

void TestProgramForms::aFileThatCannotBeWrittenIsToldInTheStatusBar()
{
    ProgramFixture p;
    p.run();
    const auto *label = p.get<QLabel>(p.main(), u"lblUnsaved"_s);
    QVERIFY(!label->isVisible());
    {
        const SizeLimit limit(4);
        p.tree.globals.lines.AppendLine(p.tree.globals.paths.sendersFile, u"Ann\tann@x.example\t"_s);
    }
    QVERIFY(label->isVisible());
    QCOMPARE(label->text(), u"Not saved: senders.dll (no space left on the device)"_s);
    QVERIFY(label->toolTip().contains(p.tree.globals.paths.sendersFile));
    p.tree.globals.lines.AppendLine(p.tree.globals.paths.sendersFile, u"Ann\tann@x.example\t"_s);
    QVERIFY(!label->isVisible());
}

QTEST_MAIN(TestProgramForms)
#include "test_programforms.moc"
