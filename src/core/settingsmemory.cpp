#include "core/settingsmemory.h"

#include <cmath>

namespace corvane {

template <typename Memory> auto &SettingsMemory::placeOf(Memory &memory, Setting key)
{
    switch (key) {
    case Setting::DefaultSenderName:
        return memory.m_sender.DispName;
    case Setting::DefaultSenderAddress:
        return memory.m_sender.EmailAddr;
    default:
        return memory.m_texts[static_cast<std::size_t>(key)];
    }
}

const QString &SettingsMemory::text(Setting key) const
{
    return placeOf(*this, key);
}

QString SettingsMemory::textOrStandard(Setting key) const
{
    const QString &value = text(key);
    return value.isEmpty() ? settingRow(key).standard.toString() : value;
}

std::optional<double> SettingsMemory::number(NumberSetting number) const
{
    bool isNumber = false;
    const double value = textOrStandard(number.key).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

double SettingsMemory::standardNumber(NumberSetting number)
{
    return settingRow(number.key).standard.toDouble();
}

void SettingsMemory::set(Setting key, const QString &value)
{
    if (settingRow(key).use != SettingUse::FileOnly) {
        placeOf(*this, key) = value;
    }
}

} // namespace corvane
