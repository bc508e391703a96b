#include "core/settings.h"

#include "quillon/files/settingsfile.h"

#include <array>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

template <auto Member, std::size_t Index> QString &slot(ApplicationGlobals &globals)
{
    return (globals.settings.*Member)[Index];
}

QString &senderName(ApplicationGlobals &globals)
{
    return globals.sender.DispName;
}

QString &senderAddress(ApplicationGlobals &globals)
{
    return globals.sender.EmailAddr;
}

constexpr auto proxy = &SettingsMemory::proxy;
constexpr auto smtp = &SettingsMemory::smtp;
constexpr auto signature = &SettingsMemory::signature;
constexpr auto other = &SettingsMemory::other;
constexpr auto position = &SettingsMemory::position;

constexpr std::array<SettingRow, 23> rows = {{
    {u"Proxy Server", u"Use", u"False", slot<proxy, ProxyUse>},
    {u"Proxy Server", u"Default", nullptr, slot<proxy, ProxyDefault>},
    {u"SMTP Account", u"Default", nullptr, slot<smtp, 0>},
    {u"Sender", u"Default.DispName", nullptr, senderName},
    {u"Sender", u"Default.EmailAddr", nullptr, senderAddress},
    {u"Signature", u"Default", nullptr, slot<signature, SignatureDefault>},
    {u"Signature", u"AutoAdd", u"True", slot<signature, SignatureAutoAdd>},
    {u"Other", u"Startup", u"Last", slot<other, Startup>},
    {u"Other", u"Font Name", u"Courier New", slot<other, FontName>},
    {u"Other", u"Font Size", u"10", slot<other, FontSize>},
    {u"Other", u"Encoding", u"utf-8", slot<other, Encoding>},
    {u"Other", u"Format", u"Plain", slot<other, Format>},
    {u"Other", u"Interval", u"26", slot<other, Interval>},
    {u"Other", u"Times", u"1", slot<other, Times>},
    {u"Other", u"OBO Interval", u"0", slot<other, OboInterval>},
    {u"Other", u"Del Folder", u"False", slot<other, DelFolder>},
    {u"Other", u"AppDataPath", nullptr, nullptr},
    {u"Other", u"Upgraded", nullptr, nullptr},
    {u"Other", u"UpgradedV50", nullptr, nullptr},
    {u"Position", u"Left", nullptr, slot<position, 0>},
    {u"Position", u"Top", nullptr, slot<position, 1>},
    {u"Position", u"Width", nullptr, slot<position, 2>},
    {u"Position", u"Height", nullptr, slot<position, 3>},
}};

QString text(const char16_t *literal)
{
    return QString::fromUtf16(literal);
}

} // namespace

std::span<const SettingRow> settingRows()
{
    return rows;
}

void LoadSettings(ApplicationGlobals &globals)
{
    const quillon::SettingsFile file(globals.paths.optionsFile);
    for (const SettingRow &row : rows) {
        if (row.slot) {
            row.slot(globals) = file.value(text(row.section), text(row.key));
        }
    }
}

void WriteDefaultSettings(const ApplicationGlobals &globals)
{
    quillon::SettingsFile file(globals.paths.optionsFile);
    for (const SettingRow &row : rows) {
        if (row.standard) {
            file.setValue(text(row.section), text(row.key), text(row.standard));
        }
    }
    file.save();
}

void storeSetting(ApplicationGlobals &globals, const QString &section, const QString &key, const QString &value)
{
    storeSettings(globals, {{section, key, value}});
}

void storeSettings(ApplicationGlobals &globals, const QList<SettingChange> &changes)
{
    quillon::SettingsFile file(globals.paths.optionsFile);
    for (const SettingChange &change : changes) {
        for (const SettingRow &row : rows) {
            const bool named = change.section.compare(text(row.section), Qt::CaseInsensitive) == 0 &&
                               change.key.compare(text(row.key), Qt::CaseInsensitive) == 0;
            if (row.slot && named) {
                row.slot(globals) = change.value;
            }
        }
        file.setValue(change.section, change.key, change.value);
    }
    file.save();
}

bool proxyInUse(const ApplicationGlobals &globals)
{
    return globals.settings.proxy[ProxyUse] == "True"_L1;
}

void prepareSettings(ApplicationGlobals &globals)
{
    LoadSettings(globals);
    if (!globals.text.IsInList(globals.settings.proxy[ProxyUse], {u"True"_s, u"False"_s})) {
        WriteDefaultSettings(globals);
        LoadSettings(globals);
    }
}

} // namespace corvane
