#include "quillon/mail/mailheaders.h"

#include "quillon/mail/headerfield.h"
#include "quillon/mail/mailtexts.h"

#include <QList>
#include <QRandomGenerator>
#include <QStringList>
#include <QTimeZone>

#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr std::array weekdays{"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
constexpr std::array<const char *, 12> months{"january", "february", "march",     "april",   "may",      "june",
                                              "july",    "august",   "september", "october", "november", "december"};

/// 1 to 12, or 0 when @p name is no English month, in full or in at least three letters.
int monthNumber(const QString &name)
{
    const QByteArray lower = name.toLower().toLatin1();
    for (size_t i = 0; i < months.size(); ++i) {
        if (lower.size() >= 3 && QByteArrayView(months[i]).startsWith(lower)) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

QTime timeOf(const QString &text)
{
    const QStringList fields = text.split(u':');
    if (fields.size() < 2 || fields.size() > 3) {
        return {};
    }
    std::array<int, 3> values{0, 0, 0};
    for (qsizetype i = 0; i < fields.size(); ++i) {
        bool valid = false;
        values[static_cast<size_t>(i)] = fields[i].toInt(&valid);
        if (!valid || fields[i].size() > 2) {
            return {};
        }
    }
    return {values[0], values[1], values[2]};
}

/// The moment @p seconds after 1970 as it is shown in the zone of @p now.
QDateTime shownIn(const QDateTime &now, qint64 seconds)
{
    switch (now.timeSpec()) {
    case Qt::OffsetFromUTC:
        return QDateTime::fromSecsSinceEpoch(seconds, Qt::OffsetFromUTC, now.offsetFromUtc());
    case Qt::TimeZone:
        return QDateTime::fromSecsSinceEpoch(seconds, now.timeZone());
    case Qt::UTC:
        return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    case Qt::LocalTime:
        break;
    }
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::LocalTime);
}

/// The moment at which the clocks in the zone of @p now show @p date and @p time: the earlier one where they show it
/// twice, and where they leave it out the first one after the gap. What the date's own class makes of both depends on
/// its version and on the system.
QDateTime inZoneOf(const QDateTime &now, QDate date, QTime time)
{
    constexpr qint64 day = 24 * 60 * 60; // farther than any zone is from UTC, nearer than two changes of the clocks
    const qint64 shown = QDateTime(date, time, Qt::UTC).toSecsSinceEpoch();
    const auto offset = [&now](qint64 moment) { return shownIn(now, moment).offsetFromUtc(); };
    const int before = offset(shown - day);
    const int after = offset(shown + day);
    for (const int candidate : {before, after}) {
        if (offset(shown - candidate) == candidate) {
            return shownIn(now, shown - candidate);
        }
    }
    qint64 early = shown - day;
    qint64 late = shown + day;
    while (late - early > 1) {
        const qint64 middle = early + (late - early) / 2;
        (offset(middle) == before ? early : late) = middle;
    }
    return shownIn(now, late);
}

std::optional<QDateTime> parsedDate(const QString &text, const QDateTime &now)
{
    QString rest = headerText(text).simplified();
    if (const qsizetype comma = rest.indexOf(u','); comma >= 0) {
        rest = rest.mid(comma + 1).trimmed(); // the weekday follows from the date
    }
    const QStringList fields = rest.split(u' ');
    if (fields.size() != 4) {
        return std::nullopt;
    }
    const QDate day(fields[2].toInt(), monthNumber(fields[1]), fields[0].toInt());
    const QTime time = timeOf(fields[3]);
    if (fields[2].size() != 4 || !day.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    return inZoneOf(now, day, time);
}

QByteArray twoDigits(int number)
{
    return QByteArray::number(number).rightJustified(2, '0');
}

QByteArray dateText(const QDateTime &moment)
{
    const QDate day = moment.date();
    const QTime time = moment.time();
    const int minutes = moment.offsetFromUtc() / 60;
    const int distance = minutes < 0 ? -minutes : minutes;
    QByteArray month = QByteArray(months[static_cast<size_t>(day.month() - 1)]).left(3);
    month[0] = static_cast<char>(month[0] - 'a' + 'A');
    return QByteArray(weekdays[static_cast<size_t>(day.dayOfWeek() - 1)]) + ", " + QByteArray::number(day.day()) + ' ' +
           month + ' ' + QByteArray::number(day.year()).rightJustified(4, '0') + ' ' + twoDigits(time.hour()) + ':' +
           twoDigits(time.minute()) + ':' + twoDigits(time.second()) + (minutes < 0 ? " -" : " +") +
           twoDigits(distance / 60) + twoDigits(distance % 60);
}

/// Turns addresses into fields and remembers what went wrong.
class AddressFields {
public:
    explicit AddressFields(MailHeaders &headers) : m_headers(headers) {}

    /// Appends the field unless no entry has an address.
    void add(QByteArrayView name, const QList<MailAddress> &entries)
    {
        QList<HeaderMailbox> mailboxes;
        mailboxes.reserve(entries.size());
        for (const MailAddress &entry : entries) {
            const QString address = entry.Address.trimmed();
            if (address.isEmpty()) {
                continue;
            }
            const std::optional<AddressSpec> spec = addressSpec(address);
            if (!spec) {
                m_headers.ErrorText = say(mailtexts::addressInvalid, headerText(address));
                return;
            }
            m_headers.NeedsSmtpUtf8 = m_headers.NeedsSmtpUtf8 || spec->NeedsSmtpUtf8;
            mailboxes.append({entry.Name, spec->Octets});
        }
        if (!mailboxes.isEmpty()) {
            appendAddressField(m_headers.Octets, name, mailboxes);
        }
    }

private:
    MailHeaders &m_headers;
};

QList<MailAddress> entriesOf(const MailAddressList &list)
{
    return {list.begin(), list.end()};
}

void appendPriority(QByteArray &out, const QString &priority)
{
    if (priority == u"2"_s) {
        out += "X-Priority: 2 (High)\r\nX-MSMail-Priority: High\r\nImportance: high\r\n";
    } else if (priority == u"4"_s) {
        out += "X-Priority: 4 (Low)\r\nX-MSMail-Priority: Low\r\nImportance: low\r\n";
    }
}

} // namespace

QByteArray mailDate(const QString &date, const QDateTime &now)
{
    if (headerText(date).trimmed().isEmpty()) {
        return dateText(now);
    }
    const std::optional<QDateTime> chosen = parsedDate(date, now);
    return chosen ? dateText(*chosen) : QByteArray();
}

QByteArray randomDigits(qsizetype count)
{
    QByteArray octets(count, Qt::Uninitialized);
    QRandomGenerator *const generator = QRandomGenerator::global();
    for (char &octet : octets) {
        octet = static_cast<char>(generator->generate() & 0xFFU);
    }
    return octets.toHex();
}

MailHeaders mailHeaders(const MailMessage &message, const QDateTime &now)
{
    MailHeaders headers;
    QByteArray &out = headers.Octets;
    AddressFields addresses(headers);
    const QByteArray date = mailDate(message.Date, now);
    if (date.isEmpty()) {
        headers.ErrorText = say(mailtexts::dateInvalid, headerText(message.Date));
        return headers;
    }
    out += "Date: " + date + "\r\n";
    const std::optional<AddressSpec> sender = addressSpec(message.From.Address.trimmed());
    if (!sender) {
        headers.ErrorText = say(mailtexts::fromInvalid, headerText(message.From.Address));
        return headers;
    }
    headers.SenderDomain = sender->Octets.mid(sender->Octets.lastIndexOf('@') + 1);
    addresses.add("From", {message.From});
    addresses.add("Reply-To", {message.ReplyTo});
    const qsizetype beforeRecipients = out.size();
    addresses.add("To", entriesOf(message.To));
    addresses.add("Cc", entriesOf(message.CC));
    if (out.size() == beforeRecipients) {
        out += "To: undisclosed-recipients:;\r\n";
    }
    appendTextField(out, "Subject", message.Subject);
    out += "Message-ID: <" + randomDigits(16) + '@' + headers.SenderDomain + ">\r\n";
    appendPriority(out, message.Priority);
    if (message.RequestReceipt) {
        addresses.add("Disposition-Notification-To", {message.ReceiptTo});
    }
    out += "MIME-Version: 1.0\r\n";
    return headers;
}

} // namespace quillon
