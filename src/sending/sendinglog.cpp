#include "sending/sendinglog.h"

#include "core/datatree.h"
#include "quillon/system/platform.h"
#include "sending/sendingtexts.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {
constexpr int dividerLength = 75;
}

SendingLog::SendingLog(const ApplicationGlobals &globals, const QDateTime &moment)
    : m_globals(globals), m_path(logPathAt(globals, moment))
{
}

void SendingLog::divider() const
{
    line(QString(dividerLength, u'-'));
}

void SendingLog::entry(QStringView heading, const QString &value) const
{
    line(heading.toString() + u": "_s + value);
}

void SendingLog::line(const QString &text) const
{
    m_globals.lines.AppendLine(m_path, text);
}

void SendingLog::moment(QStringView heading) const
{
    const QDateTime now = quillon::systemClock().now();
    // The month is named in the user's language; the digits are 0 to 9 in every one, as in all other lines.
    entry(heading, QLocale::system().toString(now.date(), QString::fromUtf16(logtexts::monthFormat)) + u' ' +
                       QLocale::c().toString(now, QString::fromUtf16(logtexts::momentFormat)));
}

QString mailDateText(const ApplicationGlobals &globals, const QDate &date, const QTime &time)
{
    const int sundayIsOne = date.dayOfWeek() % 7 + 1;
    return globals.text.WeekdayText(sundayIsOne) + u", "_s + QString::number(date.day()) + u' ' +
           globals.text.MonthText(date.month()) + u' ' + QString::number(date.year()).rightJustified(4, u'0') + u' ' +
           QLocale::c().toString(time, u"HH:mm:ss"_s);
}

} // namespace corvane
