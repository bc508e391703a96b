#pragma once

#include "core/globals.h"
#include "core/settingkeys.h"

#include <QList>
#include <QString>

#include <optional>

namespace quillon {
class SettingsFile;
}

namespace corvane {

/// Reads all settings that are held in memory, with no checking.
void LoadSettings(ApplicationGlobals &globals);

/// Writes the default of every setting that has one in the file, in one rewrite of the file; other keys stay.
void WriteDefaultSettings(const ApplicationGlobals &globals);

/// One value for a key of the settings file.
struct SettingChange {
    Setting key;
    QString value;
    QStringView section = {}; ///< how the section is spelled if it has to be made; empty: as in the table
};

/// Writes one setting to memory and to the file. False when the file could not be written, and memory alone has it.
bool storeSetting(ApplicationGlobals &globals, Setting key, const QString &value);

/// The same for several settings with one rewrite of the file, which so never holds a part of them.
bool storeSettings(ApplicationGlobals &globals, const QList<SettingChange> &changes);

/// Writes settings as memory has them, in one rewrite; none when the file says the same already.
void storeFromMemory(const ApplicationGlobals &globals, const QList<Setting> &keys);

/// Puts a value in its row's place of a file; a sparse one that says no more than its absence only where it is present.
/// @p section as in SettingChange.
void putSetting(quillon::SettingsFile &file, const SettingRow &row, const QString &value, QStringView section = {});

/// Whether a mark has another word in the file than that of what is done. A file that cannot be read tells nothing:
/// what it may say was done long ago must not be done again over the user's data.
[[nodiscard]] bool isStillToBeDone(const ApplicationGlobals &globals, MarkSetting mark);
/// False when it could not be written.
bool markDone(const ApplicationGlobals &globals, MarkSetting mark);

/// Whether proxies are in use.
[[nodiscard]] bool proxyInUse(const ApplicationGlobals &globals);

/// On first run, that is when the use of a proxy is told neither as "True" nor as "False", writes the defaults; loads
/// the settings in any case.
void prepareSettings(ApplicationGlobals &globals);

} // namespace corvane
