#include "quillon/forms/accessiblenames.h"

#include <QAbstractButton>
#include <QHash>
#include <QLabel>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

QString plain(QString caption)
{
    static const QRegularExpression mark(u"&(.)"_s);
    caption.replace(mark, u"\\1"_s);
    static const QRegularExpression end(u"[:.\\s]+$"_s);
    return caption.remove(end);
}

} // namespace

void setAccessibleNames(QWidget *form)
{
    QHash<const QWidget *, QString> labels;
    const QList<QLabel *> all = form->findChildren<QLabel *>();
    for (const QLabel *label : all) {
        if (label->buddy()) {
            labels.insert(label->buddy(), plain(label->text()));
        }
    }
    const QList<QWidget *> widgets = form->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (widget->toolTip().isEmpty() || !widget->accessibleName().isEmpty()) {
            continue;
        }
        const auto *button = qobject_cast<QAbstractButton *>(widget);
        const QString tip = plain(widget->toolTip());
        if (labels.contains(widget)) {
            widget->setAccessibleName(labels.value(widget));
        } else if (button && !button->text().isEmpty()) {
            // "Actual" alone would not tell which of them.
            widget->setAccessibleName(plain(button->text()) + u": "_s + tip);
        } else {
            widget->setAccessibleName(tip);
        }
    }
}

} // namespace quillon
