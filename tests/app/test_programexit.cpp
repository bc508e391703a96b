#include "programfixture.h"

#include <QTcpServer>
#include <QTcpSocket>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestProgramExit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exitEndsTheCompanionAndAllWindows();
    void exitButKeepLeavesTheCompanion();
    void exitInTheMenuOfTheTrayIsTheSame_data();
    void exitInTheMenuOfTheTrayIsTheSame();
    void exitClosesTheHelpWindowAndNoOther();
    void aChangedMessageIsAskedForBeforeTheExit_data();
    void aChangedMessageIsAskedForBeforeTheExit();
    void exitAsksNobodyAnyMore();
    void exitWhileADialogWaitsEndsIt();
    void theCloseBoxGoesToTheTrayAndComesBackWhereItStood();
    void theCloseBoxWithoutATrayMinimises();
    void theTrayIsGoneAfterTheExit();
    void theWindowLivesWhileTheCompanionEnds();
    void aRunEndsBeforeTheCompanionDoes();
    void theEndOfTheSessionWhileTheExitWaitsIsNoSecondOne();
    void theEndOfTheSessionWhileTheWindowLoadsIsTheEnd();
    void theEndOfTheSessionWhileTheExitAsksIsTheEnd();
    void theEndOfTheSessionUnloadsTheForms();
    void theEndOfTheSessionIsNotVetoed();
    void theEndOfTheSessionBeforeTheWindowIsTheEnd();
    void anotherObjectsQuitIsNotTheSessions();
};

void TestProgramExit::exitEndsTheCompanionAndAllWindows()
{
    ProgramFixture p;
    p.run();
    for (const QString &name : {optionsForm, senderForm, macrosForm}) {
        p.form(name)->show();
    }
    const qsizetype before = p.steps().size();
    p.atStep = [&p] {
        for (const QString &name : {optionsForm, senderForm, progressForm, splashForm}) {
            QVERIFY2(!p.isLoaded(name), qPrintable(name));
        }
    };
    p.item(u"menfx"_s)->trigger();
    QCOMPARE(p.steps().sliced(before), (QStringList{p.endOfCompanion(), u"quit"_s}));
    QVERIFY(!p.mainIsVisible());
    QCOMPARE(p.main()->Tag, QString()); // the window took its leave and cleared it
}

void TestProgramExit::exitButKeepLeavesTheCompanion()
{
    ProgramFixture p;
    p.run();
    p.form(optionsForm);
    const qsizetype before = p.steps().size();
    p.item(u"menfu"_s)->trigger();
    QCOMPARE(p.steps().sliced(before), QStringList{u"quit"_s});
    QVERIFY(!p.mainIsVisible());
    QVERIFY(!p.isLoaded(optionsForm));
    QVERIFY(!p.isLoaded(progressForm));
}

void TestProgramExit::exitInTheMenuOfTheTrayIsTheSame_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("endsCompanion");
    QTest::newRow("mentx") << u"mentx"_s << true;
    QTest::newRow("mentu") << u"mentu"_s << false;
}

void TestProgramExit::exitInTheMenuOfTheTrayIsTheSame()
{
    QFETCH(QString, entry);
    QFETCH(bool, endsCompanion);
    ProgramFixture p;
    p.run();
    p.main()->close();
    QCOMPARE(p.count(u"quit"_s), 0);
    ProgramFixture::trayItem(entry)->trigger();
    QCOMPARE(p.count(u"quit"_s), 1);
    QCOMPARE(p.count(u"end"_s), endsCompanion ? 2 : 1); // one is that of the start
    QVERIFY(!p.isLoaded(progressForm));
}

void TestProgramExit::exitClosesTheHelpWindowAndNoOther()
{
    ProgramFixture p;
    p.run();
    QWidget help;
    help.setWindowTitle(u"Corvane Help"_s);
    help.show();
    QWidget other;
    other.setWindowTitle(u"Corvane"_s);
    other.show();
    p.item(u"menfu"_s)->trigger();
    QVERIFY(!help.isVisible());
    QVERIFY(other.isVisible());
}

void TestProgramExit::aChangedMessageIsAskedForBeforeTheExit_data()
{
    QTest::addColumn<QString>("item");
    QTest::newRow("menfx") << u"menfx"_s;
    QTest::newRow("menfu") << u"menfu"_s;
}

void TestProgramExit::aChangedMessageIsAskedForBeforeTheExit()
{
    QFETCH(const QString, item);
    ProgramFixture p;
    p.run();
    p.main()->message().setText(Message::Field::Subject, u"May"_s);
    const qsizetype before = p.steps().size();
    p.prompts.expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, quillon::BoxAnswer::Cancel);
    p.item(item)->trigger();
    QCOMPARE(p.steps().size(), before); // all stays: the window, the companion
    QVERIFY(p.mainIsVisible());
    p.prompts.expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, quillon::BoxAnswer::Yes)
        .expectInput(u"INPUT_NAME"_s, u"May"_s, u"May"_s);
    p.item(item)->trigger();
    QCOMPARE(p.count(u"quit"_s), 1);
    QVERIFY(QFile::exists(p.tree.globals.paths.templates + u"/head_May.dll"_s));
}

void TestProgramExit::exitAsksNobodyAnyMore()
{
    ProgramFixture p;
    p.run();
    p.item(u"menfx"_s)->trigger();
    showMessage(u"SAVE_SUCC"_s, quillon::InformationBox); // would fail the test as one that nobody expects
    QCOMPARE(p.prompts.log(), QStringList());
}

void TestProgramExit::exitWhileADialogWaitsEndsIt()
{
    ProgramFixture p;
    p.onScreen = true;
    p.run();
    bool waited = false;
    QTimer::singleShot(0, p.main(), [&] {
        waited = p.isLoaded(optionsForm) && p.form(optionsForm)->isVisible();
        p.item(u"menfu"_s)->trigger();
    });
    p.item(u"mento"_s)->trigger(); // comes back when the dialog has ended
    QVERIFY(waited);
    QVERIFY(!p.isLoaded(optionsForm));
    QCOMPARE(p.count(u"quit"_s), 1);
}

void TestProgramExit::theCloseBoxGoesToTheTrayAndComesBackWhereItStood()
{
    ProgramFixture p;
    p.run();
    p.main()->setWindowState(Qt::WindowNoState);
    p.main()->move(40, 50);
    p.main()->resize(790, 590);
    QVERIFY(!p.main()->close());
    QVERIFY(!p.mainIsVisible());
    QCOMPARE(p.count(u"quit"_s), 0);
    QVERIFY(p.isLoaded(progressForm));
    ProgramFixture::trayItem(u"ments"_s)->trigger();
    QVERIFY(p.mainIsVisible());
    QVERIFY(!p.main()->isMinimized());
    QCOMPARE(p.main()->size(), QSize(790, 590));
    // Once more, from the state in which it came back.
    QVERIFY(!p.main()->close());
    QVERIFY(!p.mainIsVisible());
}

void TestProgramExit::theCloseBoxWithoutATrayMinimises()
{
    ProgramFixture p;
    p.tray = false;
    p.run();
    QVERIFY(!p.main()->close());
    QVERIFY(p.mainIsVisible());
    QVERIFY(p.main()->isMinimized());
    QCOMPARE(p.count(u"quit"_s), 0);
}

void TestProgramExit::theTrayIsGoneAfterTheExit()
{
    ProgramFixture p;
    p.run();
    p.main()->close();
    p.item(u"menfx"_s)->trigger();
    ProgramFixture::trayItem(u"ments"_s)->trigger();
    QVERIFY(!p.mainIsVisible());
}

void TestProgramExit::theWindowLivesWhileTheCompanionEnds()
{
    ProgramFixture p;
    p.run();
    p.processes.takesItsTime = true;
    const qsizetype before = p.steps().size();
    p.item(u"menfx"_s)->trigger();
    QCOMPARE(p.steps().sliced(before), QStringList{p.endOfCompanion()});
    QVERIFY(p.mainIsVisible());
    bool ticked = false;
    QTimer::singleShot(0, p.main(), [&] { ticked = true; });
    QTRY_VERIFY(ticked);
    // Whatever the user does now begins nothing.
    p.item(u"menfx"_s)->trigger();
    p.item(u"menfu"_s)->trigger();
    QVERIFY(!p.main()->isEnabled());
    QCOMPARE(p.steps().size(), before + 1);
    p.processes.endings.constLast().settle();
    QTRY_COMPARE(p.steps().sliced(before), (QStringList{p.endOfCompanion(), u"quit"_s}));
    QVERIFY(!p.mainIsVisible());
}

void TestProgramExit::aRunEndsBeforeTheCompanionDoes()
{
    ProgramFixture p;
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    p.addAccount("127.0.0.1\t" + QByteArray::number(silent.serverPort()) +
                 "\tN\tN\t\t\tAnn Lee\tann@example.com\t\t\t/SAEND");
    p.start();
    p.handOver();
    p.main()->message().setText(Message::Field::To, u"bob@example.com"_s);
    p.main()->message().setText(Message::Field::Subject, u"s"_s);
    p.main()->message().setText(Message::Field::PlainContent, u"c"_s);
    p.item(u"menfs"_s)->trigger();
    QTRY_VERIFY(silent.hasPendingConnections());
    std::unique_ptr<QTcpSocket> peer(silent.nextPendingConnection());
    p.processes.takesItsTime = true;
    p.prompts.expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, quillon::BoxAnswer::No);
    p.item(u"menfx"_s)->trigger();
    QTRY_COMPARE(peer->state(), QAbstractSocket::UnconnectedState);
    QVERIFY(!p.isLoaded(progressForm));
    QCOMPARE(p.count(u"quit"_s), 0);
    p.processes.endings.constLast().settle();
    QTRY_COMPARE(p.count(u"quit"_s), 1);
}

void TestProgramExit::theEndOfTheSessionWhileTheExitWaitsIsNoSecondOne()
{
    ProgramFixture p;
    p.run();
    p.processes.takesItsTime = true;
    p.item(u"menfx"_s)->trigger();
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    p.program->endBySystem();
    QCOMPARE(p.count(u"quit"_s), 0);
    p.processes.endings.constLast().settle();
    QTRY_COMPARE(p.count(u"quit"_s), 1);
    QCoreApplication::processEvents();
    QCOMPARE(p.count(u"quit"_s), 1);
}

void TestProgramExit::theEndOfTheSessionWhileTheWindowLoadsIsTheEnd()
{
    ProgramFixture p;
    p.prompts.expectBox(u"SMTP_NOT_OK"_s, quillon::YesNoBox, quillon::BoxAnswer::Yes, {},
                        [&] { p.program->endBySystem(); });
    p.start();
    QVERIFY(!p.program->isEnding());
    p.handOver();
    QVERIFY(p.program->isEnding());
    QCOMPARE(p.steps(), QStringList{u"quit"_s});
    QVERIFY(!p.mainIsVisible());
    QVERIFY(!p.isLoaded(progressForm));
    QVERIFY(!p.isLoaded(optionsForm));
}

void TestProgramExit::theEndOfTheSessionWhileTheExitAsksIsTheEnd()
{
    ProgramFixture p;
    p.run();
    p.main()->message().setText(Message::Field::Subject, u"unsaved"_s);
    p.prompts.expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, quillon::BoxAnswer::Cancel, {}, [&] {
        p.item(u"menfx"_s)->trigger(); // asks no second time
        p.program->endBySystem();
    });
    p.item(u"menfx"_s)->trigger();
    QCOMPARE(p.count(u"quit"_s), 1);
    QCOMPARE(p.count(u"end"_s), 1); // the companion goes on
    QVERIFY(!p.mainIsVisible());
}

void TestProgramExit::theEndOfTheSessionUnloadsTheForms()
{
    ProgramFixture p;
    p.run();
    p.form(optionsForm)->show();
    p.program->endBySystem();
    QVERIFY(!p.isLoaded(optionsForm));
    QVERIFY(!p.isLoaded(progressForm));
    QCOMPARE(p.count(u"quit"_s), 1);
    QCOMPARE(p.count(u"end"_s), 1); // that of the start
}

void TestProgramExit::theEndOfTheSessionIsNotVetoed()
{
    ProgramFixture p;
    p.run();
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    QCOMPARE(p.count(u"quit"_s), 1);
    QVERIFY(!p.mainIsVisible());
    QCOMPARE(p.count(u"end"_s), 1); // the companion goes on
    QCOMPARE(p.prompts.log(), QStringList());
}

void TestProgramExit::theEndOfTheSessionBeforeTheWindowIsTheEnd()
{
    ProgramFixture p;
    p.start();
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    QCOMPARE(p.steps(), QStringList{u"quit"_s});
    QVERIFY(!p.isLoaded(splashForm)); // so it hands nothing over any more
    QVERIFY(!p.main());
}

void TestProgramExit::anotherObjectsQuitIsNotTheSessions()
{
    ProgramFixture p;
    p.run();
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(p.main(), &quit);
    QCOMPARE(p.count(u"quit"_s), 0);
    QVERIFY(p.mainIsVisible());
}

QTEST_MAIN(TestProgramExit)
#include "test_programexit.moc"
