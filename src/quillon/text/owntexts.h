#pragma once

#include <QString>

namespace quillon {

/// A sentence of our own: where it stands in the language file, and the English text for a file that lacks it. The
/// language file in English holds each of them with the same text; scripts/check-texts sees to that. Each is a named
/// constant in its room's texts file, and is looked up by its place in memory.
struct OwnText {
    const char16_t *section;
    const char16_t *key;
    const char16_t *english; ///< with %1, %2 ... for what is put in
};

/// Where the sentences of the language in use come from. The rooms above bring one.
class TextSource {
public:
    virtual ~TextSource() = default;
    /// The text of a key, empty where there is none.
    [[nodiscard]] virtual QString text(const QString &section, const QString &key) = 0;
    /// Looks whether text() may now give others than before.
    [[nodiscard]] virtual bool hasChanged() = 0;
};

/// Puts another source in force and returns the one before; nullptr means the English texts. The caller keeps
/// ownership.
TextSource *setTextSource(TextSource *next);

/// Asks the source whether its texts have changed. That is done where work of the user's begins, since looking at a
/// file for each sentence would cost a mail more than its sentences do.
void refreshTexts();

/// A sentence in the language in use, without anything put in. Looked up once after each change.
[[nodiscard]] QString ownText(const OwnText &what);

/// A sentence in the language in use with @p words (texts all of them) in the places of %1, %2 and so on. What a word
/// holds is never taken for such a place.
template <typename... Words> [[nodiscard]] QString say(const OwnText &what, const Words &...words)
{
    if constexpr (sizeof...(words) == 0) {
        return ownText(what);
    } else {
        return ownText(what).arg(words...);
    }
}

} // namespace quillon
