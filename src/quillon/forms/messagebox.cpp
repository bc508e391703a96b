#include "quillon/forms/messagebox.h"

#include "quillon/fault.h"

#include <QCloseEvent>
#include <QFrame>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int buttonBits = 0x0F;
constexpr int iconBits = 0x70;
constexpr qsizetype longestDetails = 600;

QMessageBox::StandardButtons buttonsOf(int style)
{
    switch (style & buttonBits) {
    case 0:
        return QMessageBox::Ok;
    case 1:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case 3:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case 4:
        return QMessageBox::Yes | QMessageBox::No;
    default:
        reportFault(u"no message box has the style "_s + QString::number(style));
        return QMessageBox::Ok;
    }
}

QMessageBox::Icon iconOf(int style)
{
    switch (style & iconBits) {
    case 16:
        return QMessageBox::Critical;
    case 32:
        return QMessageBox::Question;
    case 48:
        return QMessageBox::Warning;
    case 64:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

} // namespace

MessageBox::MessageBox(const QString &text, int style, QWidget *parent)
    : QMessageBox(iconOf(style), QGuiApplication::applicationDisplayName(), text, buttonsOf(style), parent)
{
    // A value such as "A <a@b.c>" is no mark-up.
    setTextFormat(Qt::PlainText);
    setDefaultButton(standardButtons().testFlag(QMessageBox::Yes) ? QMessageBox::Yes : QMessageBox::Ok);
    setWindowFlag(Qt::WindowCloseButtonHint, escapes());
    scrollLongText();
}

void MessageBox::setDetails(const QString &details)
{
    const bool isLong = details.size() > longestDetails;
    setInformativeText(isLong ? details.first(longestDetails) + QChar(0x2026) : details);
    if (auto *label = findChild<QLabel *>(u"qt_msgbox_informativelabel"_s)) {
        label->setTextFormat(Qt::PlainText);
    }
}

BoxAnswer MessageBox::answerOf(int button)
{
    switch (button) {
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::No:
        return BoxAnswer::No;
    case QMessageBox::Cancel:
        return BoxAnswer::Cancel;
    default:
        return BoxAnswer::Ok;
    }
}

bool MessageBox::escapes() const
{
    return buttons().size() == 1 || standardButtons().testFlag(QMessageBox::Cancel);
}

void MessageBox::keyPressEvent(QKeyEvent *event)
{
    // The box would take No for its escape button.
    if (event->matches(QKeySequence::Cancel) && !escapes()) {
        event->accept();
        return;
    }
    QMessageBox::keyPressEvent(event);
}

void MessageBox::closeEvent(QCloseEvent *event)
{
    if (!escapes()) {
        event->ignore();
        return;
    }
    QMessageBox::closeEvent(event);
}

QSize MessageBox::textLimit(const QSize &room)
{
    return {qMin(room.width() / 2, 640), room.height() / 2};
}

void MessageBox::scrollLongText()
{
    auto *label = findChild<QLabel *>(u"qt_msgbox_label"_s);
    auto *grid = qobject_cast<QGridLayout *>(layout());
    const QScreen *onScreen = screen();
    if (!label || !grid || !onScreen) {
        return;
    }
    const QSize limit = textLimit(onScreen->availableSize());
    const QRect asked = label->fontMetrics().boundingRect(QRect(0, 0, limit.width(), 0),
                                                          Qt::TextWordWrap | Qt::TextExpandTabs, label->text());
    if (asked.width() <= limit.width() && asked.height() <= limit.height()) {
        return;
    }
    const int place = grid->indexOf(label);
    if (place < 0) {
        return;
    }
    int row = 0;
    int column = 0;
    int rows = 1;
    int columns = 1;
    grid->getItemPosition(place, &row, &column, &rows, &columns);
    grid->removeWidget(label);
    auto *area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(label);
    const int bar = area->verticalScrollBar()->sizeHint().width();
    area->setFixedSize(limit.width() + bar, qMin(limit.height(), asked.height() + bar + label->fontMetrics().height()));
    grid->addWidget(area, row, column, rows, columns);
}

} // namespace quillon
