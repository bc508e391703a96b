#include "sending/attachments.h"

#include "quillon/archive/zipbuilder.h"
#include "quillon/fault.h"
#include "quillon/files/safefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int levels = 9;
constexpr int lastNumber = 9999;

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

quillon::Task<> attachFolder(const ApplicationGlobals &globals, QString folder, quillon::MailMessage &message)
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
    co_await zip.Build();
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
        } else if (info.isDir()) {
            co_await attachFolder(globals, path, message);
        } else {
            continue;
        }
        taken.append(path);
    }
    co_return taken.join(u"; "_s);
}

} // namespace corvane
