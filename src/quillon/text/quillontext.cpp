#include "quillon/text/quillontext.h"

#include "quillon/fault.h"
#include "quillon/mail/encodinglist.h"

#include <array>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr std::array<const char16_t *, 7> weekdays = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
constexpr std::array<const char16_t *, 12> months = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                                     u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};

template <std::size_t N> QString name(const std::array<const char16_t *, N> &names, int number)
{
    if (number < 1 || number > static_cast<int>(N)) {
        reportFault(u"no day or month has the number "_s + QString::number(number));
        return {};
    }
    return QString::fromUtf16(names[static_cast<std::size_t>(number) - 1]);
}

} // namespace

QString QuillonText::GetEncodingList() const
{
    return encodingList();
}

QString QuillonText::ColorToHtml(long color) const
{
    const auto part = [color](int shift) {
        return QString::number((color >> shift) & 0xFF, 16).rightJustified(2, u'0');
    };
    return (u'#' + part(0) + part(8) + part(16)).toUpper();
}

bool QuillonText::IsInList(const QString &value, const QStringList &list) const
{
    return list.contains(value);
}

QString QuillonText::WeekdayText(int number) const
{
    return name(weekdays, number);
}

QString QuillonText::MonthText(int number) const
{
    return name(months, number);
}

} // namespace quillon
