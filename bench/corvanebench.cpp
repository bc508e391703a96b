// The measurements of the program's own parts, one a call:
//   corvane_bench transport|encoding|program|macros|prompts|typing
//   '{"port":…,"count":…,"starttls":…,"authority":…,"document":…}'
// Prints the result as one line of JSON.

#include "measures.h"
#include "quillon/mail/smtptls.h"

#include <QApplication>
#include <QFile>
#include <QJsonDocument>

#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;

QString benchName(int i)
{
    return u"Recipient Number "_s + QString::number(i);
}

QString benchAddress(int i)
{
    return u'r' + QString::number(i) + u"@y.example"_s;
}

QString benchText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(path));
    }
    return QString::fromUtf8(file.readAll());
}

int main(int argc, char **argv)
{
    const QByteArray measurement = argc > 1 ? argv[1] : "";
    const QJsonObject wanted = QJsonDocument::fromJson(argc > 2 ? argv[2] : "{}").object();
    BenchTask task;
    task.port = static_cast<quint16>(wanted.value("port"_L1).toInt());
    task.count = wanted.value("count"_L1).toInt();
    task.starttls = wanted.value("starttls"_L1).toBool();
    task.authority = wanted.value("authority"_L1).toString();
    task.document = wanted.value("document"_L1).toString();

    const bool whole = measurement == "program" || measurement == "typing";
    const std::unique_ptr<QCoreApplication> application(whole ? new QApplication(argc, argv)
                                                              : new QCoreApplication(argc, argv));
    if (!task.authority.isEmpty()) {
        quillon::SmtpTls::setAuthorities(QSslCertificate::fromPath(task.authority));
    }
    QJsonObject result;
    if (measurement == "transport") {
        result = measureTransport(task);
    } else if (measurement == "encoding") {
        result = measureEncoding(task);
    } else if (measurement == "program") {
        result = measureProgram(task);
    } else if (measurement == "typing") {
        result = measureTyping(task);
    } else if (measurement == "macros") {
        result = measureMacros();
    } else if (measurement == "prompts") {
        result = measurePrompts();
    } else {
        std::fputs("usage: corvane_bench transport|encoding|program|macros|prompts|typing [JSON]\n", stderr);
        return 2;
    }
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    return 0;
}
