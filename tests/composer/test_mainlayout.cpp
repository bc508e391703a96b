#include "composer/contentlayout.h"
#include "composer/growingboxes.h"
#include "mainfixture.h"
#include "quillon/forms/screenfit.h"

#include <QMenuBar>
#include <QScopeGuard>
#include <QScrollArea>
#include <QTabWidget>
#include <QToolBar>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

namespace {

/// The letter behind the "&" of a caption; none gives a null character.
QChar mnemonic(const QString &caption)
{
    for (qsizetype i = 0; i + 1 < caption.size(); ++i) {
        if (caption.at(i) == u'&') {
            if (caption.at(i + 1) != u'&') {
                return caption.at(i + 1).toLower();
            }
            ++i;
        }
    }
    return {};
}

/// Controls that a user fills or presses; parts that Qt makes for itself have no name of ours.
QList<QWidget *> userControls(const MainFixture &main)
{
    QList<QWidget *> controls;
    for (QWidget *widget : main.window->findChildren<QWidget *>()) {
        const QString name = widget->objectName();
        const bool ours = !name.isEmpty() && !name.startsWith(u"qt_"_s);
        const bool field = qobject_cast<QLineEdit *>(widget) || qobject_cast<QPlainTextEdit *>(widget) ||
                           qobject_cast<QComboBox *>(widget) || qobject_cast<QAbstractSpinBox *>(widget) ||
                           qobject_cast<QListWidget *>(widget) || qobject_cast<QAbstractButton *>(widget);
        if (ours && field && name != u"cbb(3)" && name != u"lstFilter" &&
            !qobject_cast<QTabBar *>(widget->parentWidget()) && !qobject_cast<QToolBar *>(widget->parentWidget())) {
            controls.append(widget);
        }
    }
    return controls;
}

} // namespace

class TestMainLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mnemonicsOfMenuBarAndLabelsDoNotClash();
    void mnemonicsWithinEachMenuDoNotClash();
    void everyFieldAndButtonHasATipAndAName();
    void everyFieldHasAVisibleLabelWithAMnemonic();
    void tabGoesInReadingOrder();
    void focusStartsInTo();
    void theWindowFitsASmallScreenWithLargeFonts();
    void aDoubleClickGrowsAndASecondOneShrinks();
    void onlyOneRecipientBoxIsLarge();
    void theAttachmentListGrowsAndShrinksTheBoxes();
    void aGrownBoxLiesOverTheRowsBelow();
    void enterInARecipientBoxIsANewLineAndTabMovesOn();
    void theSmallestWindowStillShowsTheBody();
    void onASmallScreenTheFieldsScroll();
    void aGrownBoxEndsWithTheWindow();
    void expandGivesTheHeaderToTheContent();
    void restorePutsTheFieldsBack();
    void aFieldThatGetsTheFocusIsBroughtBack();
    void aClickElsewhereHidesThePopUps();
};

void TestMainLayout::mnemonicsOfMenuBarAndLabelsDoNotClash()
{
    MainFixture main;
    QMap<QChar, QString> taken;
    QStringList captions;
    for (const QAction *menu : main.window->menuBar()->actions()) {
        captions.append(menu->text());
    }
    for (const QLabel *label : main.window->findChildren<QLabel *>()) {
        if (label->buddy()) {
            captions.append(label->text());
        }
    }
    for (const QAbstractButton *button : main.window->findChildren<QAbstractButton *>()) {
        if (button->objectName().contains(u'(')) {
            captions.append(button->text());
        }
    }
    for (const QString &caption : captions) {
        const QChar letter = mnemonic(caption);
        if (!letter.isNull()) {
            QVERIFY2(!taken.contains(letter), qPrintable(caption + u" and "_s + taken.value(letter)));
            taken.insert(letter, caption);
        }
    }
    QVERIFY(taken.size() >= 23);
}

void TestMainLayout::mnemonicsWithinEachMenuDoNotClash()
{
    MainFixture main;
    for (const QMenu *menu : main.window->menuBar()->findChildren<QMenu *>()) {
        QMap<QChar, QString> taken;
        for (const QAction *action : menu->actions()) {
            const bool array = action->objectName().contains(u"sa("_s);
            if (action->isSeparator() || array) {
                continue;
            }
            const QChar letter = mnemonic(action->text());
            QVERIFY2(!letter.isNull(), qPrintable(action->text()));
            QVERIFY2(!taken.contains(letter), qPrintable(action->text() + u" and "_s + taken.value(letter)));
            taken.insert(letter, action->text());
        }
    }
}

void TestMainLayout::everyFieldAndButtonHasATipAndAName()
{
    MainFixture main;
    const QList<QWidget *> controls = userControls(main);
    QVERIFY(controls.size() > 50);
    for (const QWidget *control : controls) {
        QVERIFY2(!control->toolTip().isEmpty(), qPrintable(control->objectName()));
        QVERIFY2(!control->accessibleName().isEmpty(), qPrintable(control->objectName()));
        QVERIFY2(!control->accessibleName().contains(u'&'), qPrintable(control->objectName()));
    }
    const auto *tabs = main.get<QTabWidget>(u"sst"_s);
    QCOMPARE(tabs->tabText(0), u"Design"_s);
    QCOMPARE(tabs->tabText(1), u"Source"_s);
    QCOMPARE(tabs->tabText(2), u"Preview"_s);
    QVERIFY(!tabs->tabToolTip(1).isEmpty());
}

void TestMainLayout::everyFieldHasAVisibleLabelWithAMnemonic()
{
    MainFixture main;
    QSet<const QWidget *> labelled;
    for (const QLabel *label : main.window->findChildren<QLabel *>()) {
        if (label->buddy()) {
            QVERIFY2(!mnemonic(label->text()).isNull(), qPrintable(label->text()));
            labelled.insert(label->buddy());
            if (label->buddy()->isVisible()) {
                QVERIFY2(label->isVisible(), qPrintable(label->text()));
            }
        }
    }
    for (const QWidget *control : userControls(main)) {
        // Buttons bear their own caption or picture; the source's label is its tab.
        if (!qobject_cast<const QAbstractButton *>(control) && control->objectName() != u"utbSource") {
            QVERIFY2(labelled.contains(control), qPrintable(control->objectName()));
        }
    }
}

void TestMainLayout::tabGoesInReadingOrder()
{
    MainFixture main;
    main.button(u"opt(1)"_s)->click();
    main.button(u"opt(3)"_s)->click();
    main.button(u"opt(5)"_s)->click();
    QList<QWidget *> order;
    QWidget *first = main.combo(6);
    for (QWidget *next = first; order.isEmpty() || next != first; next = next->nextInFocusChain()) {
        const bool stop = (next->focusPolicy() & Qt::TabFocus) != 0 && next->isVisible() &&
                          !next->objectName().isEmpty() && !next->objectName().startsWith(u"qt_"_s) &&
                          !qobject_cast<QToolBar *>(next->parentWidget());
        if (stop) {
            order.append(next);
        }
    }
    QVERIFY(order.size() > 25);
    QCOMPARE(order.last()->objectName(), u"utbContent"_s);
    for (qsizetype i = 1; i < order.size(); ++i) {
        const auto middle = [&main](const QWidget *control) {
            return control->mapTo(main.window.get(), control->rect().center());
        };
        const QPoint before = middle(order.at(i - 1));
        const QPoint after = middle(order.at(i));
        const bool sameRow = std::abs(before.y() - after.y()) < order.at(i - 1)->height() / 2;
        QVERIFY2(sameRow ? before.x() < after.x() : before.y() < after.y(),
                 qPrintable(order.at(i - 1)->objectName() + u" before "_s + order.at(i)->objectName()));
    }
}

void TestMainLayout::focusStartsInTo()
{
    MainFixture main;
    QCOMPARE(main.window->focusWidget(), main.recipients(0));
}

void TestMainLayout::theWindowFitsASmallScreenWithLargeFonts()
{
    const QFont normal = QApplication::font();
    const auto back = qScopeGuard([&normal] { QApplication::setFont(normal); });
    {
        MainFixture main;
        QVERIFY(main.window->width() <= 1024 && main.window->height() <= 720);
        QVERIFY(main.window->width() >= 800 && main.window->height() >= 560);
    }
    QFont large = normal;
    large.setPointSizeF(normal.pointSizeF() * 2);
    QApplication::setFont(large);
    {
        MainFixture main;
        const QSize least = main.window->minimumSizeHint();
        QVERIFY2(least.width() <= 1024 && least.height() <= 720,
                 qPrintable(u"%1 x %2"_s.arg(least.width()).arg(least.height())));
        QPlainTextEdit *to = main.recipients(0);
        QVERIFY2(to->height() >= QFontMetrics(large).height(), "a row follows the font");
        QVERIFY(main.get(u"lblTo"_s)->height() >= QFontMetrics(large).height());
    }
}

void TestMainLayout::aDoubleClickGrowsAndASecondOneShrinks()
{
    MainFixture main;
    for (int i = 0; i < 3; ++i) {
        QPlainTextEdit *box = main.recipients(i);
        const int row = box->height();
        QVERIFY(row >= 20);
        QTest::mouseDClick(box->viewport(), Qt::LeftButton);
        QCOMPARE(box->height(), row * 5); // 1500 to 300
        QTest::mouseDClick(box->viewport(), Qt::LeftButton);
        QCOMPARE(box->height(), row);
    }
}

void TestMainLayout::onlyOneRecipientBoxIsLarge()
{
    MainFixture main;
    const int row = main.recipients(0)->height();
    QTest::mouseDClick(main.recipients(0)->viewport(), Qt::LeftButton);
    QTest::mouseDClick(main.recipients(2)->viewport(), Qt::LeftButton);
    QCOMPARE(main.recipients(0)->height(), row);
    QCOMPARE(main.recipients(2)->height(), row * 5);
}

void TestMainLayout::theAttachmentListGrowsAndShrinksTheBoxes()
{
    MainFixture main;
    auto *list = main.get<QListWidget>(u"lsv(0)"_s);
    const int row = list->height();
    QTest::mouseDClick(main.recipients(1)->viewport(), Qt::LeftButton);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton);
    QCOMPARE(list->height(), row * 7); // 2100 to 300
    QCOMPARE(main.recipients(1)->height(), row);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton);
    QCOMPARE(list->height(), row);
}

void TestMainLayout::aGrownBoxLiesOverTheRowsBelow()
{
    MainFixture main;
    QPlainTextEdit *to = main.recipients(0);
    const QRect subjectBefore = main.get(u"utbSubject"_s)->geometry();
    QTest::mouseDClick(to->viewport(), Qt::LeftButton);
    QCOMPARE(main.get(u"utbSubject"_s)->geometry(), subjectBefore);
    const QPoint inCC = main.recipients(1)->mapTo(main.window.get(), QPoint(20, 5));
    QCOMPARE(main.window->childAt(inCC), to->viewport());
    main.window->resize(main.window->width() - 100, main.window->height());
    const int left = main.recipients(1)->mapTo(main.window.get(), QPoint(0, 0)).x();
    QCOMPARE(to->mapTo(main.window.get(), QPoint(0, 0)).x(), left); // it still follows its row
}

void TestMainLayout::enterInARecipientBoxIsANewLineAndTabMovesOn()
{
    MainFixture main;
    QPlainTextEdit *cc = main.recipients(1);
    cc->setFocus();
    QTest::keyClicks(cc, u"a@example.com"_s);
    QTest::keyClick(cc, Qt::Key_Return);
    QTest::keyClicks(cc, u"b@example.com"_s);
    QCOMPARE(main.message().text(Field::CC), u"a@example.com\r\nb@example.com"_s);
    QTest::keyClick(cc, Qt::Key_Tab);
    QCOMPARE(main.window->focusWidget(), main.recipients(2));
    QCOMPARE(main.message().text(Field::CC), u"a@example.com\r\nb@example.com"_s);
}

void TestMainLayout::expandGivesTheHeaderToTheContent()
{
    MainFixture main;
    auto *content = main.get<QPlainTextEdit>(u"utbContent"_s);
    const int before = content->height();
    QVERIFY(QTest::qWaitForWindowActive(main.window.get()));
    QTest::keyClick(main.recipients(0), Qt::Key_F6);
    QCoreApplication::processEvents();
    QVERIFY(content->height() > before + 150);
    QVERIFY(!main.recipients(0)->isVisible());
    QVERIFY(!main.get(u"utbSubject"_s)->isVisible());
    QCOMPARE(main.item(u"menve"_s)->text(), u"&Restore"_s);
    QCOMPARE(main.item(u"tlbExpand"_s)->text(), u"Restore"_s);
    QCOMPARE(main.item(u"tlbExpand"_s)->toolTip(), u"Restores the email content area <F6>."_s);
    QCOMPARE(main.window->focusWidget(), content);
}

void TestMainLayout::restorePutsTheFieldsBack()
{
    MainFixture main;
    auto *content = main.get<QPlainTextEdit>(u"utbContent"_s);
    const QRect before = content->geometry();
    const QRect toBefore = main.recipients(0)->geometry();
    main.item(u"menve"_s)->trigger();
    main.item(u"tlbExpand"_s)->trigger();
    QCoreApplication::processEvents();
    QCOMPARE(content->geometry(), before);
    QCOMPARE(main.recipients(0)->geometry(), toBefore);
    QVERIFY(main.recipients(0)->isVisible());
    QVERIFY(main.get(u"utbSubject"_s)->isVisible());
    QCOMPARE(main.item(u"menve"_s)->text(), u"&Expand"_s);
    QCOMPARE(main.item(u"tlbExpand"_s)->text(), u"Expand"_s);
    QCOMPARE(main.item(u"tlbExpand"_s)->toolTip(), u"Expands the email content area <F6>."_s);
}

void TestMainLayout::aFieldThatGetsTheFocusIsBroughtBack()
{
    MainFixture main;
    main.item(u"menve"_s)->trigger();
    for (const Field content : {Field::PlainContent, Field::RichContent, Field::Source}) {
        main.view().setFocus(content);
        QVERIFY(!main.recipients(1)->isVisibleTo(main.window.get()));
        QCOMPARE(main.item(u"menve"_s)->text(), u"&Restore"_s);
    }
    main.view().setFocus(Field::CC);
    QVERIFY(main.recipients(1)->isVisibleTo(main.window.get()));
    QCOMPARE(main.item(u"menve"_s)->text(), u"&Expand"_s);
    QCOMPARE(main.window->focusWidget(), main.recipients(1));
}

void TestMainLayout::aClickElsewhereHidesThePopUps()
{
    MainFixture main;
    QWidget *palette = main.get(u"fra(4)"_s);
    QWidget *filter = main.get(u"lstFilter"_s);
    filter->setGeometry(300, 400, 200, 100);
    QVERIFY(palette->isHidden() && filter->isHidden());
    const auto open = [&] {
        palette->show();
        filter->show();
    };
    open();
    QTest::mouseClick(main.get<QLineEdit>(u"utbSubject"_s), Qt::LeftButton);
    QVERIFY(palette->isHidden() && filter->isHidden());
    open();
    QTest::mouseClick(filter, Qt::LeftButton);
    QVERIFY(!filter->isHidden());
    Q_EMIT main.combo(6)->activated(0);
    QVERIFY(palette->isHidden() && filter->isHidden());
}

void TestMainLayout::theSmallestWindowStillShowsTheBody()
{
    MainFixture main;
    for (const auto format : {Message::Format::Plain, Message::Format::Rich}) {
        main.message().setFormat(format);
        QCoreApplication::processEvents();
        main.window->resize(1, 1);
        QCoreApplication::processEvents();
        const auto *body = main.get(format == Message::Format::Plain ? u"utbContent"_s : u"sst"_s);
        QVERIFY(body->height() >= main.window->fontMetrics().lineSpacing() * 4);
        QVERIFY(main.window->rect().contains(QRect(body->mapTo(main.window.get(), QPoint(0, 0)), body->size())));
    }
}

void TestMainLayout::onASmallScreenTheFieldsScroll()
{
    const QRect small(0, 0, 480, 300);
    quillon::setScreenRooms([small] { return QList<QRect>{small}; });
    const auto back = qScopeGuard([] { quillon::setScreenRooms({}); });
    MainFixture main;
    main.window->resize(1, 1);
    QCoreApplication::processEvents();
    QVERIFY(main.window->frameGeometry().height() <= small.height());
    const auto *body = main.get(u"utbContent"_s);
    QVERIFY(body->height() >= main.window->fontMetrics().lineSpacing() * 4);
    const auto *area = qobject_cast<QScrollArea *>(main.window->centralWidget());
    QVERIFY(area);
    for (const QString &name : {u"utbSubject"_s, u"cbb(6)"_s}) {
        auto *field = main.get(name);
        field->setFocus();
        const QPoint corner = field->mapTo(area->viewport(), QPoint(0, 0));
        QVERIFY2(corner.y() >= 0 && corner.y() + field->height() <= area->viewport()->height(), qPrintable(name));
    }
}

void TestMainLayout::aGrownBoxEndsWithTheWindow()
{
    MainFixture main;
    main.window->resize(1, 1);
    QCoreApplication::processEvents();
    auto *list = main.get<QListWidget>(u"lsv(0)"_s);
    const int row = list->height();
    QTest::mouseDClick(list->viewport(), Qt::LeftButton);
    const auto end = [&] { return list->mapTo(main.window.get(), QPoint(0, list->height())).y(); };
    const auto *central = main.get(u"central"_s);
    QVERIFY(list->height() > row && list->height() < row * 7);
    QCOMPARE(end(), central->mapTo(main.window.get(), QPoint(0, central->height())).y());
    main.window->resize(main.window->width(), 760);
    QCoreApplication::processEvents();
    QCOMPARE(list->height(), row * 7); // there is room again
}

QTEST_MAIN(TestMainLayout)
#include "test_mainlayout.moc"
