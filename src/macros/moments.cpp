#include "macros/moments.h"

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
    {u"{Long Date}", true, false, QLocale::LongFormat},
    {u"{Short Date}", true, false, QLocale::ShortFormat},
    {u"{Long Time}", false, true, QLocale::LongFormat},
    {u"{Short Time}", false, true, QLocale::ShortFormat},
    {u"{Long Date and Time}", true, true, QLocale::LongFormat},
    {u"{Short Date and Time}", true, true, QLocale::ShortFormat},
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
