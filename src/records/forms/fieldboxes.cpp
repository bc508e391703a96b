#include "records/forms/fieldboxes.h"

#include "core/texts.h"
#include "quillon/text/lineends.h"

#include <QAbstractButton>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr quint64 highestPort = 65535;

} // namespace

void keepOneLine(QLineEdit *box)
{
    QObject::connect(box, &QLineEdit::textChanged, box, [box] {
        const QString text = box->text();
        const QString clean = quillon::withoutControls(text);
        if (clean != text) {
            const auto caret = static_cast<int>(quillon::withoutControls(text.left(box->cursorPosition())).size());
            box->setText(clean);
            box->setCursorPosition(caret);
        }
    });
}

quint64 portValue(const QString &text)
{
    const QString digits = text.trimmed();
    for (const QChar digit : digits) {
        if (digit < u'0' || digit > u'9') {
            return 0;
        }
    }
    return digits.toULongLong(); // more digits than a number can have give 0, too
}

void limitPort(QLineEdit *box, const QString &putBack)
{
    // The text is asked for anew: another listener may have changed it since the signal was given.
    QObject::connect(box, &QLineEdit::textChanged, box, [box, putBack] {
        const QString text = box->text();
        const quint64 port = portValue(text);
        if (!text.isEmpty() && (port < 1 || port > highestPort)) {
            showMessage(u"PORT_LIMIT"_s, quillon::InformationBox);
            box->setText(putBack);
            box->selectAll();
        }
    });
}

void enableWith(QAbstractButton *tick, std::initializer_list<QWidget *> controls)
{
    for (QWidget *control : controls) {
        control->setEnabled(tick->isChecked());
        QObject::connect(tick, &QAbstractButton::toggled, control, &QWidget::setEnabled);
    }
}

} // namespace corvane
