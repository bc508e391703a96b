#pragma once

#include "core/globals.h"

#include <QDateTime>
#include <QString>

namespace corvane {

/// One run's part of the log. The path is fixed when the run begins, so that a run across a month's end stays in one
/// file. A write that fails never stops the run.
class SendingLog {
public:
    SendingLog(const ApplicationGlobals &globals, const QDateTime &moment);

    void divider() const;
    /// A line of a heading, ": " and a value; a value with line breaks spreads over several lines of the file.
    void entry(QStringView heading, const QString &value) const;
    /// A line as it stands.
    void line(const QString &text) const;
    /// The heading and the present moment, "MMM DD YYYY HH:MM:SS" with the month of the user's locale and the digits 0
    /// to 9.
    void moment(QStringView heading) const;

private:
    const ApplicationGlobals &m_globals;
    QString m_path;
};

/// A date as the log and the mail tell it: week-day, ", ", day, month name, year, time, with English names.
[[nodiscard]] QString mailDateText(const ApplicationGlobals &globals, const QDate &date, const QTime &time);

} // namespace corvane
