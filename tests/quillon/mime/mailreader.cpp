#include "mailreader.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using quillon::MailAddress;

namespace {

constexpr int withoutTimeLimit = -1;

QString textOf(const QJsonValue &value)
{
    return QString::fromUtf8(QByteArray::fromBase64(value.toString().toLatin1()));
}

QList<MailAddress> mailboxesOf(const QJsonValue &value)
{
    QList<MailAddress> result;
    for (const QJsonValue &entry : value.toArray()) {
        result.append({textOf(entry.toArray()[1]), textOf(entry.toArray()[0])});
    }
    return result;
}

QStringList stringsOf(const QJsonValue &value)
{
    QStringList result;
    for (const QJsonValue &entry : value.toArray()) {
        result.append(entry.toString());
    }
    return result;
}

ReadMail mailOf(const QJsonObject &object)
{
    ReadMail mail;
    mail.Subject = textOf(object[u"subject"_s]);
    mail.From = mailboxesOf(object[u"from"_s]);
    mail.ReplyTo = mailboxesOf(object[u"replyTo"_s]);
    mail.To = mailboxesOf(object[u"to"_s]);
    mail.Cc = mailboxesOf(object[u"cc"_s]);
    mail.Text = textOf(object[u"text"_s]);
    mail.TextCharset = object[u"textCharset"_s].toString();
    mail.Html = textOf(object[u"html"_s]);
    mail.Headers = stringsOf(object[u"headers"_s]);
    mail.Defects = stringsOf(object[u"defects"_s]);
    for (const QJsonValue &file : object[u"files"_s].toArray()) {
        mail.Files.append({textOf(file[u"name"_s]), file[u"type"_s].toString().toLatin1(),
                           file[u"id"_s].toString().toLatin1(), file[u"sha256"_s].toString().toLatin1()});
    }
    return mail;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Puts the packages into the build folder, once; the result says why that did not work, or is empty.
QString installedMailparser(const QString &folder)
{
    const QString npm = QStandardPaths::findExecutable(u"npm"_s);
    if (npm.isEmpty() || QStandardPaths::findExecutable(u"node"_s).isEmpty()) {
        return u"node and npm are not installed"_s;
    }
    QDir().mkpath(folder);
    QLockFile lock(folder + u"/install.lock"_s);
    lock.setStaleLockTime(0);
    lock.lock();
    const QString source = QStringLiteral(TEST_SOURCE_DIR "/mailparser");
    const QByteArray wanted = contentOf(source + u"/package-lock.json"_s);
    const QString stamp = folder + u"/installed"_s;
    if (contentOf(stamp) != wanted) {
        for (const QString &name : {u"package.json"_s, u"package-lock.json"_s}) {
            QFile::remove(folder + u'/' + name);
            QFile::copy(source + u'/' + name, folder + u'/' + name);
        }
        QProcess process;
        process.setWorkingDirectory(folder);
        process.start(npm, {u"ci"_s, u"--no-audit"_s, u"--no-fund"_s, u"--ignore-scripts"_s, u"--fetch-retries=1"_s,
                            u"--fetch-timeout=30000"_s});
        process.waitForFinished(withoutTimeLimit);
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            return u"npm could not install mailparser: "_s +
                   QString::fromUtf8(process.readAllStandardError()).simplified().left(300);
        }
        QFile file(stamp);
        if (!file.open(QIODevice::WriteOnly) || file.write(wanted) != wanted.size()) {
            return u"the build folder cannot be written"_s;
        }
    }
    QFile::remove(folder + u"/reader.js"_s);
    QFile::copy(source + u"/reader.js"_s, folder + u"/reader.js"_s);
    return {};
}

} // namespace

MailReader MailReader::python()
{
    MailReader reader;
    reader.m_program = u"/usr/bin/python3"_s;
    reader.m_arguments = {QStringLiteral(TEST_SOURCE_DIR "/python_reader.py")};
    return reader;
}

MailReader MailReader::gmime()
{
    MailReader reader;
#ifdef GMIME_READER
    reader.m_program = QStringLiteral(GMIME_READER);
#else
    reader.m_missing = u"GMime was not there when the tests were configured"_s;
#endif
    return reader;
}

MailReader MailReader::mailparser()
{
    MailReader reader;
    const QString folder = QStringLiteral(MAILPARSER_FOLDER);
    reader.m_missing = installedMailparser(folder);
    reader.m_program = u"node"_s;
    reader.m_arguments = {folder + u"/reader.js"_s};
    reader.NormalisesLines = true;
    reader.DecodesWordsInFileNames = true;
    return reader;
}

QList<ReadMail> MailReader::read(const QStringList &paths)
{
    QProcess process;
    process.start(m_program, m_arguments + paths);
    process.waitForFinished(withoutTimeLimit);
    m_fault = process.errorString() + u' ' + QString::fromUtf8(process.readAllStandardError());
    QList<ReadMail> mails;
    for (const QByteArray &line : process.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty()) {
            mails.append(mailOf(QJsonDocument::fromJson(line).object()));
        }
    }
    return mails;
}
