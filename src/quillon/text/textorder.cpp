#include "quillon/text/textorder.h"

namespace quillon {

TextOrder::TextOrder(const QLocale &locale)
    : m_collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale)
{
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

int TextOrder::compare(const QString &left, const QString &right) const
{
    return m_collator.compare(left, right);
}

int TextOrder::compareNumbers(const QString &left, const QString &right) const
{
    bool isNumber = false;
    const qulonglong leftNumber = left.trimmed().toULongLong(&isNumber);
    bool isNumberToo = false;
    const qulonglong rightNumber = right.trimmed().toULongLong(&isNumberToo);
    if (isNumber && isNumberToo) {
        return leftNumber < rightNumber ? -1 : leftNumber > rightNumber ? 1 : 0;
    }
    if (isNumber != isNumberToo) {
        return isNumber ? -1 : 1;
    }
    return compare(left, right);
}

} // namespace quillon
