#include "modaldriver.h"
#include "quillon/fault.h"
#include "quillon/forms/messagebox.h"

#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;
using quillon::BoxAnswer;
using quillon::MessageBox;

namespace {

/// What a box was like while it was on the screen.
struct Seen {
    QString title;
    QString text;
    QString information;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
    QString defaultButton;
    Qt::TextFormat format = Qt::AutoText;
    QSize size;
};

QString nameOf(QMessageBox *box, QAbstractButton *button)
{
    switch (box->standardButton(button)) {
    case QMessageBox::Ok:
        return u"Ok"_s;
    case QMessageBox::Cancel:
        return u"Cancel"_s;
    case QMessageBox::Yes:
        return u"Yes"_s;
    case QMessageBox::No:
        return u"No"_s;
    default:
        return u"?"_s;
    }
}

Seen look(QMessageBox *box)
{
    Seen seen{box->windowTitle(),         box->text(), box->informativeText(), box->icon(), {}, {}, box->textFormat(),
              box->frameGeometry().size()};
    for (const QMessageBox::StandardButton button :
         {QMessageBox::Ok, QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel}) {
        if (box->button(button)) {
            seen.buttons.append(nameOf(box, box->button(button)));
        }
    }
    seen.defaultButton = box->defaultButton() ? nameOf(box, box->defaultButton()) : QString();
    return seen;
}

} // namespace

/// Message boxes: their looks, their buttons and their answers.
class TestQtPrompts : public QObject, private QtPromptsBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void eachStyleHasItsIconAndButtons_data();
    void eachStyleHasItsIconAndButtons();
    void theFirstButtonIsTheDefault();
    void theAnswerIsTheButtonThatWasPressed();
    void escapePressesCancelWhereThereIsOne();
    void escapeDoesNothingInAYesNoBox();
    void escapeClosesABoxWithOneButton();
    void closingDoesNothingInAYesNoBox();
    void anAddressInABoxShowsAsWritten();
    void aLongTextStaysOnTheScreen_data();
    void aLongTextStaysOnTheScreen();
    void aTextTakesHalfTheScreenAndNoWideLine_data();
    void aTextTakesHalfTheScreenAndNoWideLine();
    void aShortTextNeedsNoScrolling();
    void anUnknownStyleIsAFaultAndHasOneButton();
    void theCloseBoxAnswersAsEscapeDoes();
    void aBoxOutlivesTheWindowItBelongsTo_data();
    void aBoxOutlivesTheWindowItBelongsTo();
    void whatElseIsKnownStandsBelowTheText();
    void anInputBoxHasRoomForANameWithItsAddress();
};

void TestQtPrompts::eachStyleHasItsIconAndButtons_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::addColumn<QStringList>("buttons");
    QTest::newRow("0") << 0 << QMessageBox::NoIcon << QStringList{u"Ok"_s};
    QTest::newRow("1") << 1 << QMessageBox::NoIcon << QStringList{u"Ok"_s, u"Cancel"_s};
    QTest::newRow("3") << 3 << QMessageBox::NoIcon << QStringList{u"Yes"_s, u"No"_s, u"Cancel"_s};
    QTest::newRow("4") << 4 << QMessageBox::NoIcon << QStringList{u"Yes"_s, u"No"_s};
    QTest::newRow("52") << 52 << QMessageBox::Warning << QStringList{u"Yes"_s, u"No"_s};
    QTest::newRow("291, a bit of no meaning here")
        << 291 << QMessageBox::Question << QStringList{u"Yes"_s, u"No"_s, u"Cancel"_s};
    QTest::newRow("16") << 16 << QMessageBox::Critical << QStringList{u"Ok"_s};
    QTest::newRow("33") << 33 << QMessageBox::Question << QStringList{u"Ok"_s, u"Cancel"_s};
    QTest::newRow("35") << 35 << QMessageBox::Question << QStringList{u"Yes"_s, u"No"_s, u"Cancel"_s};
    QTest::newRow("36") << 36 << QMessageBox::Question << QStringList{u"Yes"_s, u"No"_s};
    QTest::newRow("48") << 48 << QMessageBox::Warning << QStringList{u"Ok"_s};
    QTest::newRow("64") << 64 << QMessageBox::Information << QStringList{u"Ok"_s};
    QTest::newRow("65") << 65 << QMessageBox::Information << QStringList{u"Ok"_s, u"Cancel"_s};
}

void TestQtPrompts::eachStyleHasItsIconAndButtons()
{
    QFETCH(int, style);
    Seen seen;
    meet<QMessageBox>([&seen](QMessageBox *box) {
        seen = look(box);
        box->defaultButton()->click();
    });
    m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style});
    QCOMPARE(seen.title, u"Corvane"_s);
    QCOMPARE(seen.text, u"A text."_s);
    QTEST(seen.icon, "icon");
    QTEST(seen.buttons, "buttons");
}

void TestQtPrompts::theFirstButtonIsTheDefault()
{
    for (const auto &[style, first] : {std::pair(64, u"Ok"_s), std::pair(35, u"Yes"_s), std::pair(36, u"Yes"_s),
                                       std::pair(33, u"Ok"_s), std::pair(65, u"Ok"_s)}) {
        Seen seen;
        meet<QMessageBox>([&seen](QMessageBox *box) {
            seen = look(box);
            QTest::keyClick(box, Qt::Key_Return);
        });
        const BoxAnswer answer = m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style});
        QCOMPARE(seen.defaultButton, first);
        QCOMPARE(answer, first == u"Yes" ? BoxAnswer::Yes : BoxAnswer::Ok);
    }
}

void TestQtPrompts::theAnswerIsTheButtonThatWasPressed()
{
    const QList<std::tuple<int, QMessageBox::StandardButton, BoxAnswer>> cases = {
        {35, QMessageBox::Yes, BoxAnswer::Yes},       {35, QMessageBox::No, BoxAnswer::No},
        {35, QMessageBox::Cancel, BoxAnswer::Cancel}, {36, QMessageBox::No, BoxAnswer::No},
        {65, QMessageBox::Cancel, BoxAnswer::Cancel}, {16, QMessageBox::Ok, BoxAnswer::Ok},
    };
    for (const auto &[style, button, answer] : cases) {
        meet<QMessageBox>([press = button](QMessageBox *box) { box->button(press)->click(); });
        QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style}), answer);
    }
}

void TestQtPrompts::escapePressesCancelWhereThereIsOne()
{
    for (const int style : {33, 35, 65}) {
        meet<QMessageBox>([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Escape); });
        QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style}), BoxAnswer::Cancel);
    }
}

void TestQtPrompts::escapeDoesNothingInAYesNoBox()
{
    bool stayed = false;
    meet<QMessageBox>([&stayed](QMessageBox *box) {
        QTest::keyClick(box, Qt::Key_Escape);
        QTest::keyClick(box->button(QMessageBox::No), Qt::Key_Escape);
        stayed = box->isVisible();
        box->button(QMessageBox::Yes)->click();
    });
    QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 36}), BoxAnswer::Yes);
    QVERIFY(stayed);
}

void TestQtPrompts::escapeClosesABoxWithOneButton()
{
    meet<QMessageBox>([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Escape); });
    QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 48}), BoxAnswer::Ok);
}

void TestQtPrompts::closingDoesNothingInAYesNoBox()
{
    bool stayed = false;
    meet<QMessageBox>([&stayed](QMessageBox *box) {
        box->close();
        stayed = box->isVisible();
        box->button(QMessageBox::No)->click();
    });
    QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 36}), BoxAnswer::No);
    QVERIFY(stayed);
}

void TestQtPrompts::anAddressInABoxShowsAsWritten()
{
    Seen seen;
    meet<QMessageBox>([&seen](QMessageBox *box) {
        seen = look(box);
        box->accept();
    });
    m_prompts->box({u"KEY"_s, u"'<b>Ann</b> <a@b.c>' is not an address."_s, u"<b>Ann</b> <a@b.c>"_s, 48});
    QCOMPARE(seen.text, u"'<b>Ann</b> <a@b.c>' is not an address."_s);
    QCOMPARE(seen.format, Qt::PlainText);
}

void TestQtPrompts::aLongTextStaysOnTheScreen_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << u"word "_s.repeated(2000);
    QTest::newRow("one word") << QString(10000, u'x');
    QTest::newRow("lines") << u"a line\n"_s.repeated(1500);
}

void TestQtPrompts::aLongTextStaysOnTheScreen()
{
    QFETCH(QString, text);
    Seen seen;
    QSize room;
    QSize shown;
    bool buttonInside = false;
    meet<QMessageBox>([&](QMessageBox *box) {
        seen = look(box);
        room = box->screen()->availableSize();
        if (const auto *area = box->findChild<QScrollArea *>()) {
            shown = area->size();
        }
        QWidget *ok = box->button(QMessageBox::Ok);
        buttonInside = box->rect().contains(QRect(ok->mapTo(box, QPoint()), ok->size()));
        box->accept();
    });
    m_prompts->box({QString(), text, QString(), 16});
    QCOMPARE(seen.text, text);
    QVERIFY2(
        seen.size.width() <= room.width() && seen.size.height() <= room.height(),
        qPrintable(
            u"%1x%2 on %3x%4"_s.arg(seen.size.width()).arg(seen.size.height()).arg(room.width()).arg(room.height())));
    QVERIFY(buttonInside);
    // Beside the text stands the scroll bar.
    const QSize limit = MessageBox::textLimit(room);
    QVERIFY(shown.width() >= limit.width() && shown.width() <= limit.width() + QScrollBar().sizeHint().width());
    QVERIFY(shown.height() > 0 && shown.height() <= limit.height());
}

void TestQtPrompts::aTextTakesHalfTheScreenAndNoWideLine_data()
{
    QTest::addColumn<QSize>("room");
    QTest::addColumn<QSize>("limit");
    QTest::newRow("small") << QSize(800, 600) << QSize(400, 300);
    QTest::newRow("just below") << QSize(1278, 720) << QSize(639, 360);
    QTest::newRow("as wide as a line") << QSize(1280, 721) << QSize(640, 360);
    QTest::newRow("just above") << QSize(1282, 722) << QSize(640, 361);
    QTest::newRow("large") << QSize(1920, 1080) << QSize(640, 540);
}

void TestQtPrompts::aTextTakesHalfTheScreenAndNoWideLine()
{
    QFETCH(const QSize, room);
    QTEST(MessageBox::textLimit(room), "limit");
}

void TestQtPrompts::aBoxOutlivesTheWindowItBelongsTo_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<BoxAnswer>("answer");
    QTest::newRow("yes, no, cancel") << 35 << BoxAnswer::Cancel;
    QTest::newRow("ok, cancel") << 33 << BoxAnswer::Cancel;
    QTest::newRow("yes, no") << 36 << BoxAnswer::No;
    QTest::newRow("ok") << 48 << BoxAnswer::Ok;
}

void TestQtPrompts::aBoxOutlivesTheWindowItBelongsTo()
{
    QFETCH(const int, style);
    auto *window = new QDialog;
    window->setModal(true);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window));
    meet<QMessageBox>([window](QMessageBox *) { delete window; });
    QTEST(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style}), "answer");
}

void TestQtPrompts::aShortTextNeedsNoScrolling()
{
    bool scrolls = true;
    for (const auto &[text, expected] :
         {std::pair(u"A text.\nOf two lines."_s, false), std::pair(u"word "_s.repeated(2000), true),
          std::pair(QString(900, u'x'), true)}) {
        meet<QMessageBox>([&scrolls](QMessageBox *box) {
            scrolls = box->findChild<QScrollArea *>() != nullptr;
            box->accept();
        });
        m_prompts->box({QString(), text, QString(), 16});
        QCOMPARE(scrolls, expected);
    }
}

void TestQtPrompts::anUnknownStyleIsAFaultAndHasOneButton()
{
    for (const int style : {2, 5, 15}) {
        const int faults = quillon::faultCount();
        Seen seen;
        meet<QMessageBox>([&seen](QMessageBox *box) {
            seen = look(box);
            box->accept();
        });
        QCOMPARE(m_prompts->box({QString(), u"A text."_s, QString(), style}), BoxAnswer::Ok);
        QCOMPARE(seen.buttons, QStringList{u"Ok"_s});
        QCOMPARE(quillon::faultCount(), faults + 1);
    }
}

void TestQtPrompts::theCloseBoxAnswersAsEscapeDoes()
{
    for (const auto &[style, hasCloseBox, answer] :
         {std::tuple(48, true, BoxAnswer::Ok), std::tuple(33, true, BoxAnswer::Cancel),
          std::tuple(35, true, BoxAnswer::Cancel), std::tuple(36, false, BoxAnswer::No)}) {
        bool closes = !hasCloseBox;
        meet<QMessageBox>([&closes](QMessageBox *box) {
            closes = box->windowFlags().testFlag(Qt::WindowCloseButtonHint);
            if (closes) {
                box->close();
            } else {
                box->button(QMessageBox::No)->click();
            }
        });
        QCOMPARE(m_prompts->box({QString(), u"A text."_s, QString(), style}), answer);
        QCOMPARE(closes, hasCloseBox);
    }
}

void TestQtPrompts::whatElseIsKnownStandsBelowTheText()
{
    for (const QString &details : {QString(), u"535 <b>no</b>"_s, QString(5000, u'x')}) {
        QString text;
        QString below;
        bool plain = true;
        meet<QMessageBox>([&](QMessageBox *box) {
            text = box->text();
            below = box->informativeText();
            if (const auto *label = box->findChild<QLabel *>(u"qt_msgbox_informativelabel"_s)) {
                plain = label->textFormat() == Qt::PlainText;
            }
            box->defaultButton()->click();
        });
        m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 48, details});
        QCOMPARE(text, u"A text."_s);
        QCOMPARE(below, details.size() > 600 ? QString(600, u'x') + QChar(0x2026) : details);
        QVERIFY(plain);
    }
}

void TestQtPrompts::anInputBoxHasRoomForANameWithItsAddress()
{
    const QString usual = u"Ann-Sophie Lindqvist <annsophie.lindqvist@company.example>"_s;
    const QString longer = u"The whole of the sales department <sales.department.of.all@the.company.example.com>"_s;
    for (const QString &offered : {QString(), usual, longer}) {
        int room = 0;
        int needed = 0;
        meet<QInputDialog>([&](QInputDialog *dialog) {
            const auto *box = dialog->findChild<QLineEdit *>();
            room = box->width();
            needed = box->fontMetrics().horizontalAdvance(offered.isEmpty() ? usual : offered);
            QVERIFY(dialog->width() <= dialog->screen()->availableSize().width());
            dialog->reject();
        });
        m_prompts->input({u"KEY"_s, u"Who?"_s, offered});
        QVERIFY2(room >= qMin(needed, 400), qPrintable(QString::number(room) + u" of "_s + QString::number(needed)));
    }
}

QTEST_MAIN(TestQtPrompts)
#include "test_qtprompts.moc"
