#pragma once

#include "quillon/mail/encodedmail.h"

#include <QFile>

#include <memory>

namespace quillon {

/// Gives a mail piece by piece as it goes over the wire after DATA: dot-stuffed (RFC 5321, 4.5.2), with files turned
/// into Base64 when their turn comes, and with the final dot. Needs memory for one piece only.
class SmtpBody {
public:
    explicit SmtpBody(const EncodedMail &mail) : m_stretches(mail.Stretches), m_total(mail.Size) {}

    /// The next piece, some 80 KB at most. Empty after the end, or when a file could not be given as promised.
    QByteArray next();

    /// Whether the final dot has been given.
    [[nodiscard]] bool isAtEnd() const { return m_atEnd; }

    /// Empty, or which file could not be read or has changed since the mail was made, as the end of a sentence.
    [[nodiscard]] QString fault() const { return m_fault; }

    /// Octets of the mail given so far, 0 to 100 percent of its size.
    [[nodiscard]] int percent() const;

private:
    QByteArray nextOfFile(const MailStretch &stretch);
    QByteArray stuffed(const char *octets, qsizetype length);

    QList<MailStretch> m_stretches;
    qint64 m_total = 0;
    qint64 m_given = 0;
    qsizetype m_index = 0; // of the stretch that is being given
    qint64 m_offset = 0;   // in its bytes or in its file
    char m_last = '\n';    // octets given last: a line, and with it the mail, begins as if after a line end
    char m_lastButOne = '\r';
    bool m_atEnd = false;
    std::unique_ptr<QFile> m_file;
    QString m_fault;
};

} // namespace quillon
