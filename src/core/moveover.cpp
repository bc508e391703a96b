#include "core/moveover.h"

#include "core/settings.h"
#include "quillon/fault.h"
#include "quillon/files/safefile.h"
#include "quillon/files/settingsfile.h"
#include "quillon/system/platform.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr QChar noteEnd = u'\n';
const QString wholeTree = u"/"_s;
const QString settingsPlace = u"/data/options.dll"_s;

/// Lists what is still to come, by its path in the old tree, one a line. It is written before the first file is copied,
/// so that a start that is killed meanwhile is completed too.
QString notePath(const DataPaths &paths)
{
    return QFileInfo(paths.root).path() + u"/.corvane-moving"_s;
}

/// What an earlier start has left; nothing when there was none.
std::optional<QStringList> leftBefore(const QString &note)
{
    if (!QFileInfo::exists(note)) {
        return {};
    }
    const std::optional<QByteArray> bytes = quillon::readWholeFile(note);
    return bytes ? QString::fromUtf8(*bytes).split(noteEnd, Qt::SkipEmptyParts) : QStringList(wholeTree);
}

bool isBelow(const QString &path, const QString &folder)
{
    return folder == wholeTree || path == folder || path.startsWith(folder + u'/');
}

bool makeFolder(const QString &path)
{
    if (QFileInfo(path).isDir() || ::mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0) {
        return true;
    }
    quillon::reportFault(u"cannot make the folder '"_s + path + u'\'');
    return false;
}

/// Whether the user has something of their own there already, made since.
bool isNewer(const QFileInfo &present, const QFileInfo &old)
{
    return present.isFile() && present.size() > 0 && present.lastModified() >= old.lastModified();
}

/// Whether the present settings say no more for a key than those of a first start do, or tell only what was done to the
/// part of the data that has come already.
bool saysNothing(const quillon::SettingsFile &present, const QString &section, const QString &key)
{
    const QString value = present.value(section, key);
    return value.isEmpty() || std::any_of(settingRows.begin(), settingRows.end(), [&](const SettingRow &row) {
               const bool isDefault = row.use == SettingUse::Defaulted && value == row.standard;
               return (isDefault || row.type == SettingType::Mark) &&
                      row.section.compare(section, Qt::CaseInsensitive) == 0 &&
                      row.key.compare(key, Qt::CaseInsensitive) == 0;
           });
}

class MoveOver {
public:
    MoveOver(const ApplicationGlobals &globals, const QString &from)
        : m_globals(globals), m_paths(globals.paths), m_from(from), m_note(notePath(m_paths))
    {
    }

    void carryOut()
    {
        const std::optional<QStringList> left = leftBefore(m_note);
        m_completing = left.has_value();
        m_wanted = left.value_or(QStringList(wholeTree));
        if (!m_completing && !quillon::writeWholeFile(m_note, wholeTree.toUtf8() + '\n')) {
            return; // nothing fits at all: the next start begins it
        }
        copyFolder(QString(), m_paths.root);
        // Last, since they hold the mark, and the old ones may say that it was set.
        if (!m_settings.isEmpty() && !copySettings()) {
            leave(settingsPlace);
        }
        if (m_left.isEmpty() && markDone(m_globals, Setting::DataMovedOver)) {
            QFile::remove(m_note);
        } else {
            quillon::writeWholeFile(m_note, m_left.join(noteEnd).toUtf8() + '\n');
        }
    }

private:
    [[nodiscard]] bool isWanted(const QString &path) const
    {
        return std::any_of(m_wanted.begin(), m_wanted.end(),
                           [&path](const QString &wanted) { return isBelow(path, wanted); });
    }
    [[nodiscard]] bool isWantedBelow(const QString &folder) const
    {
        return isWanted(folder) || std::any_of(m_wanted.begin(), m_wanted.end(),
                                               [&folder](const QString &wanted) { return isBelow(wanted, folder); });
    }

    void leave(const QString &path)
    {
        // A name that would be two lines of the note stands for all there is.
        m_left.append(path.isEmpty() || path.contains(noteEnd) ? wholeTree : path);
    }

    /// @p path is that in the old tree, empty for the tree itself. A link to a folder is not followed.
    void copyFolder(const QString &path, const QString &target)
    {
        const QFileInfo source(m_from + path);
        if (!makeFolder(target) || !source.isReadable() || !source.isExecutable()) {
            leave(path);
            return;
        }
        const QFileInfoList entries =
            QDir(source.filePath()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        for (const QFileInfo &entry : entries) {
            const QString name = path + u'/' + entry.fileName();
            const QString place = target + u'/' + entry.fileName();
            if (entry.isDir() && !entry.isSymLink()) {
                if (isWantedBelow(name)) {
                    copyFolder(name, quillon::existingFolder(place));
                }
            } else if (entry.isFile() && isWanted(name)) {
                if (name.compare(settingsPlace, Qt::CaseInsensitive) == 0) {
                    m_settings = entry.filePath();
                } else if (!copyFile(entry, place)) {
                    leave(name);
                }
            }
        }
    }

    [[nodiscard]] bool copyFile(const QFileInfo &source, const QString &target) const
    {
        if (m_completing && isNewer(QFileInfo(quillon::existingPath(target)), source)) {
            return true;
        }
        const auto bytes = quillon::readWholeFile(source.filePath());
        return bytes && quillon::writeWholeFile(target, *bytes);
    }

    /// The old settings, as yet without the mark. Those of a first start, which stand there when a later one completes
    /// this, give way; what the user has set since stays.
    [[nodiscard]] bool copySettings() const
    {
        const auto bytes = quillon::readWholeFile(m_settings);
        if (!bytes) {
            return false;
        }
        quillon::SettingsFile settings = quillon::SettingsFile::fromBytes(*bytes);
        const SettingRow &mark = settingRow(Setting::DataMovedOver);
        if (settings.contains(mark.section.toString(), mark.key.toString())) {
            settings.setValue(mark.section.toString(), mark.key.toString(), QString());
        }
        if (m_completing) {
            const quillon::SettingsFile present(m_paths.optionsFile);
            const QStringList sections = present.sections();
            for (const QString &section : sections) {
                const QStringList keys = present.keys(section);
                for (const QString &key : keys) {
                    if (!saysNothing(present, section, key)) {
                        settings.setValue(section, key, present.value(section, key));
                    }
                }
            }
        }
        return quillon::writeWholeFile(m_paths.optionsFile, settings.toBytes());
    }

    const ApplicationGlobals &m_globals;
    const DataPaths &m_paths;
    QString m_from;
    QString m_note;
    QStringList m_wanted; ///< of files and folders: what is to be copied, with all below it
    QStringList m_left;   ///< what of it could not be copied
    QString m_settings;   ///< the old settings file, when it is to be copied
    bool m_completing = false;
};

} // namespace

bool isMoveOverUnfinished(const ApplicationGlobals &globals)
{
    return QFileInfo::exists(notePath(globals.paths)) && isStillToBeDone(globals, Setting::DataMovedOver);
}

void moveOldDataOver(const ApplicationGlobals &globals)
{
    const DataPaths &paths = globals.paths;
    const QFileInfo root(quillon::dataRootBelow(paths.shared));
    const QString old = quillon::existingFolder(quillon::existingFolder(root.path()) + u'/' + root.fileName());
    if (paths.shared.isEmpty() || !QFileInfo(old).isDir() ||
        QFileInfo(old).canonicalFilePath() == QFileInfo(paths.root).canonicalFilePath() ||
        !isStillToBeDone(globals, Setting::DataMovedOver)) {
        return;
    }
    MoveOver(globals, old).carryOut();
}

} // namespace corvane
