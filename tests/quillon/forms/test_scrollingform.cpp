#include "quillon/forms/contentarea.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/screenfit.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace quillon;

namespace {

constexpr int boxes = 12;

/// A column of boxes, each in a form of its own making, above a row of buttons.
class Column : public QDialog {
public:
    explicit Column(int boxHeight)
    {
        auto *column = new QVBoxLayout(this);
        auto *first = new QHBoxLayout;
        column->addLayout(first);
        for (int i = 0; i < boxes; ++i) {
            auto *box = new QLineEdit(this);
            box->setObjectName(u"txt(%1)"_s.arg(i));
            box->setMinimumSize(300, boxHeight);
            i == 0 ? first->addWidget(box) : column->addWidget(box, i == 1 ? 1 : 0);
        }
        auto *hidden = new QLineEdit(this);
        hidden->setObjectName(u"hidden"_s);
        hidden->hide();
        column->addWidget(hidden);
        column->addSpacing(7);
        auto *buttons = new QHBoxLayout;
        column->addLayout(buttons);
        for (const QString &name : {u"save"_s, u"close"_s}) {
            auto *button = new QPushButton(name, this);
            button->setObjectName(name);
            buttons->addWidget(button);
        }
    }
};

} // namespace

class TestScrollingForm : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aFormThatFitsStaysAsItWasDesigned();
    void aFormThatIsTooHighScrollsAboveItsButtons();
    void aFormThatIsTooWideIsMadeAsWideAsTheScreen();
    void theTabKeyKeepsItsOrderAndIsFollowed();
    void hiddenRowsStayHiddenAndTheFocusStays();
    void whatGrowsWhileItIsSeenScrollsToo();
    void aNewFormHasTheRoomOfTheScreenBelowIt_data();
    void aNewFormHasTheRoomOfTheScreenBelowIt();
    void aFormThatIsSeenHasTheRoomOfItsOwnScreen();
    void aScreenThatShrinksIsFollowed();
    void aFormThatStandsPartlyOutsideIsNotMovedByItsContent();
    void aWindowThatIsNoColumnIsLeftAlone();
    void theContentAsksForItsWidthAndNotForItsHeight();

private:
    QDialog *make(int boxHeight);
    [[nodiscard]] bool scrolls(const QWidget *form) const { return form->findChild<ContentArea *>() != nullptr; }

    /// A form that will come up over @p below, on one of two screens: a large one and, on its right, a small one.
    QDialog *makeOver(QWidget &below, int boxHeight);

    std::unique_ptr<FormRegistry> m_forms;
    QRect m_room;
};

void TestScrollingForm::init()
{
    m_room = QRect(0, 0, 600, 400);
    setScreenRooms([this] { return QList<QRect>{m_room}; });
    m_forms = std::make_unique<FormRegistry>();
}

void TestScrollingForm::cleanup()
{
    m_forms.reset();
    setScreenRooms({});
}

QDialog *TestScrollingForm::make(int boxHeight)
{
    m_forms->add(u"form"_s, [boxHeight] { return new Column(boxHeight); });
    return m_forms->as<QDialog>(u"form"_s);
}

void TestScrollingForm::aFormThatFitsStaysAsItWasDesigned()
{
    QDialog *form = make(15);
    const QSize hint = form->sizeHint();
    form->show();
    QVERIFY(!scrolls(form));
    QVERIFY(form->height() >= hint.height());
    // One that could be small enough is no larger than the screen, and needs no scrolling.
    form->resize(900, 700);
    form->hide();
    form->show();
    QVERIFY(!scrolls(form));
    QVERIFY(m_room.size().expandedTo(form->frameGeometry().size()) == m_room.size());
}

void TestScrollingForm::aFormThatIsTooHighScrollsAboveItsButtons()
{
    QDialog *form = make(50);
    form->show();
    QVERIFY(QTest::qWaitForWindowExposed(form));
    QVERIFY(scrolls(form));
    QVERIFY(form->frameGeometry().height() <= m_room.height());
    QVERIFY(form->frameGeometry().height() > m_room.height() / 2); // it takes the room that there is
    const auto *area = form->findChild<ContentArea *>();
    for (const QString &name : {u"save"_s, u"close"_s}) {
        const auto *button = form->findChild<QPushButton *>(name);
        QVERIFY(!area->isAncestorOf(button));
        QVERIFY(form->rect().contains(QRect(button->mapTo(form, QPoint(0, 0)), button->size())));
    }
    for (int i = 0; i < boxes; ++i) {
        QVERIFY(area->widget()->isAncestorOf(form->findChild<QLineEdit *>(u"txt(%1)"_s.arg(i))));
    }
    // The rows keep their order, and what takes the room that is left.
    QVERIFY(form->findChild<QLineEdit *>(u"txt(0)"_s)->y() < form->findChild<QLineEdit *>(u"txt(1)"_s)->y());
    QVERIFY(form->findChild<QLineEdit *>(u"txt(1)"_s)->y() < form->findChild<QLineEdit *>(u"txt(2)"_s)->y());
    QCOMPARE(static_cast<QBoxLayout *>(area->widget()->layout())->stretch(1), 1);
    QTRY_VERIFY(area->verticalScrollBar()->isVisible());
    QVERIFY2(!area->horizontalScrollBar()->isVisible(), "it is wide enough for the bar at its side");
}

void TestScrollingForm::aFormThatIsTooWideIsMadeAsWideAsTheScreen()
{
    m_room = QRect(0, 0, 250, 2000);
    QDialog *form = make(20);
    form->show();
    QVERIFY(QTest::qWaitForWindowExposed(form));
    QVERIFY(scrolls(form));
    QVERIFY(form->frameGeometry().width() <= m_room.width());
    QTRY_VERIFY(form->findChild<ContentArea *>()->horizontalScrollBar()->isVisible());
}

void TestScrollingForm::theTabKeyKeepsItsOrderAndIsFollowed()
{
    QDialog *form = make(50);
    form->show();
    QVERIFY(QTest::qWaitForWindowActive(form));
    form->findChild<QLineEdit *>(u"txt(0)"_s)->setFocus();
    const auto *area = form->findChild<ContentArea *>();
    for (int i = 1; i < boxes; ++i) {
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
        const QWidget *focused = form->focusWidget();
        QCOMPARE(focused->objectName(), u"txt(%1)"_s.arg(i));
        const QRect seen(focused->mapTo(area->viewport(), QPoint(0, 0)), focused->size());
        QVERIFY2(area->viewport()->rect().contains(seen), qPrintable(focused->objectName()));
    }
    QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
    QCOMPARE(form->focusWidget()->objectName(), u"save"_s);
    // Also what no Tab leads to, such as a label's letter.
    QLineEdit *first = form->findChild<QLineEdit *>(u"txt(0)"_s);
    first->setFocus(Qt::ShortcutFocusReason);
    QVERIFY(area->viewport()->rect().contains(QRect(first->mapTo(area->viewport(), QPoint(0, 0)), first->size())));
}

void TestScrollingForm::hiddenRowsStayHiddenAndTheFocusStays()
{
    QDialog *form = make(50);
    form->findChild<QLineEdit *>(u"txt(5)"_s)->setFocus();
    form->show();
    QVERIFY(QTest::qWaitForWindowActive(form));
    QCoreApplication::processEvents();
    QVERIFY(!form->findChild<QLineEdit *>(u"hidden"_s)->isVisible());
    QVERIFY(form->findChild<QLineEdit *>(u"txt(7)"_s)->isVisible());
    QCOMPARE(form->focusWidget()->objectName(), u"txt(5)"_s);
}

void TestScrollingForm::whatGrowsWhileItIsSeenScrollsToo()
{
    QDialog *form = make(15);
    form->show();
    QVERIFY(!scrolls(form));
    form->findChild<QLineEdit *>(u"txt(3)"_s)->setMinimumHeight(500);
    QCoreApplication::processEvents();
    QVERIFY(scrolls(form));
    QCoreApplication::processEvents();
    QVERIFY(form->frameGeometry().height() <= m_room.height());
}

QDialog *TestScrollingForm::makeOver(QWidget &below, int boxHeight)
{
    setScreenRooms([] { return QList<QRect>{QRect(0, 0, 2000, 2000), QRect(2000, 0, 600, 400)}; });
    below.resize(100, 50);
    below.show();
    QDialog *form = make(boxHeight);
    form->winId();
    form->windowHandle()->setTransientParent(below.windowHandle());
    return form;
}

void TestScrollingForm::aNewFormHasTheRoomOfTheScreenBelowIt_data()
{
    QTest::addColumn<QPoint>("below");
    QTest::addColumn<bool>("scrolls");
    QTest::newRow("large") << QPoint(300, 50) << false;
    QTest::newRow("small") << QPoint(2100, 50) << true;
}

void TestScrollingForm::aNewFormHasTheRoomOfTheScreenBelowIt()
{
    QFETCH(const QPoint, below);
    QWidget window;
    window.move(below);
    QDialog *form = makeOver(window, 50);
    QCOMPARE(window.windowHandle()->framePosition(), below);
    form->show();
    QTEST(scrolls(form), "scrolls");
}

void TestScrollingForm::aFormThatIsSeenHasTheRoomOfItsOwnScreen()
{
    QWidget window;
    window.move(2100, 50);
    QDialog *form = makeOver(window, 15);
    form->show();
    QVERIFY(!scrolls(form));
    form->move(100, 100);
    form->findChild<QLineEdit *>(u"txt(3)"_s)->setMinimumHeight(500);
    QCoreApplication::processEvents();
    QVERIFY(!scrolls(form));
    QVERIFY(form->height() >= 500);
}

void TestScrollingForm::aScreenThatShrinksIsFollowed()
{
    QDialog *form = make(15);
    form->show();
    form->move(200, 100);
    QVERIFY(!scrolls(form));
    m_room = QRect(0, 0, 500, 200);
    QScreen *screen = form->screen();
    Q_EMIT screen->availableGeometryChanged(m_room);
    QVERIFY(scrolls(form));
    QVERIFY2(m_room.contains(form->frameGeometry()), "it is seen whole");
    form->hide();
    m_room = QRect(0, 0, 500, 150);
    Q_EMIT screen->availableGeometryChanged(m_room); // a form that is not seen waits
    form->show();
    QVERIFY(form->frameGeometry().height() <= 150);
}

void TestScrollingForm::aFormThatStandsPartlyOutsideIsNotMovedByItsContent()
{
    QDialog *form = make(15);
    form->show();
    form->move(550, 10);
    form->findChild<QPushButton *>(u"save"_s)->setText(u"another text"_s);
    QCoreApplication::processEvents();
    QCOMPARE(form->pos(), QPoint(550, 10));
}

void TestScrollingForm::aWindowThatIsNoColumnIsLeftAlone()
{
    m_forms->add(u"bare"_s, [] {
        auto *widget = new QWidget;
        widget->setMinimumSize(900, 900);
        return widget;
    });
    m_forms->add(u"single"_s, [] {
        auto *widget = new QWidget;
        auto *column = new QVBoxLayout(widget);
        auto *box = new QLabel(u"alone"_s);
        box->setMinimumSize(900, 900);
        column->addWidget(box);
        return widget;
    });
    for (const QString &name : {u"bare"_s, u"single"_s}) {
        QWidget *form = m_forms->form(name);
        form->show();
        QVERIFY(!scrolls(form));
        QVERIFY(form->height() >= 900);
    }
}

void TestScrollingForm::theContentAsksForItsWidthAndNotForItsHeight()
{
    auto *content = new QWidget;
    content->setLayout(new QVBoxLayout);
    auto *box = new QLineEdit;
    box->setMinimumSize(400, 900);
    content->layout()->addWidget(box);
    ContentArea area(nullptr, content);
    QCOMPARE(area.widget(), content);
    QVERIFY(area.sizeHint().height() >= 900 && area.sizeHint().width() > content->minimumSizeHint().width());
    QVERIFY(area.minimumSizeHint().width() < 400);
    area.setWidest(1000);
    QVERIFY(area.minimumSizeHint().width() > content->minimumSizeHint().width());
    QVERIFY(area.minimumSizeHint().height() < 200);
    area.setWidest(350);
    QCOMPARE(area.minimumSizeHint().width(), 350);
}

QTEST_MAIN(TestScrollingForm)
#include "test_scrollingform.moc"
