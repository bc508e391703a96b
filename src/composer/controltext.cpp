#include "composer/controltext.h"

#include <QComboBox>
#include <QLineEdit>
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
    if (QLineEdit *line = box->lineEdit(); line && !line->hasFocus()) {
        line->home(false); // of a text that is too long the name is seen, not the end of the address
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
