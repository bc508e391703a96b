#include "composer/controltext.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace corvane {

QString withCrLf(QString text)
{
    text.replace(u"\r\n"_s, u"\n"_s);
    text.replace(u'\r', u'\n');
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text.replace(u"\n"_s, u"\r\n"_s);
}

QString textOf(const QPlainTextEdit *box)
{
    // Not toPlainText(): it turns no-break spaces into blanks.
    return withCrLf(box->document()->toRawText());
}

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
