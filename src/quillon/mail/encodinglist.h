#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace quillon {

/// One encoding of the list. As text it is its code, " | ", and its display name.
struct EncodingEntry {
    QString Code; ///< a MIME charset name; one that begins with "_" is a note to the program and never offered
    QString Name; ///< as users read it

    /// Nothing for a text that is no entry.
    [[nodiscard]] static std::optional<EncodingEntry> parse(const QString &text);
    [[nodiscard]] QString format() const;
    [[nodiscard]] bool isOffered() const { return !Code.startsWith(u'_'); }

    friend bool operator==(const EncodingEntry &, const EncodingEntry &) = default;
};

/// All encodings of a mail in one text: entries separated by " || ", in the order of the display names.
[[nodiscard]] QString encodingList();

/// Those entries of such a text that are offered to a user, in its order.
[[nodiscard]] QList<EncodingEntry> offeredEncodings(const QString &list);

} // namespace quillon
