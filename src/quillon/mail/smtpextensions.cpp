#include "quillon/mail/smtpextensions.h"

namespace quillon {

SmtpExtensions SmtpExtensions::fromEhlo(const SmtpReply &reply)
{
    SmtpExtensions found;
    // The first line is the server's greeting, not an extension.
    for (qsizetype i = 1; i < reply.Lines.size(); ++i) {
        // "AUTH=LOGIN" is how servers from before RFC 2554 wrote it, and some still do beside the right form.
        QByteArray line = reply.Lines.at(i).simplified().toUpper();
        if (line.startsWith("AUTH=")) {
            line[4] = ' ';
        }
        QList<QByteArray> words = line.split(' ');
        const QByteArray keyword = words.takeFirst();
        if (keyword == "STARTTLS") {
            found.StartTls = true;
        } else if (keyword == "PIPELINING") {
            found.Pipelining = true;
        } else if (keyword == "SMTPUTF8") {
            found.SmtpUtf8 = true;
        } else if (keyword == "SIZE") {
            found.Size = true;
            found.MaxSize = words.isEmpty() ? 0 : qMax(words.first().toLongLong(), 0);
        } else if (keyword == "AUTH") {
            for (const QByteArray &word : std::as_const(words)) {
                if (!word.isEmpty() && !found.Auth.contains(word)) {
                    found.Auth += word;
                }
            }
        }
    }
    return found;
}

} // namespace quillon
