#pragma once

#include "core/globals.h"

#include <QList>
#include <QString>

#include <span>

namespace corvane {

/// One key of the settings file: where it stands, what a fresh file gets, and where its text is held in memory.
struct SettingRow {
    const char16_t *section;
    const char16_t *key;
    const char16_t *standard;                      ///< nullptr: defaults never touch this key
    QString &(*slot)(ApplicationGlobals &globals); ///< nullptr: not held in memory
};

/// The one table of all settings, in the order in which they are read and their defaults are written.
[[nodiscard]] std::span<const SettingRow> settingRows();

/// Reads all settings that are held in memory, with no checking.
void LoadSettings(ApplicationGlobals &globals);

/// Writes the default of every setting that has one, in one rewrite of the file; other keys stay.
void WriteDefaultSettings(const ApplicationGlobals &globals);

/// Writes one setting to memory and to the file.
void storeSetting(ApplicationGlobals &globals, const QString &section, const QString &key, const QString &value);

/// One value for a key of the settings file.
struct SettingChange {
    QString section;
    QString key;
    QString value;
};

/// Writes several settings to memory and, with one rewrite, to the file, which so never holds a part of them.
void storeSettings(ApplicationGlobals &globals, const QList<SettingChange> &changes);

/// Whether proxies are in use.
[[nodiscard]] bool proxyInUse(const ApplicationGlobals &globals);

/// On first run, that is when the use of a proxy is told neither as "True" nor as "False", writes the defaults; loads
/// the settings in any case.
void prepareSettings(ApplicationGlobals &globals);

} // namespace corvane
