#include "macros/moments.h"

#include "macros/placeholders.h"
#include "quillon/system/platform.h"

#include <QLocale>

namespace corvane {

namespace {

struct Moment {
    const char16_t *placeholder;
    bool date;
    bool time;
    QLocale::FormatType format;
};

constexpr Moment moments[] = {
    {longDate, true, false, QLocale::LongFormat},       {shortDate, true, false, QLocale::ShortFormat},
    {longTime, false, true, QLocale::LongFormat},       {shortTime, false, true, QLocale::ShortFormat},
    {longDateAndTime, true, true, QLocale::LongFormat}, {shortDateAndTime, true, true, QLocale::ShortFormat},
};

QString textOf(const Moment &moment)
{
    const QDateTime now = quillon::systemClock().now();
    const QLocale locale = QLocale::system();
    QStringList parts;
    if (moment.date) {
        parts.append(locale.toString(now.date(), moment.format));
    }
    if (moment.time) {
        parts.append(locale.toString(now.time(), moment.format));
    }
    return parts.join(u' ');
}

} // namespace

std::optional<QString> momentText(QStringView placeholder)
{
    for (const Moment &moment : moments) {
        if (placeholder == QStringView(moment.placeholder)) {
            return textOf(moment);
        }
    }
    return std::nullopt;
}

} // namespace corvane
