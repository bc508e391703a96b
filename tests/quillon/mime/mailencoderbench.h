#pragma once

#include "mailoctets.h"
#include "quillon/mail/encodedmail.h"
#include "quillon/mail/mailheaders.h"

#include <QTemporaryDir>
#include <QTest>

/// What the tests of the encoder share: a mail to start from, files to put into it, and the encoder.
class MailEncoderBench {
protected:
    const QByteArray png = QByteArray::fromHex("89504e470d0a1a0a0000000d4948445200000001000000010802000000907753de");

    QString write(const QString &name, const QByteArray &content)
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
            qFatal("cannot write %s", qPrintable(file.fileName()));
        }
        return file.fileName();
    }

    [[nodiscard]] static quillon::MailMessage message()
    {
        using namespace Qt::StringLiterals;
        quillon::MailMessage result;
        result.From = {u"sender@example.org"_s, u"The Sender"_s};
        result.To.Add({u"to@example.com"_s, QString()});
        result.Subject = u"Subject"_s;
        result.Content = u"Content\r\n"_s;
        return result;
    }

    /// Fails the test where the mail cannot be encoded or its told size is wrong.
    QByteArray encode(const quillon::MailMessage &mail)
    {
        using namespace Qt::StringLiterals;
        const quillon::EncodedMail encoded = m_encoder.encode(mail, m_now);
        const QByteArray octets = mailOctets(encoded);
        if (!encoded.ErrorText.isEmpty() || encoded.Size != octets.size()) {
            QTest::qFail(
                qPrintable(u"size %1 is not %2: %3"_s.arg(encoded.Size).arg(octets.size()).arg(encoded.ErrorText)),
                __FILE__, __LINE__);
        }
        return octets;
    }

    QTemporaryDir m_folder;
    quillon::MailEncoder m_encoder;
    QDateTime m_now = QDateTime::fromString(QStringLiteral("2026-11-21T14:05:09+01:00"), Qt::ISODate);
};
