#include "quillon/forms/boxtext.h"

#include "quillon/text/lineends.h"

#include <QPlainTextEdit>

namespace quillon {

QString textOf(const QPlainTextEdit *box)
{
    // Not toPlainText(): it turns no-break spaces into blanks. A document keeps its line ends as separators.
    QString text = box->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
    return withCrLf(text);
}

} // namespace quillon
