#include "composer/statushints.h"
#include "mainfixture.h"

#include <QMenuBar>
#include <QStatusBar>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

/// The hints over a window of their own.
struct HintWindow {
    HintWindow()
    {
        form.setCentralWidget(content);
        field->setToolTip(u"The field."_s);
        editor->setObjectName(u"dhe"_s);
        editor->setToolTip(u"Never shown."_s);
        form.statusBar()->addPermanentWidget(panel1, 1);
        form.statusBar()->addPermanentWidget(panel2);
        QMenu *menu = form.menuBar()->addMenu(u"File"_s);
        item = menu->addAction(u"Item"_s);
        sub = menu->addMenu(u"Sub"_s);
        deep = sub->addAction(u"Deep"_s);
        hints = new StatusHints(&form, {form.statusBar(), panel1, panel2},
                                {[this] { return sending; }, [this](int panel) { clicks.append(panel); }});
        field->setGeometry(20, 20, 100, 30);
        part->setGeometry(0, 0, 50, 20);
        editor->setGeometry(200, 20, 100, 60);
        inEditor->setGeometry(0, 0, 50, 20);
        form.resize(400, 300);
        form.show();
    }

    QMainWindow form;
    QWidget *content = new QWidget;
    QWidget *field = new QWidget(content);
    QWidget *part = new QWidget(field);
    QWidget *editor = new QWidget(content);
    QWidget *inEditor = new QWidget(editor);
    QLabel *panel1 = new QLabel;
    QLabel *panel2 = new QLabel;
    QAction *item = nullptr;
    QMenu *sub = nullptr;
    QAction *deep = nullptr;
    StatusHints *hints = nullptr;
    bool sending = false;
    QList<int> clicks;
};

/// Moves the mouse over a widget.
void move(QWidget *widget)
{
    QMouseEvent event(QEvent::MouseMove, QPointF(1, 1), QPointF(1, 1), Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace

class TestStatusHints : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mouseOverAControlShowsItsTip();
    void mouseOverTheWindowShowsReady();
    void menuItemsShowTheirHelpLine();
    void aSubMenuShowsNoHelpLine();
    void whileASendRunsNothingChangesTheSendingText();
    void aClickOnTheStatusBarShowsTheProgress();
    void eachPlaceOfTheBarTellsItsNumberAndKeepsThePress();
    void aClickThatShowsNoProgressLeavesTheLineAlone();
    void whatTheMouseIsOverDecidesTheHint();
    void noHintIsShownWhileAnotherTextStands();
    void aMenuHintIsLookedUpByItsPlainCaption();
    void aMenusHintGoesWithTheMenu();
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
    move(main.get(u"central"_s));
    QCOMPARE(main.panel(), u" Ready."_s);
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

void TestStatusHints::eachPlaceOfTheBarTellsItsNumberAndKeepsThePress()
{
    HintWindow sample;
    for (QWidget *place : {static_cast<QWidget *>(sample.panel1), static_cast<QWidget *>(sample.panel2),
                           static_cast<QWidget *>(sample.form.statusBar()), static_cast<QWidget *>(sample.field)}) {
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(1, 1), place->mapToGlobal(QPointF(1, 1)), Qt::LeftButton,
                          Qt::LeftButton, {});
        QCoreApplication::sendEvent(place, &press);
    }
    QCOMPARE(sample.clicks, (QList<int>{1, 2, 0}));
    for (QWidget *place : {static_cast<QWidget *>(sample.panel1), static_cast<QWidget *>(sample.form.statusBar())}) {
        QTest::mouseRelease(place, Qt::LeftButton);
        QTest::mouseDClick(sample.field, Qt::LeftButton);
    }
    QCOMPARE(sample.clicks.size(), 3);
    QTest::mousePress(sample.panel2, Qt::RightButton);
    QCOMPARE(sample.clicks, (QList<int>{1, 2, 0, 2})); // not once more for the bar below the panel
}

void TestStatusHints::aClickThatShowsNoProgressLeavesTheLineAlone()
{
    int asked = 0;
    MainFixture main([&asked](MainFixture &m) {
        m.hooks.showProgress = [&asked] {
            ++asked;
            return false;
        };
    });
    main.view().setStatusText(u" Before"_s);
    QTest::mouseClick(main.get<QLabel>(u"stb(1)"_s), Qt::LeftButton);
    QTest::mouseClick(main.get<QLabel>(u"stb(2)"_s), Qt::LeftButton);
    QTest::mouseClick(main.window->statusBar(), Qt::LeftButton);
    QCOMPARE(asked, 3);
    QCOMPARE(main.panel(), u" Before"_s);
    const MainFixture without;
    QTest::mouseClick(without.get<QLabel>(u"stb(1)"_s), Qt::LeftButton);
    QTest::mouseClick(without.get<QLabel>(u"stb(2)"_s), Qt::LeftButton);
    QCOMPARE(without.panel(), u" Ready."_s);
}

void TestStatusHints::whatTheMouseIsOverDecidesTheHint()
{
    HintWindow sample;
    const QList<QPair<QWidget *, QString>> places = {
        {sample.field, u"The field. "_s},
        {sample.part, u"The field. "_s},
        {sample.content, u" Ready."_s},
        {sample.editor, u" Email content."_s},
        {sample.inEditor, u" Email content."_s},
        {sample.form.menuBar(), u" Ready."_s},
        {&sample.form, u" Ready."_s},
    };
    for (const auto &[place, hint] : places) {
        sample.panel1->setText(u"before"_s);
        move(place);
        QCOMPARE(sample.panel1->text(), hint);
        QVERIFY2(place->hasMouseTracking(), "no move is heard without a pressed button");
        // A box that closes over it leaves the mouse in it, which has not moved.
        sample.panel1->setText(u"before"_s);
        QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
        QCoreApplication::sendEvent(place, &enter);
        QCOMPARE(sample.panel1->text(), u"before"_s);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(place, &leave);
        QCOMPARE(sample.panel1->text(), u"before"_s);
    }
    sample.field->setEnabled(false);
    move(sample.field);
    QCOMPARE(sample.panel1->text(), u"The field. "_s);
    sample.panel1->setText(u"before"_s);
    QCOMPARE(sample.panel2->text(), QString());
}

void TestStatusHints::noHintIsShownWhileAnotherTextStands()
{
    HintWindow sample;
    sample.panel1->setText(u"sending"_s);
    for (const bool sending : {true, false, true}) {
        sample.sending = sending;
        sample.panel1->setText(u"sending"_s);
        move(sample.field);
        QCOMPARE(sample.panel1->text() == u"sending", sending);
        sample.panel1->setText(u"sending"_s);
        sample.item->hover();
        QCOMPARE(sample.panel1->text() == u"sending", sending);
        sample.panel1->setText(u"sending"_s);
        sample.hints->show(u"shown"_s);
        QCOMPARE(sample.panel1->text() == u"sending", sending);
        QTest::mousePress(sample.panel1, Qt::LeftButton); // a click counts in either case
    }
    QCOMPARE(sample.clicks, (QList<int>{1, 1, 1}));
}

void TestStatusHints::aMenuHintIsLookedUpByItsPlainCaption()
{
    HintWindow sample;
    const QTemporaryDir folder;
    writeFile(folder.filePath(u"menutips.dll"_s),
              "[frmPubMain]\r\nSave && more=wrong\r\nSave & more=Saves.\r\nDeep=Goes deep.\r\n");
    setLanguageFolder(folder.path());
    sample.item->setText(u"&Save && more\tCtrl+S"_s);
    sample.item->hover();
    QCOMPARE(sample.panel1->text(), u" Saves."_s);
    sample.deep->hover();
    QCOMPARE(sample.panel1->text(), u" Goes deep."_s);
    sample.sub->menuAction()->hover();
    QCOMPARE(sample.panel1->text(), u" Goes deep."_s);
    sample.item->setText(u"Unknown"_s);
    sample.item->hover();
    QCOMPARE(sample.panel1->text(), u" "_s);
    setLanguageFolder(QString());
}

void TestStatusHints::aMenusHintGoesWithTheMenu()
{
    HintWindow sample;
    QMenu *menu = sample.form.menuBar()->findChild<QMenu *>();
    menu->popup(sample.form.mapToGlobal(QPoint(0, 20)));
    sample.item->hover();
    QVERIFY(sample.panel1->text() != u" Ready."_s);
    menu->close();
    QCOMPARE(sample.panel1->text(), u" Ready."_s);
    // A chosen item has the last word: the line goes before it acts.
    connect(sample.item, &QAction::triggered, sample.panel1, [&sample] { sample.panel1->setText(u" Sending"_s); });
    menu->popup(sample.form.mapToGlobal(QPoint(0, 20)));
    menu->setActiveAction(sample.item);
    QTest::keyClick(menu, Qt::Key_Return);
    QVERIFY(!menu->isVisible());
    QCOMPARE(sample.panel1->text(), u" Sending"_s);
    sample.sending = true;
    menu->popup(sample.form.mapToGlobal(QPoint(0, 20)));
    menu->close();
    QCOMPARE(sample.panel1->text(), u" Sending"_s);
    MainFixture main;
    for (const QString &name : {u"menf"_s, u"menoes"_s}) { // one of the bar and one within another
        main.view().setStatusText(u" A hint"_s);
        Q_EMIT main.get<QMenu>(name)->aboutToHide();
        QCOMPARE(main.panel(), u" Ready."_s);
    }
}

QTEST_MAIN(TestStatusHints)
#include "test_statushints.moc"
