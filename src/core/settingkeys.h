#pragma once

#include <QString>
#include <QStringView>

#include <array>

namespace corvane {

/// The keys of the settings file, in the order of the table below.
enum class Setting {
    ProxyUse,
    DefaultProxy,
    DefaultAccount,
    DefaultSenderName,
    DefaultSenderAddress,
    DefaultSignature,
    AutoAddSignature,
    Startup,
    FontName,
    FontSize,
    Encoding,
    Format,
    Interval,
    Times,
    OboInterval,
    EmptyFolder,
    DataMovedOver,
    SendersUpgraded,
    SubjectsUpgraded,
    Left,
    Top,
    Width,
    Height,
};

/// What the text of a setting tells, and so by which rules it can be read.
enum class SettingType {
    Text,   ///< any words; a whole record line, too
    Flag,   ///< "True" or "False"
    Choice, ///< one of a few words
    Number, ///< maybe with a point
    Mark,   ///< one word once something was done, never shown or chosen
};

/// Where a setting lives.
enum class SettingUse {
    Defaulted, ///< in memory and in the file, where the defaults are written
    Stored,    ///< in memory; in the file only once it was stored
    Sparse,    ///< as Stored, but what says no more than an absent key does is not added to the file
    FileOnly,  ///< asked from the file at the moment of use
};

struct SettingRow {
    Setting setting;
    QStringView section;
    QStringView key;
    SettingType type;
    SettingUse use;
    QStringView standard = {}; ///< the default, which an empty or absent value stands for; of a mark the word once done
};

// The words of flags, marks and choices; they compare with regard to case.
inline constexpr QStringView trueWord = u"True";
inline constexpr QStringView falseWord = u"False";
inline constexpr QStringView yesWord = u"Yes";
inline constexpr QStringView startupLast = u"Last";
inline constexpr QStringView startupMaximised = u"Max";
inline constexpr QStringView startupTray = u"Sys";
inline constexpr QStringView formatPlain = u"Plain";
inline constexpr QStringView formatRich = u"Rich";

/// How one writer spells the account's section, where there is none yet; names compare without regard to case.
inline constexpr QStringView sectionOfEditedAccount = u"SMTP account";

/// The one table of all settings, in the order in which they are read and their defaults are written.
inline constexpr std::array<SettingRow, 23> settingRows = {{
    {Setting::ProxyUse, u"Proxy Server", u"Use", SettingType::Flag, SettingUse::Defaulted, falseWord},
    {Setting::DefaultProxy, u"Proxy Server", u"Default", SettingType::Text, SettingUse::Stored},
    {Setting::DefaultAccount, u"SMTP Account", u"Default", SettingType::Text, SettingUse::Stored},
    {Setting::DefaultSenderName, u"Sender", u"Default.DispName", SettingType::Text, SettingUse::Stored},
    {Setting::DefaultSenderAddress, u"Sender", u"Default.EmailAddr", SettingType::Text, SettingUse::Stored},
    {Setting::DefaultSignature, u"Signature", u"Default", SettingType::Text, SettingUse::Stored},
    {Setting::AutoAddSignature, u"Signature", u"AutoAdd", SettingType::Flag, SettingUse::Defaulted, trueWord},
    {Setting::Startup, u"Other", u"Startup", SettingType::Choice, SettingUse::Defaulted, startupLast},
    {Setting::FontName, u"Other", u"Font Name", SettingType::Text, SettingUse::Defaulted, u"Courier New"},
    {Setting::FontSize, u"Other", u"Font Size", SettingType::Number, SettingUse::Defaulted, u"10"},
    {Setting::Encoding, u"Other", u"Encoding", SettingType::Text, SettingUse::Defaulted, u"utf-8"},
    {Setting::Format, u"Other", u"Format", SettingType::Choice, SettingUse::Defaulted, formatPlain},
    {Setting::Interval, u"Other", u"Interval", SettingType::Number, SettingUse::Defaulted, u"26"},
    {Setting::Times, u"Other", u"Times", SettingType::Number, SettingUse::Defaulted, u"1"},
    {Setting::OboInterval, u"Other", u"OBO Interval", SettingType::Number, SettingUse::Defaulted, u"0"},
    {Setting::EmptyFolder, u"Other", u"Del Folder", SettingType::Flag, SettingUse::Defaulted, falseWord},
    {Setting::DataMovedOver, u"Other", u"AppDataPath", SettingType::Mark, SettingUse::FileOnly, trueWord},
    {Setting::SendersUpgraded, u"Other", u"Upgraded", SettingType::Mark, SettingUse::FileOnly, yesWord},
    {Setting::SubjectsUpgraded, u"Other", u"UpgradedV50", SettingType::Mark, SettingUse::FileOnly, yesWord},
    {Setting::Left, u"Position", u"Left", SettingType::Number, SettingUse::Stored, u"0"},
    {Setting::Top, u"Position", u"Top", SettingType::Number, SettingUse::Stored, u"0"},
    {Setting::Width, u"Position", u"Width", SettingType::Number, SettingUse::Stored, u"0"},
    {Setting::Height, u"Position", u"Height", SettingType::Number, SettingUse::Stored, u"0"},
}};

constexpr const SettingRow &settingRow(Setting key)
{
    return settingRows[static_cast<std::size_t>(key)];
}

static_assert(
    [] {
        for (std::size_t i = 0; i < settingRows.size(); ++i) {
            if (settingRows[i].setting != static_cast<Setting>(i)) {
                return false;
            }
        }
        return true;
    }(),
    "the table stands in the order of the keys");

void thatSettingIsOfAnotherType(); // nowhere defined: reached while compiling only

/// A key of one type, made from the key itself: to hand over one of another type does not compile.
template <SettingType Type> struct TypedSetting {
    consteval TypedSetting(Setting setting) : key(setting)
    {
        if (settingRow(setting).type != Type) {
            thatSettingIsOfAnotherType();
        }
    }
    Setting key;
};

using FlagSetting = TypedSetting<SettingType::Flag>;
using ChoiceSetting = TypedSetting<SettingType::Choice>;
using NumberSetting = TypedSetting<SettingType::Number>;
using MarkSetting = TypedSetting<SettingType::Mark>;

/// The word that a flag is stored as.
[[nodiscard]] inline QString flagText(bool on)
{
    return (on ? trueWord : falseWord).toString();
}

} // namespace corvane
