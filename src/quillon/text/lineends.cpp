#include "quillon/text/lineends.h"

using namespace Qt::StringLiterals;

namespace quillon {

QString withCrLf(const QString &text)
{
    QString result;
    result.reserve(text.size() + text.size() / 32);
    qsizetype begin = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c != u'\r' && c != u'\n') {
            continue;
        }
        result += QStringView(text).sliced(begin, i - begin);
        result += u"\r\n";
        if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
            ++i;
        }
        begin = i + 1;
    }
    return result += QStringView(text).sliced(begin);
}

QString onOneLine(QString text)
{
    text.replace("\r\n"_L1, " "_L1);
    for (QChar &letter : text) {
        if (letter == u'\r' || letter == u'\n' || letter == QChar::LineSeparator ||
            letter == QChar::ParagraphSeparator) {
            letter = u' ';
        }
    }
    return text;
}

QString withoutControls(const QString &text)
{
    QString clean = onOneLine(text);
    for (QChar &letter : clean) {
        if (letter.category() == QChar::Other_Control) {
            letter = u' ';
        }
    }
    return clean;
}

} // namespace quillon
