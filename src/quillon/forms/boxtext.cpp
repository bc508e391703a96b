#include "quillon/forms/boxtext.h"

#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

namespace quillon {

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

} // namespace quillon
