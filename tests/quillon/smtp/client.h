#pragma once

#include "quillon/mail/encodedmail.h"
#include "quillon/mail/mailtransport.h"
#include "support/waitfor.h"

#include <QFileInfo>
#include <QStringList>

/// A transport under test that keeps what it reports.
struct Client {
    quillon::MailTransport Transport;
    QStringList Errors;
    QList<int> Codes;
    QStringList Progress;

    Client()
    {
        QObject::connect(&Transport, &quillon::MailTransport::Error, &Transport, [this](int code, const QString &text) {
            Codes += code;
            Errors += text;
        });
        QObject::connect(&Transport, &quillon::MailTransport::Progress, &Transport,
                         [this](int, const QString &text) { Progress += text; });
    }

    long connectTo(quint16 port, const QString &host = QStringLiteral("127.0.0.1"))
    {
        waitFor(Transport.Connect(host, port, 0, 0));
        return Transport.State();
    }

    bool send(const QByteArray &text, const QStringList &to = {QStringLiteral("to@example.org")},
              const QString &from = QStringLiteral("from@example.org"))
    {
        return waitFor(Transport.SendEncoded(mailOf(text), from, to));
    }

    bool accepted() { return waitFor(Transport.Accepted()); }
    bool sendMessage(const quillon::MailMessage &message) { return waitFor(Transport.Send(message)); }

    static quillon::EncodedMail mailOf(const QByteArray &text)
    {
        quillon::EncodedMail mail;
        mail.Stretches += {text, {}, 0};
        mail.Size = text.size();
        return mail;
    }

    /// A mail of a header and one file in Base64.
    static quillon::EncodedMail mailWithFile(const QString &path)
    {
        quillon::EncodedMail mail = mailOf("Subject: file\r\n\r\n");
        const qint64 size = QFileInfo(path).size();
        mail.Stretches += {{}, path, size};
        const qint64 coded = (size + 2) / 3 * 4;
        mail.Size += coded + (coded + 75) / 76 * 2;
        return mail;
    }
};
