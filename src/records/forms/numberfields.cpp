#include "records/forms/numberfields.h"

#include "core/texts.h"
#include "quillon/forms/leavechecks.h"

#include <QKeyEvent>
#include <QRegularExpressionValidator>

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

} // namespace

NumberFields::NumberFields(QWidget *form) : QObject(form), m_checks(new quillon::LeaveChecks(form)) {}

void NumberFields::add(QLineEdit *box, const char16_t *message, std::function<bool(double value)> isFault)
{
    box->setValidator(new QRegularExpressionValidator(QRegularExpression(u"[0-9]*"_s), box));
    box->installEventFilter(this);
    m_checks->add(box, [box, message, isFault = std::move(isFault)] {
        const bool passes = box->text().isEmpty() || !isFault(valueOf(box));
        if (!passes) {
            showMessage(QString::fromUtf16(message), quillon::InformationBox);
        }
        return passes;
    });
}

bool NumberFields::eventFilter(QObject *watched, QEvent *event)
{
    Q_UNUSED(watched)
    // The validator would let everything pass once the box shows a stored text that is no number.
    return event->type() == QEvent::KeyPress && writesNoDigit(static_cast<QKeyEvent *>(event));
}

} // namespace corvane
