#pragma once

#include "quillon/mail/smtpreply.h"

namespace quillon {

/// What the server offers in its answer to EHLO (RFC 5321, 4.1.1.1). All false and empty after HELO.
struct SmtpExtensions {
    bool StartTls = false;   ///< RFC 3207
    bool Pipelining = false; ///< RFC 2920
    bool SmtpUtf8 = false;   ///< RFC 6531
    bool Size = false;       ///< RFC 1870: the SIZE parameter may be given
    qint64 MaxSize = 0;      ///< octets; 0: no limit told
    QList<QByteArray> Auth;  ///< RFC 4954: mechanisms in upper case

    static SmtpExtensions fromEhlo(const SmtpReply &reply);
};

} // namespace quillon
