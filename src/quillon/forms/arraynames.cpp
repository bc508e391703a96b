#include "quillon/forms/arraynames.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace quillon {

void adoptArrayNames(QWidget *form)
{
    static const QRegularExpression mangled(u"^(\\w+?)_(\\d+)_$"_s);
    const QList<QObject *> children = form->findChildren<QObject *>();
    for (QObject *child : children) {
        const QRegularExpressionMatch match = mangled.match(child->objectName());
        if (match.hasMatch()) {
            child->setObjectName(match.captured(1) + u'(' + match.captured(2) + u')');
        }
    }
}

} // namespace quillon
