#pragma once

#include "quillon/mail/encodedmail.h"
#include "quillon/mail/smtpextensions.h"

#include <QStringList>

namespace quillon {

/// A mail with the addresses it goes to; what stands in its headers plays no part here.
struct SmtpMail {
    EncodedMail Content;
    QString From;
    QStringList To; ///< as many as there are; equal ones are named to the server once
};

/// What went wrong, for the user.
struct SmtpFailure {
    int Code = 0; ///< the server's reply code, 0 when it is not the server who said so
    QString Text; ///< one sentence
};

/// The MAIL and RCPT commands of a mail (RFC 5321, 3.3), made and checked before anything is sent.
struct SmtpEnvelope {
    QList<QByteArray> Commands; ///< MAIL first, then one RCPT for each recipient; without line ends
    QStringList Recipients;     ///< of each RCPT, for messages
    std::optional<SmtpFailure> Failure;

    static SmtpEnvelope plan(const SmtpMail &mail, const SmtpExtensions &extensions);
};

/// @p host in the form that goes over the wire and that certificates name: ASCII (IDNA), without the brackets of an
/// IPv6 literal. Empty if it is no host name.
[[nodiscard]] QString asciiHost(const QString &host);

} // namespace quillon
