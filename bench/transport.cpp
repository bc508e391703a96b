#include "measures.h"
#include "quillon/mail/encodedmail.h"
#include "quillon/mail/mailtransport.h"
#include "support/waitfor.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;
using quillon::MailMessage;
using quillon::MailTransport;

namespace {

constexpr double nanosecondsPerSecond = 1e9;

MailMessage personalMail(const QString &document, int i)
{
    const QString name = benchName(i);
    MailMessage message;
    message.From = {u"ada@x.example"_s, u"Ada King"_s};
    message.To.Add({benchAddress(i), name});
    message.Subject = u"News for "_s + name;
    message.Content = document;
    message.Content.replace(u"{Full Name of The Recipient}"_s, name);
    message.Charset = u"utf-8"_s;
    message.Format = MailMessage::Html;
    return message;
}

/// One after the other, each over a connection and a transport of its own, as a run does it.
quillon::Task<> sendAll(BenchTask task, QString document)
{
    for (int i = 1; i <= task.count; ++i) {
        const MailMessage message = personalMail(document, i);
        MailTransport transport;
        QObject::connect(&transport, &MailTransport::Error, &transport,
                         [](int, const QString &text) { qFatal("%s", qPrintable(text)); });
        if (task.starttls) {
            transport.Security = MailTransport::StartTls;
            transport.User = u"ada"_s;
            transport.Password = u"secret"_s;
        }
        co_await transport.Connect(u"127.0.0.1"_s, task.port, 0, 0);
        if (!co_await transport.Send(message)) {
            qFatal("mail %d was not sent", i);
        }
        transport.Quit();
    }
}

} // namespace

QJsonObject measureTransport(const BenchTask &task)
{
    const QString document = benchText(task.document);
    QElapsedTimer timer;
    timer.start();
    waitFor(sendAll(task, document));
    return {{u"seconds"_s, static_cast<double>(timer.nsecsElapsed()) / nanosecondsPerSecond}};
}

QJsonObject measureEncoding(const BenchTask &task)
{
    const QString document = benchText(task.document);
    quillon::MailEncoder encoder;
    qint64 octets = 0;
    QElapsedTimer timer;
    timer.start();
    for (int i = 1; i <= task.count; ++i) {
        octets += encoder.encode(personalMail(document, i), QDateTime::currentDateTime()).Size;
    }
    return {{u"seconds"_s, static_cast<double>(timer.nsecsElapsed()) / nanosecondsPerSecond},
            {u"octets"_s, static_cast<double>(octets)}};
}
