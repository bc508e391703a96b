#include "mainfixture.h"

#include <QMenuBar>
#include <QStatusBar>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestStatusHints : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mouseOverAControlShowsItsTip();
    void mouseOverTheWindowShowsReady();
    void menuItemsShowTheirHelpLine();
    void aSubMenuShowsNoHelpLine();
    void whileASendRunsNothingChangesTheSendingText();
    void aClickOnTheStatusBarShowsTheProgress();
};

void TestStatusHints::mouseOverAControlShowsItsTip()
{
    MainFixture main;
    auto *subject = main.get<QLineEdit>(u"utbSubject"_s);
    QTest::mouseMove(subject, QPoint(3, 3));
    QCOMPARE(main.panel(), subject->toolTip() + u' ');
    QPlainTextEdit *to = main.recipients(0);
    QTest::mouseMove(to->viewport(), QPoint(3, 3));
    QCOMPARE(main.panel(), to->toolTip() + u' ');
    // The way back to the same control after something else wrote to the panel.
    main.view().setStatusText(u" Something"_s);
    QTest::mouseMove(to->viewport(), QPoint(5, 4));
    QCOMPARE(main.panel(), to->toolTip() + u' ');
}

void TestStatusHints::mouseOverTheWindowShowsReady()
{
    MainFixture main;
    QTest::mouseMove(main.get<QLineEdit>(u"utbSubject"_s), QPoint(3, 3));
    QVERIFY(main.panel() != u" Ready."_s);
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(main.window->centralWidget(), &enter);
    QCOMPARE(main.panel(), u" Ready."_s);
    QCoreApplication::sendEvent(main.get(u"dhe"_s), &enter);
    QCOMPARE(main.panel(), u" Email content."_s);
}

void TestStatusHints::menuItemsShowTheirHelpLine()
{
    MainFixture main;
    int shown = 0;
    for (QMenu *menu : main.window->menuBar()->findChildren<QMenu *>()) {
        for (QAction *action : menu->actions()) {
            const bool array = action->objectName().startsWith(u"menoesa("_s);
            if (action->isSeparator() || action->menu<QMenu *>() || array) {
                continue;
            }
            main.view().setStatusText(u" Ready."_s);
            action->hover();
            QVERIFY2(main.panel().startsWith(u' ') && main.panel().size() > 5 && main.panel() != u" Ready."_s,
                     qPrintable(action->text() + u" shows"_s + main.panel()));
            ++shown;
        }
    }
    QVERIFY(shown > 60);
    main.item(u"menfs"_s)->hover();
    QCOMPARE(main.panel(), u" Sends this message now."_s);
}

void TestStatusHints::aSubMenuShowsNoHelpLine()
{
    MainFixture main;
    main.view().setStatusText(u" Before"_s);
    main.get<QMenu>(u"menoes"_s)->menuAction()->hover();
    QCOMPARE(main.panel(), u" Before"_s);
}

void TestStatusHints::whileASendRunsNothingChangesTheSendingText()
{
    MainFixture main;
    const QString sending = u" Sending email, please click here to display the progress..."_s;
    main.sending = true;
    main.view().setStatusText(sending);
    QTest::mouseMove(main.get<QLineEdit>(u"utbSubject"_s), QPoint(3, 3));
    QCOMPARE(main.panel(), sending);
    main.item(u"menfs"_s)->hover();
    QCOMPARE(main.panel(), sending);
    main.view().setStatusText(u" Ready."_s);
    main.sending = false;
    QTest::mouseMove(main.get<QLineEdit>(u"utbSubject"_s), QPoint(5, 3));
    QVERIFY(main.panel() != u" Ready."_s);
}

void TestStatusHints::aClickOnTheStatusBarShowsTheProgress()
{
    int clicks = 0;
    MainFixture main([&clicks](MainFixture &m) {
        m.hooks.showProgress = [&clicks] {
            ++clicks;
            return true;
        };
    });
    QTest::mouseClick(main.get<QLabel>(u"stb(1)"_s), Qt::LeftButton);
    QTest::mouseClick(main.get<QLabel>(u"stb(2)"_s), Qt::LeftButton);
    QTest::mouseClick(main.window->statusBar(), Qt::LeftButton);
    QCOMPARE(clicks, 3);
}

QTEST_MAIN(TestStatusHints)
#include "test_statushints.moc"
