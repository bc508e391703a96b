#include "records/forms/numberfields.h"

#include "core/texts.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QRegularExpressionValidator>
#include <QTabWidget>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// A key that would write something other than a digit.
bool writesNoDigit(const QKeyEvent *key)
{
    const QString text = key->text();
    return !text.isEmpty() && text.front().isPrint() && (text.front() < u'0' || text.front() > u'9');
}

/// Brings the tab of a control to the front, where the focus had gone to another tab.
void showPageOf(QWidget *control)
{
    for (QWidget *page = control; page; page = page->parentWidget()) {
        QWidget *stack = page->parentWidget();
        auto *tabs = stack ? qobject_cast<QTabWidget *>(stack->parentWidget()) : nullptr;
        if (tabs && tabs->indexOf(page) >= 0) {
            tabs->setCurrentWidget(page);
        }
    }
}

} // namespace

void NumberFields::add(QLineEdit *box, const char16_t *message, std::function<bool(double value)> isFault)
{
    box->setValidator(new QRegularExpressionValidator(QRegularExpression(u"[0-9]*"_s), box));
    box->installEventFilter(this);
    m_fields.push_back({box, message, std::move(isFault)});
}

bool NumberFields::eventFilter(QObject *watched, QEvent *event)
{
    // The validator would let everything pass once the box shows a stored text that is no number.
    if (event->type() == QEvent::KeyPress) {
        return writesNoDigit(static_cast<QKeyEvent *>(event));
    }
    if (event->type() != QEvent::FocusOut || m_checking) {
        return false;
    }
    const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) {
        return false; // the box has the focus again when the window has
    }
    for (const Field &field : m_fields) {
        if (field.box == watched) {
            // Once the focus has arrived where it goes: a box in the middle of its move would upset it.
            QMetaObject::invokeMethod(
                this, [this, field] { check(field); }, Qt::QueuedConnection);
        }
    }
    return false;
}

void NumberFields::check(const Field &field)
{
    if (m_checking || field.box->text().isEmpty() || !field.isFault(valueOf(field.box))) {
        return;
    }
    // Giving the focus back takes it from another box, which is not checked for that.
    m_checking = true;
    showMessage(QString::fromUtf16(field.message), quillon::InformationBox);
    showPageOf(field.box);
    field.box->setFocus();
    m_checking = false;
}

} // namespace corvane
