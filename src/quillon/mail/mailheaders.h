#pragma once

#include "quillon/mail/mailmessage.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace quillon {

/// The headers of a message down to MIME-Version, without those of its content.
struct MailHeaders {
    QByteArray Octets;
    QByteArray SenderDomain;    ///< of the From address, in its ASCII form
    bool NeedsSmtpUtf8 = false; ///< see EncodedMail
    QString ErrorText;          ///< not empty: there are no headers, and this sentence says why
};

/// The headers of @p message. Recipients of BCC are not named; without any in To and CC the mail is addressed to
/// "undisclosed-recipients:;", since filters count a missing To against a mail. Fails on an address that is none, and
/// on a date that is none: nobody's chosen date is replaced by another in silence.
[[nodiscard]] MailHeaders mailHeaders(const MailMessage &message, const QDateTime &now);

/// The text for the Date header (RFC 5322): @p date, such as "Sat, 21 November 2026 14:05:09", with names full or in
/// three letters, in the zone of @p now; the moment @p now when @p date is empty, and empty when it is no date. A time
/// that the clocks show twice is the earlier one, one that they leave out is the first one after that.
[[nodiscard]] QByteArray mailDate(const QString &date, const QDateTime &now);

/// @p count random octets in hexadecimal digits.
[[nodiscard]] QByteArray randomDigits(qsizetype count);

} // namespace quillon
