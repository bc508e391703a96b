#include "composer/controltext.h"

#include <QComboBox>
#include <QSignalBlocker>

namespace corvane {

void setComboText(QComboBox *box, const QString &text)
{
    const bool changed = box->currentText() != text;
    {
        const QSignalBlocker quiet(box);
        box->setCurrentIndex(box->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
        box->setEditText(text);
    }
    if (changed) {
        Q_EMIT box->editTextChanged(text);
    }
}

void setComboList(QComboBox *box, const QStringList &entries)
{
    const QSignalBlocker quiet(box);
    const QString text = box->currentText();
    box->clear();
    box->addItems(entries);
    setComboText(box, text);
}

} // namespace corvane
