#pragma once

#include "quillon/mail/encodedmail.h"

#include <QByteArray>
#include <QFile>
#include <QString>

/// The whole mail as it goes over the wire. The gaps are filled by a coder of this test's own, so that a wrong size or
/// a wrong place of a gap shows.
inline QByteArray mailOctets(const quillon::EncodedMail &mail)
{
    constexpr qsizetype lineInput = 57;
    QByteArray octets;
    for (const quillon::MailStretch &stretch : mail.Stretches) {
        if (stretch.File.isEmpty()) {
            octets += stretch.Bytes;
            continue;
        }
        QFile file(stretch.File);
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        while (!file.atEnd()) {
            octets += file.read(lineInput).toBase64() + "\r\n";
        }
    }
    return octets;
}

/// The value of the first header field @p name of @p mail, unfolded; null when there is none.
inline QByteArray headerOf(const QByteArray &mail, const QByteArray &name)
{
    const QByteArray head = "\r\n" + mail.left(mail.indexOf("\r\n\r\n") + 2);
    const qsizetype at = head.indexOf("\r\n" + name + ": ");
    if (at < 0) {
        return {};
    }
    const qsizetype begin = at + name.size() + 4;
    qsizetype end = head.indexOf("\r\n", begin);
    while (end + 2 < head.size() && (head[end + 2] == ' ' || head[end + 2] == '\t')) {
        end = head.indexOf("\r\n", end + 2);
    }
    return head.mid(begin, end - begin).replace("\r\n", "");
}
