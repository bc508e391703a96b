#pragma once

#include <QCollator>
#include <QLocale>
#include <QString>

namespace quillon {

/// The order of a list that people read: texts as the locale sorts them, without regard to case.
class TextOrder {
public:
    /// A locale that has no order of its own, such as "C", sorts as English does.
    explicit TextOrder(const QLocale &locale = QLocale::system());

    /// Below, equal to or above 0 as @p left stands before, beside or behind @p right.
    [[nodiscard]] int compare(const QString &left, const QString &right) const;
    /// The same for whole numbers, by their value; a text that is none stands behind them.
    [[nodiscard]] int compareNumbers(const QString &left, const QString &right) const;

private:
    QCollator m_collator;
};

} // namespace quillon
