#pragma once

#include "core/settingkeys.h"
#include "quillon/text/quillonsenderinfo.h"

#include <QString>

#include <array>
#include <optional>

namespace corvane {

/// The settings as text, as they were last read and unchecked, and the rules by which their readers take them.
class SettingsMemory {
public:
    /// As it was read.
    [[nodiscard]] const QString &text(Setting key) const;
    /// Its default in place of an empty value.
    [[nodiscard]] QString textOrStandard(Setting key) const;

    /// Whether it is exactly that word.
    [[nodiscard]] bool is(ChoiceSetting choice, QStringView word) const { return text(choice.key) == word; }
    /// Whether it is exactly "True".
    [[nodiscard]] bool isTrue(FlagSetting flag) const { return text(flag.key) == trueWord; }
    /// Whether it is anything but exactly "False".
    [[nodiscard]] bool isNotFalse(FlagSetting flag) const { return text(flag.key) != falseWord; }

    /// The number, that of the default in place of an empty value; nothing for what is no finite number.
    [[nodiscard]] std::optional<double> number(NumberSetting number) const;
    [[nodiscard]] static double standardNumber(NumberSetting number);

    /// The default sender; stays where it is, so that it may be referred to.
    [[nodiscard]] const quillon::QuillonSenderInfo &sender() const { return m_sender; }

    /// Changes memory only. A key that is not held here is passed over.
    void set(Setting key, const QString &value);

private:
    template <typename Memory> static auto &placeOf(Memory &memory, Setting key);

    std::array<QString, settingRows.size()> m_texts; ///< empty where m_sender holds the text
    quillon::QuillonSenderInfo m_sender;
};

} // namespace corvane
