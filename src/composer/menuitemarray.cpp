#include "composer/menuitemarray.h"

#include <QAction>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace corvane {

QString itemCaption(const QAction *item)
{
    if (item->data().isValid()) {
        return item->data().toString();
    }
    QString caption = item->text().section(u'\t', 0, 0);
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption.at(i) == u'&') {
            caption.remove(i, 1); // the second of a pair is the sign itself and is stepped over
        }
    }
    return caption;
}

QList<QAction *> itemArray(const QMenu *menu, const QAction *base)
{
    const QString prefix = base->objectName().section(u'(', 0, 0) + u'(';
    QList<QAction *> items;
    for (QAction *item : menu->actions()) {
        if (item != base && item->objectName().startsWith(prefix)) {
            items.append(item);
        }
    }
    return items;
}

void rebuildItemArray(QMenu *menu, QAction *base, const QStringList &captions)
{
    qDeleteAll(itemArray(menu, base));
    const QString prefix = base->objectName().section(u'(', 0, 0);
    for (qsizetype i = 0; i < captions.size(); ++i) {
        QString shown = captions.at(i);
        auto *item = new QAction(shown.replace(u"&"_s, u"&&"_s), menu);
        item->setObjectName(u"%1(%2)"_s.arg(prefix).arg(i + 1));
        item->setData(captions.at(i));
        menu->addAction(item);
    }
    base->setVisible(captions.isEmpty());
}

} // namespace corvane
