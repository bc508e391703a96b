#include "records/forms/fieldboxes.h"

#include "core/texts.h"

#include <QAbstractButton>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr quint64 highestPort = 65535;

bool breaksLine(QChar letter)
{
    const QChar::Category category = letter.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

/// The text on one line; a carriage return with its line feed is one line end.
QString onOneLine(QString text)
{
    text.replace("\r\n"_L1, " "_L1);
    for (QChar &letter : text) {
        if (breaksLine(letter)) {
            letter = u' ';
        }
    }
    return text;
}

} // namespace

void keepOneLine(QLineEdit *box)
{
    QObject::connect(box, &QLineEdit::textChanged, box, [box] {
        const QString text = box->text();
        const QString clean = onOneLine(text);
        if (clean != text) {
            const auto caret = static_cast<int>(onOneLine(text.left(box->cursorPosition())).size());
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
