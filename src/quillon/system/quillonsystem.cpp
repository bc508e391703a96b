#include "quillon/system/quillonsystem.h"

#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"
#include "quillon/system/platform.h"

#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int userDataFolder = 26;
constexpr int sharedDataFolder = 35;

} // namespace

int QuillonSystem::GetOsMajorVersion() const
{
    return osMajorVersion();
}

QString QuillonSystem::GetSpecialFolder(int number) const
{
    const QStringList places = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    if (number == userDataFolder) {
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    }
    if (number == sharedDataFolder) {
        // The first place is the user's own; the system-wide ones follow.
        return places.value(1);
    }
    reportFault(u"no special folder has the number "_s + QString::number(number));
    return {};
}

QString QuillonSystem::GetSystemPath(const QString &selector) const
{
    if (selector == u'P') {
        return u"/usr/bin"_s;
    }
    reportFault(u"no system path has the letter '"_s + selector + u'\'');
    return {};
}

QString QuillonSystem::ReadSetting(const QString &path, const QString &section, const QString &key) const
{
    return SettingsFile(path).value(section, key);
}

void QuillonSystem::WriteSetting(const QString &path, const QString &section, const QString &key,
                                 const QString &value) const
{
    SettingsFile file(path);
    file.setValue(section, key, value);
    file.save();
}

QStringList QuillonSystem::OpenFileDialog(const QString &title, const QList<FileFilter> &filters,
                                          const QString &defaultPath, bool many) const
{
    return prompts().openFiles({title, filters, defaultPath, many});
}

QString QuillonSystem::SaveFileDialog(const QString &title, const QList<FileFilter> &filters,
                                      const QString &defaultName) const
{
    return prompts().saveFile({title, filters, defaultName, false});
}

QString QuillonSystem::SelectFolderDialog(const QString &title) const
{
    return prompts().selectFolder(title);
}

long QuillonSystem::ChooseColor() const
{
    return prompts().chooseColor();
}

void QuillonSystem::OpenDocument(const QString &path, int style) const
{
    Q_UNUSED(style) // how a viewer shows itself is the desktop's matter
    if (!desktopOpener().open(path)) {
        reportFault(u"cannot open '"_s + path + u'\'');
    }
}

void QuillonSystem::OpenTarget(const QString &target, int style, const QStringList &arguments) const
{
    const QFileInfo info(target);
    if (info.isFile() && info.isExecutable()) {
        if (!processes().start(target, arguments)) {
            reportFault(u"cannot start '"_s + target + u'\'');
        }
        return;
    }
    OpenDocument(target, style);
}

Pending<> QuillonSystem::EndProcess(const QString &executable) const
{
    return processes().end(executable, dataRootBelow(GetSpecialFolder(userDataFolder)));
}

Pending<> QuillonSystem::WaitMilliseconds(qint64 milliseconds) const
{
    return systemClock().wait(milliseconds);
}

} // namespace quillon
