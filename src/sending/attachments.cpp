#include "sending/attachments.h"

#include "quillon/archive/zipbuilder.h"
#include "quillon/fault.h"
#include "quillon/files/safefile.h"
#include "quillon/text/lineends.h"
#include "sending/sendingtexts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int levels = 9;
constexpr int lastNumber = 9999;
constexpr qsizetype namedAtMost = 5;

const QString emptyFolderMark = u"you-got-an-empty-folder.txt"_s;

QString lastPart(const QString &path)
{
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

void emptyTemporaryFolder(const QString &folder)
{
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : names) {
        if (!QFile::remove(folder + u'/' + name)) {
            quillon::reportFault(u"cannot delete '"_s + folder + u'/' + name + u'\'');
        }
    }
}

/// The first free name for an archive: that of the folder, else with a number in front of it.
QString archivePath(const QString &folder, const QString &name)
{
    QString path = folder + u'/' + name + u".zip"_s;
    for (int i = 0; QFile::exists(path) && i <= lastNumber; ++i) {
        const QString numbered = folder + u'/' + QString::number(i) + name + u".zip"_s;
        if (!QFile::exists(numbered)) {
            path = numbered;
            break;
        }
    }
    return path;
}

void attach(quillon::MailMessage &message, const QString &path)
{
    message.Attachments.Add();
    quillon::MailAttachment &attachment = message.Attachments.Item(message.Attachments.Count());
    attachment.Name = lastPart(path);
    attachment.Path = path;
}

QString words(quillon::ZipBuilder::Why reason)
{
    using Why = quillon::ZipBuilder::Why;
    switch (reason) {
    case Why::LinkToFolder:
        return QString::fromUtf16(logtexts::linkToFolder);
    case Why::LinkToNothing:
        return QString::fromUtf16(logtexts::linkToNothing);
    case Why::Pipe:
        return QString::fromUtf16(logtexts::pipe);
    case Why::Socket:
        return QString::fromUtf16(logtexts::socket);
    case Why::Device:
        return QString::fromUtf16(logtexts::device);
    case Why::Unreadable:
        break;
    }
    return QString::fromUtf16(logtexts::unreadable);
}

/// The first few by their names, the others by their number; empty when there is none.
QString toldLeftOut(const QList<quillon::ZipBuilder::LeftOut> &leftOut)
{
    QStringList told;
    for (const auto &[name, reason] : leftOut.first(qMin<qsizetype>(leftOut.size(), namedAtMost))) {
        // The folder itself, gone since its row was seen, has no name within it.
        told.append(name.isEmpty() ? words(reason) : u'"' + quillon::onOneLine(name) + u"\" "_s + words(reason));
    }
    if (leftOut.size() > namedAtMost) {
        told.append(QString::fromUtf16(logtexts::andMore).arg(leftOut.size() - namedAtMost));
    }
    return told.isEmpty() ? QString() : QString::fromUtf16(logtexts::leftOut).arg(told.join(u", "_s));
}

/// Gives what the log tells of the folder behind its path.
quillon::Task<QString> attachFolder(const ApplicationGlobals &globals, QString folder, quillon::MailMessage &message)
{
    if (QDir(folder).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System)) {
        // For the archive only; where it cannot be, as on a read-only volume, nothing of the user's is lost.
        quillon::appendToFile(folder + u'/' + emptyFolderMark, "\r\n", quillon::WriteUse::Passing);
    }
    quillon::ZipBuilder zip;
    zip.ArchivePath = archivePath(globals.paths.zips, lastPart(folder));
    attach(message, zip.ArchivePath);
    QString pattern = folder;
    for (int i = 0; i < levels; ++i) {
        pattern += u"/*"_s;
        zip.AddPattern(pattern);
    }
    const bool isBuilt = co_await zip.Build();
    co_return isBuilt ? toldLeftOut(zip.leftOut()) : QString();
}

} // namespace

quillon::Task<QString> ResolveAttachments(const ApplicationGlobals &globals, QStringList paths,
                                          quillon::MailMessage &message)
{
    emptyTemporaryFolder(globals.paths.zips);
    QStringList taken;
    for (const QString &path : std::as_const(paths)) {
        const QFileInfo info(path);
        if (info.isFile()) {
            attach(message, path);
            taken.append(path);
        } else if (info.isDir()) {
            const QString leftOut = co_await attachFolder(globals, path, message);
            taken.append(path + leftOut);
        }
    }
    co_return taken.join(u"; "_s);
}

} // namespace corvane
