#include "core/datatree.h"

#include "core/moveover.h"
#include "core/recipiententry.h"
#include "core/settings.h"
#include "core/texts.h"
#include "quillon/fault.h"
#include "quillon/files/safefile.h"
#include "quillon/files/settingsfile.h"
#include "quillon/mail/subjectcodec.h"
#include "quillon/system/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int userDataFolder = 26;
constexpr int sharedDataFolder = 35;
constexpr mode_t folderMode = S_IRWXU;
constexpr mode_t fileMode = S_IRUSR | S_IWUSR;

QString vendorFolder(const DataPaths &paths)
{
    return QFileInfo(paths.root).path();
}

/// Beside the data root, so that what a killed write leaves behind is neither searched nor copied with the data.
QString writingFolder(const DataPaths &paths)
{
    return vendorFolder(paths) + u"/.corvane-writing"_s;
}

QStringList foldersInOrder(const DataPaths &paths)
{
    return {vendorFolder(paths), paths.root, paths.data, paths.signs, paths.templates, paths.logs, paths.zips};
}

QStringList filesInOrder(const DataPaths &paths)
{
    return {paths.templatesFile, paths.sendersFile, paths.signsFile, paths.queuesFile, paths.optionsFile,
            paths.promptsFile,   paths.macrosFile,  paths.proxyFile, paths.smtpFile,   paths.markerFile};
}

void createFolder(const QString &path)
{
    if (QFileInfo(path).isDir()) {
        return;
    }
    // The user's application data folder itself may be missing on a machine that was just set up.
    QDir().mkpath(QFileInfo(path).path());
    if (::mkdir(QFile::encodeName(path).constData(), folderMode) != 0) {
        quillon::reportFault(u"cannot make the folder '"_s + path + u'\'');
    }
}

void createFile(const QString &path)
{
    const QString present = quillon::existingPath(path);
    if (QFileInfo::exists(present)) {
        return;
    }
    const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, fileMode);
    if (file < 0) {
        quillon::reportFault(u"cannot make the file '"_s + path + u'\'');
        return;
    }
    ::close(file);
}

/// Sets the mode of a file or folder of this user's to what @p wantedMode makes of the present one.
void changeMode(const QString &path, mode_t (*wantedMode)(mode_t present))
{
    struct stat status {};
    const QByteArray name = QFile::encodeName(path);
    if (::stat(name.constData(), &status) != 0 || status.st_uid != ::geteuid()) {
        return;
    }
    const mode_t wanted = wantedMode(status.st_mode) & 07777U;
    if (wanted != (status.st_mode & 07777U) && ::chmod(name.constData(), wanted) != 0) {
        quillon::reportFault(u"cannot change the mode of '"_s + path + u'\'');
    }
}

/// The owner may read and write, and enter folders.
void setAttributesNormal(const QString &path)
{
    changeMode(path, [](mode_t present) { return present | (S_ISDIR(present) ? folderMode : fileMode); });
}

/// Nobody else reads a file that holds passwords, also one that was copied here from elsewhere.
void keepPrivate(const QString &path)
{
    changeMode(quillon::existingPath(path), [](mode_t) { return fileMode; });
}

void clearLeftovers(const QString &folder)
{
    const QStringList names = QDir(folder).entryList({u".corvane-write-*"_s}, QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        QFile::remove(folder + u'/' + name);
    }
}

QStringList headFiles(const DataPaths &paths)
{
    QStringList files;
    const QStringList names = QDir(paths.templates).entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        if (name.first(qMin<qsizetype>(5, name.size())).toLower() == "head_"_L1) {
            files.append(paths.templates + u'/' + name);
        }
    }
    return files;
}

/// Changes one key of a template's head. False when that could not be kept; a file that cannot be read is passed over,
/// since it will be no more readable at the next start.
bool convertKey(const QString &path, const QString &key,
                const std::function<QString(const quillon::SettingsFile &)> &to)
{
    quillon::SettingsFile file(path);
    const QString section = u"Head"_s;
    const QString value = to(file);
    if (!file.readable() || value == file.value(section, key)) {
        return true;
    }
    file.setValue(section, key, value);
    return file.save();
}

bool upgradeSender(const QString &path)
{
    return convertKey(path, u"Sender"_s, [](const quillon::SettingsFile &head) {
        const QString present = head.value(u"Head"_s, u"Sender"_s);
        const QString sender = present.trimmed();
        const QString account = head.value(u"Head"_s, u"SMTP Account"_s);
        // Done already, by a conversion whose end could not be noted down, also where the account is no address.
        const bool isDone = IsRecipientEntry(sender) || sender.endsWith(u" <"_s + account + u'>');
        return isDone ? present : toRecipientEntry(sender, account);
    });
}

bool upgradeSubject(const QString &path)
{
    return convertKey(path, u"Subject"_s, [](const quillon::SettingsFile &head) {
        const QString present = head.value(u"Head"_s, u"Subject"_s);
        const quillon::SubjectCodec codec;
        // One that is encoded already was so by a conversion whose end could not be noted down.
        const bool isDone = codec.Decode(present.trimmed(), u"utf-8"_s) != present.trimmed();
        return isDone ? present : codec.Encode(present.trimmed(), u"utf-8"_s);
    });
}

void convertOnce(const ApplicationGlobals &globals, MarkSetting mark, bool (*convert)(const QString &path))
{
    if (!isStillToBeDone(globals, mark)) {
        return;
    }
    // Templates that are still to be moved over will want it too.
    bool done = !isMoveOverUnfinished(globals);
    const QStringList files = headFiles(globals.paths);
    for (const QString &file : files) {
        done = convert(file) && done;
    }
    if (done) {
        markDone(globals, mark);
    }
}

} // namespace

DataPaths dataPathsBelow(const QString &userFolder, const QString &sharedFolder)
{
    DataPaths paths;
    paths.user = userFolder;
    paths.shared = sharedFolder;
    paths.root = quillon::dataRootBelow(userFolder);
    paths.data = quillon::existingFolder(paths.root + u"/data"_s);
    paths.signs = quillon::existingFolder(paths.data + u"/signs"_s);
    paths.templates = quillon::existingFolder(paths.data + u"/templates"_s);
    paths.logs = quillon::existingFolder(paths.root + u"/logs"_s);
    paths.zips = quillon::existingFolder(paths.data + u"/zips"_s);
    paths.templatesFile = paths.templates + u"/templates.dll"_s;
    paths.sendersFile = paths.data + u"/senders.dll"_s;
    paths.signsFile = paths.signs + u"/signs.dll"_s;
    paths.queuesFile = paths.data + u"/queues.dll"_s;
    paths.optionsFile = paths.data + u"/options.dll"_s;
    paths.promptsFile = paths.data + u"/prompts.dll"_s;
    paths.macrosFile = paths.data + u"/macros.dll"_s;
    paths.proxyFile = paths.data + u"/proxy.dll"_s;
    paths.smtpFile = paths.data + u"/smtp.dll"_s;
    paths.markerFile = paths.root + u'/' + QString::fromUtf16(markerFileName);
    return paths;
}

void PrepareDataFolder(ApplicationGlobals &globals)
{
    globals.paths = dataPathsBelow(globals.system.GetSpecialFolder(userDataFolder),
                                   globals.system.GetSpecialFolder(sharedDataFolder));
    const DataPaths &paths = globals.paths;
    const QStringList folders = foldersInOrder(paths);
    for (const QString &folder : folders) {
        createFolder(folder);
    }
    createFolder(writingFolder(paths));
    clearLeftovers(writingFolder(paths));
    quillon::setTemporaryFolder(writingFolder(paths));
    const QStringList files = filesInOrder(paths);
    for (const QString &file : files) {
        createFile(file);
    }
    moveOldDataOver(globals);
    for (const QString &folder : folders) {
        setAttributesNormal(folder);
    }
    setAttributesNormal(paths.markerFile);
    for (const QString &folder : {paths.data, paths.signs, paths.templates, paths.logs, paths.zips}) {
        const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
        for (const QFileInfo &entry : entries) {
            setAttributesNormal(entry.filePath());
        }
    }
    for (const QString &file : {paths.smtpFile, paths.proxyFile, paths.optionsFile}) {
        keepPrivate(file);
    }
}

void UpgradeOldData(const ApplicationGlobals &globals)
{
    convertOnce(globals, Setting::SendersUpgraded, upgradeSender);
    convertOnce(globals, Setting::SubjectsUpgraded, upgradeSubject);
}

QString logPathAt(const ApplicationGlobals &globals, const QDateTime &moment)
{
    return globals.paths.logs + u'/' + QLocale::c().toString(moment, u"yyyyMM"_s) + u".log"_s;
}

} // namespace corvane
