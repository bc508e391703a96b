#include "core/settings.h"

#include "quillon/files/settingsfile.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

QString valueIn(const quillon::SettingsFile &file, const SettingRow &row)
{
    return file.value(row.section.toString(), row.key.toString());
}

bool isIn(const quillon::SettingsFile &file, const SettingRow &row)
{
    return file.contains(row.section.toString(), row.key.toString());
}

} // namespace

void LoadSettings(ApplicationGlobals &globals)
{
    const quillon::SettingsFile file(globals.paths.optionsFile);
    for (const SettingRow &row : settingRows) {
        globals.settings.set(row.setting, valueIn(file, row));
    }
}

void WriteDefaultSettings(const ApplicationGlobals &globals)
{
    quillon::SettingsFile file(globals.paths.optionsFile);
    for (const SettingRow &row : settingRows) {
        if (row.use == SettingUse::Defaulted) {
            putSetting(file, row, row.standard.toString());
        }
    }
    file.save();
}

bool storeSetting(ApplicationGlobals &globals, Setting key, const QString &value)
{
    return storeSettings(globals, {{key, value}});
}

bool storeSettings(ApplicationGlobals &globals, const QList<SettingChange> &changes)
{
    quillon::SettingsFile file(globals.paths.optionsFile);
    for (const SettingChange &change : changes) {
        globals.settings.set(change.key, change.value);
        putSetting(file, settingRow(change.key), change.value, change.section);
    }
    return file.save();
}

void storeFromMemory(const ApplicationGlobals &globals, const QList<Setting> &keys)
{
    quillon::SettingsFile file(globals.paths.optionsFile);
    bool differs = false;
    for (const Setting key : keys) {
        const SettingRow &row = settingRow(key);
        const QString &value = globals.settings.text(key);
        if (!isIn(file, row) || valueIn(file, row) != value) {
            putSetting(file, row, value);
            differs = true;
        }
    }
    if (differs) {
        file.save();
    }
}

void putSetting(quillon::SettingsFile &file, const SettingRow &row, const QString &value, QStringView section)
{
    const bool saysNothing = value.isEmpty() || value == row.standard;
    if (row.use == SettingUse::Sparse && saysNothing && !isIn(file, row)) {
        return;
    }
    file.setValue((section.isEmpty() ? row.section : section).toString(), row.key.toString(), value);
}

bool isStillToBeDone(const ApplicationGlobals &globals, MarkSetting mark)
{
    const quillon::SettingsFile file(globals.paths.optionsFile);
    const SettingRow &row = settingRow(mark.key);
    return file.readable() && valueIn(file, row) != row.standard;
}

bool markDone(const ApplicationGlobals &globals, MarkSetting mark)
{
    quillon::SettingsFile file(globals.paths.optionsFile);
    const SettingRow &row = settingRow(mark.key);
    putSetting(file, row, row.standard.toString());
    return file.save();
}

bool proxyInUse(const ApplicationGlobals &globals)
{
    return globals.settings.isTrue(Setting::ProxyUse);
}

void prepareSettings(ApplicationGlobals &globals)
{
    LoadSettings(globals);
    const QString &use = globals.settings.text(Setting::ProxyUse);
    if (!globals.text.IsInList(use, {flagText(true), flagText(false)})) {
        WriteDefaultSettings(globals);
        LoadSettings(globals);
    }
}

} // namespace corvane
