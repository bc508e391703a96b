#pragma once

#include "quillon/mail/mailmessage.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

#include <memory>

namespace quillon {

/// A stretch of an encoded mail: literal octets, or, when @ref File is set, a file whose Base64 form (lines of 76
/// characters, each ended by CR LF) stands here and is made only when its turn comes.
struct MailStretch {
    QByteArray Bytes;
    QString File;
    qint64 FileSize = 0; ///< octets of the file when the mail was encoded; a file that then differs is an error
};

/// A mail ready for the wire: headers and body, CR LF line ends, 7-bit octets, not dot-stuffed, without the final dot.
struct EncodedMail {
    QList<MailStretch> Stretches;
    qint64 Size = 0;            ///< octets of all stretches together, exact, for the SIZE parameter (RFC 1870)
    bool NeedsSmtpUtf8 = false; ///< a header holds an address that only SMTPUTF8 can carry (RFC 6531)
    QString ErrorText; ///< not empty: the mail could not be encoded, and this sentence says why (names the file)
};

/// What stays the same between the mails of one run (encoded attachments' sizes and types, related parts), kept so
/// that the next mail does not work it out again. Hold one per run and hand it to every call.
class MailEncoderCache;

/// Writes mails in MIME form (RFC 5322, 2045 to 2047, 2183, 2231, 2387, 3676 not used).
class MailEncoder {
public:
    MailEncoder();
    ~MailEncoder();
    MailEncoder(const MailEncoder &) = delete;
    MailEncoder &operator=(const MailEncoder &) = delete;

    /// Encodes @p message. @p now stamps the Date header when the message has none, and gives its zone when it has.
    /// Never fails half-way: on a fault the result holds only ErrorText.
    EncodedMail encode(const MailMessage &message, const QDateTime &now);

private:
    std::unique_ptr<MailEncoderCache> m_cache;
};

} // namespace quillon
