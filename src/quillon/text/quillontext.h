#pragma once

#include <QString>
#include <QStringList>

namespace quillon {

/// Texts that depend on the system; QuillonFormTexts has those of the language files.
class QuillonText {
public:
    /// All encodings as one text: entries of code, " | ", display name, separated by " || ". Entries that begin with
    /// "_" are not offered to a user.
    [[nodiscard]] QString GetEncodingList() const;

    /// A colour given as 0xBBGGRR in HTML's notation, "#RRGGBB"; bits above the lowest 24 are ignored.
    [[nodiscard]] QString ColorToHtml(long color) const;

    /// True if @p value equals an element of @p list, case included.
    [[nodiscard]] bool IsInList(const QString &value, const QStringList &list) const;

    /// English name of a week-day, Sunday being 1, as mail's Date header wants it (RFC 5322: "Sun"); empty with a fault
    /// for another number.
    [[nodiscard]] QString WeekdayText(int number) const;
    /// English name of a month, 1 to 12, as mail's Date header wants it ("Jan"); empty with a fault for another number.
    [[nodiscard]] QString MonthText(int number) const;
};

} // namespace quillon
