#include "macros/forms/macroitem.h"

#include "macros/moments.h"
#include "quillon/text/textorder.h"

#include <QBrush>
#include <QTreeWidget>

namespace corvane {

MacroItem::MacroItem(const MacroRow &row) : QTreeWidgetItem(rowType)
{
    setRow(row);
}

void MacroItem::setRow(const MacroRow &row)
{
    m_row = row;
    setText(MacroNameColumn, row.macro);
    setText(MacroSampleColumn, sampleText(row.macro).value_or(row.text));
    setText(MacroCategoryColumn, row.category);
    setData(MacroNameColumn, predefinedRole, row.predefined);
}

void MacroItem::refreshSample()
{
    if (const auto sample = momentText(m_row.macro); sample && *sample != text(MacroSampleColumn)) {
        setText(MacroSampleColumn, *sample);
    }
}

void MacroItem::setPredefinedColor(const QColor &color)
{
    if (!m_row.predefined) {
        return;
    }
    for (const int column : {MacroNameColumn, MacroSampleColumn, MacroCategoryColumn}) {
        setForeground(column, QBrush(color));
    }
}

bool MacroItem::operator<(const QTreeWidgetItem &other) const
{
    const QTreeWidget *list = treeWidget();
    const int column = list ? list->sortColumn() : MacroNameColumn;
    const QString mine = text(column);
    const QString others = other.text(column);
    static const quillon::TextOrder texts; // made once: each comparison of a long list asks for it
    const int order = texts.compare(mine, others);
    return order != 0 ? order < 0 : mine < others;
}

} // namespace corvane
