#pragma once

#include "macros/macrorow.h"

#include <QTreeWidgetItem>

namespace corvane {

/// Columns of the macro list.
enum MacroColumn { MacroNameColumn, MacroSampleColumn, MacroCategoryColumn };

/// A row of the macro list. What it holds is kept beside what it shows: the sample column may show a text that is not
/// the macro's own, and the grey of a predefined row is only a colour.
class MacroItem : public QTreeWidgetItem {
public:
    static constexpr int rowType = QTreeWidgetItem::UserType + 1;
    static constexpr int predefinedRole = Qt::UserRole;

    explicit MacroItem(const MacroRow &row);

    [[nodiscard]] const MacroRow &row() const { return m_row; }
    [[nodiscard]] bool predefined() const { return m_row.predefined; }
    /// Puts another macro into this row.
    void setRow(const MacroRow &row);
    /// Shows the sample of this moment, in a row that has one.
    void refreshSample();
    /// Draws a predefined row in that colour.
    void setPredefinedColor(const QColor &color);

    /// By the text of the column that the list is sorted by, without regard to case unless nothing else differs.
    bool operator<(const QTreeWidgetItem &other) const override;

private:
    MacroRow m_row;
};

} // namespace corvane
