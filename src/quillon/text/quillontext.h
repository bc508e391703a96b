#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace quillon {

/// Texts that depend on the system or on the language files.
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

    /// Sets captions and tool tips of the form's controls from a language file. Sections are named after the form;
    /// keys are `<objectName>` for the caption and `<objectName>.tip` for the tool tip; `<form>` itself as the key
    /// sets the form's title. A key that is not there leaves the control as it was designed.
    void ApplyControlTexts(QWidget *form, const QString &path) const;
    /// Sets captions of the form's menus and menu items (QMenu and QAction by objectName) from a language file.
    void ApplyMenuTexts(QWidget *form, const QString &path) const;
};

} // namespace quillon
