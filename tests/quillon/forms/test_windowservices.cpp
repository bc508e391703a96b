#include "quillon/fault.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/windowservices.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QIcon>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

#include <array>

using namespace Qt::StringLiterals;
using quillon::QuillonWindows;

class TestWindowServices : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aWindowIsFoundByItsExactTitle();
    void anUnloadedFormIsNotFound();
    void message16ClosesAWindow();
    void anotherMessageIsAFault();
    void filesAndFoldersHaveAnIcon();
    void aListScrollsToItsExtent();
    void subMenusAreReachedByPosition();
    void aMissingSubMenuIsAFault();
    void theRadioMarkMovesWithinItsGroup();
    void aMarkOnNothingIsAFault();
    void aVisibleWindowIsFoundBeforeAHiddenOne();
    void aRowLongerThanTheExtentKeepsItsWidth();
    void theMarkLeavesOtherGroupsAlone();
    void clipboardTextComesWithCarriageReturns_data();
    void clipboardTextComesWithCarriageReturns();
};

void TestWindowServices::aWindowIsFoundByItsExactTitle()
{
    QWidget window;
    window.setWindowTitle(u"Corvane Help"_s);
    QWidget other;
    other.setWindowTitle(u"Corvane Help 2"_s);
    QCOMPARE(QuillonWindows().FindWindowByTitle(u"Corvane Help"_s), &window);
    QCOMPARE(QuillonWindows().FindWindowByTitle(u"corvane help"_s), nullptr);
}

void TestWindowServices::anUnloadedFormIsNotFound()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubHelp"_s, [] {
        auto *form = new QWidget;
        form->setWindowTitle(u"Corvane Help"_s);
        return form;
    });
    QCOMPARE(QuillonWindows().FindWindowByTitle(u"Corvane Help"_s), nullptr);
    forms.form(u"frmPubHelp"_s);
    QVERIFY(QuillonWindows().FindWindowByTitle(u"Corvane Help"_s));
    forms.unload(u"frmPubHelp"_s);
    QCOMPARE(QuillonWindows().FindWindowByTitle(u"Corvane Help"_s), nullptr);
}

void TestWindowServices::message16ClosesAWindow()
{
    QWidget window;
    window.show();
    QuillonWindows().SendWindowMessage(&window, 16, 0, 0);
    QVERIFY(!window.isVisible());
}

void TestWindowServices::anotherMessageIsAFault()
{
    QWidget window;
    window.show();
    const int faults = quillon::faultCount();
    QuillonWindows().SendWindowMessage(&window, 17, 0, 0);
    QuillonWindows().SendWindowMessage(nullptr, 16, 0, 0);
    QCOMPARE(quillon::faultCount(), faults + 2);
    QVERIFY(window.isVisible());
}

void TestWindowServices::filesAndFoldersHaveAnIcon()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a.txt"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!QuillonWindows().DrawFileIcon(file.fileName()).isNull());
    QVERIFY(!QuillonWindows().DrawFileIcon(folder.path()).isNull());
}

void TestWindowServices::aListScrollsToItsExtent()
{
    QListWidget list;
    list.addItem(u"short"_s);
    list.resize(200, 100);
    list.show();
    QuillonWindows().SetListExtent(&list, 500);
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    QTRY_COMPARE(list.horizontalScrollBar()->maximum() + list.viewport()->width(), 500);
}

void TestWindowServices::subMenusAreReachedByPosition()
{
    QMainWindow window;
    for (int i = 0; i < 5; ++i) {
        window.menuBar()->addMenu(QString::number(i));
    }
    QMenu *fifth = window.menuBar()->actions().at(4)->menu<QMenu *>();
    for (int i = 0; i < 7; ++i) {
        i == 3 ? fifth->addSeparator() : fifth->addAction(QString::number(i));
    }
    QMenu *encodings = fifth->addMenu(u"Encoding"_s);
    const QuillonWindows system;
    QMenuBar *bar = system.GetMenuHandle(&window);
    QCOMPARE(bar, window.menuBar());
    QCOMPARE(system.GetSubMenuHandle(bar, 4), fifth);
    QCOMPARE(system.GetSubMenuHandle(system.GetSubMenuHandle(bar, 4), 7), encodings);
}

void TestWindowServices::aMissingSubMenuIsAFault()
{
    QMenu menu;
    menu.addAction(u"plain"_s);
    const int faults = quillon::faultCount();
    QCOMPARE(QuillonWindows().GetSubMenuHandle(&menu, 0), nullptr);
    QCOMPARE(QuillonWindows().GetSubMenuHandle(&menu, 1), nullptr);
    QCOMPARE(QuillonWindows().GetSubMenuHandle(&menu, -1), nullptr);
    QCOMPARE(quillon::faultCount(), faults + 3);
}

void TestWindowServices::theRadioMarkMovesWithinItsGroup()
{
    QMenu menu;
    QList<QAction *> items;
    for (int i = 0; i < 3; ++i) {
        items.append(menu.addAction(QString::number(i)));
    }
    const auto marks = [&items] {
        QList<bool> checked;
        for (const QAction *item : items) {
            checked.append(item->isChecked());
        }
        return checked;
    };
    QuillonWindows().MarkMenuItem(&menu, 0);
    QCOMPARE(marks(), (QList<bool>{true, false, false}));
    QuillonWindows().MarkMenuItem(&menu, 2);
    QCOMPARE(marks(), (QList<bool>{false, false, true}));
    QVERIFY(items.at(1)->isCheckable());
    QVERIFY(items.at(0)->actionGroup() && items.at(0)->actionGroup() == items.at(2)->actionGroup());
}

void TestWindowServices::aMarkOnNothingIsAFault()
{
    QMenu menu;
    menu.addSeparator();
    menu.addMenu(u"sub"_s);
    const int faults = quillon::faultCount();
    for (const int position : {-1, 0, 1, 2}) {
        QuillonWindows().MarkMenuItem(&menu, position);
    }
    QCOMPARE(quillon::faultCount(), faults + 4);
}

void TestWindowServices::clipboardTextComesWithCarriageReturns_data()
{
    QTest::addColumn<QString>("put");
    QTest::addColumn<QString>("got");
    QTest::newRow("crlf") << u"a\r\nb\r\n"_s << u"a\r\nb\r\n"_s;
    QTest::newRow("lf") << u"a\nb"_s << u"a\r\nb"_s;
    QTest::newRow("both") << u"a\nb\r\nc"_s << u"a\r\nb\r\nc"_s;
    QTest::newRow("cr") << u"a\rb"_s << u"a\r\nb"_s;
    QTest::newRow("none") << u"äß"_s << u"äß"_s;
}

void TestWindowServices::clipboardTextComesWithCarriageReturns()
{
    QFETCH(QString, put);
    QuillonWindows().SetClipboardText(put);
    QTEST(QuillonWindows().GetClipboardText(), "got");
    QVERIFY(!QApplication::clipboard()->text().contains(u'\r'));
    QApplication::clipboard()->setText(put);
    QTEST(QuillonWindows().GetClipboardText(), "got");
}

void TestWindowServices::aVisibleWindowIsFoundBeforeAHiddenOne()
{
    std::array<QWidget, 3> windows;
    for (QWidget &window : windows) {
        window.setWindowTitle(u"Corvane Help"_s);
    }
    QVERIFY(QuillonWindows().FindWindowByTitle(u"Corvane Help"_s));
    for (QWidget &window : windows) {
        window.show();
        QCOMPARE(QuillonWindows().FindWindowByTitle(u"Corvane Help"_s), &window);
        window.hide();
    }
}

void TestWindowServices::aRowLongerThanTheExtentKeepsItsWidth()
{
    QListWidget list;
    list.addItem(QString(300, u'x'));
    list.resize(200, 100);
    list.show();
    QuillonWindows().SetListExtent(&list, 210);
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    const int asked = list.fontMetrics().horizontalAdvance(QString(300, u'x'));
    QTRY_VERIFY(list.horizontalScrollBar()->maximum() + list.viewport()->width() >= asked);
    QCOMPARE(list.horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QVERIFY(!list.wordWrap());
    QCOMPARE(list.textElideMode(), Qt::ElideNone);
    QCOMPARE(list.horizontalScrollMode(), QAbstractItemView::ScrollPerPixel);
}

void TestWindowServices::theMarkLeavesOtherGroupsAlone()
{
    QMenu menu;
    QActionGroup others(&menu);
    QAction *grouped = others.addAction(u"0"_s);
    grouped->setCheckable(true);
    grouped->setChecked(true);
    menu.addAction(grouped);
    QAction *first = menu.addAction(u"1"_s);
    QAction *line = menu.addSeparator();
    QAction *sub = menu.addMenu(u"3"_s)->menuAction();
    QAction *second = menu.addAction(u"4"_s);
    QuillonWindows().MarkMenuItem(&menu, 1);
    QuillonWindows().MarkMenuItem(&menu, 4);
    QVERIFY(!first->isChecked() && second->isChecked());
    QVERIFY(grouped->isChecked());
    QCOMPARE(grouped->actionGroup(), &others);
    QVERIFY(!line->actionGroup() && !line->isCheckable());
    QVERIFY(!sub->actionGroup() && !sub->isCheckable());

    // A group of check marks becomes one of radio marks.
    others.setExclusionPolicy(QActionGroup::ExclusionPolicy::None);
    QAction *member = others.addAction(u"5"_s);
    menu.addAction(member);
    QuillonWindows().MarkMenuItem(&menu, 5);
    QVERIFY(member->isCheckable() && member->isChecked());
    QVERIFY(!grouped->isChecked());
    QVERIFY(second->isChecked());
}

QTEST_MAIN(TestWindowServices)
#include "test_windowservices.moc"
