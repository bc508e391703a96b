#include "macros/macrorow.h"

#include "macros/macrocatalogue.h"
#include "macros/moments.h"
#include "macros/placeholders.h"
#include "quillon/files/linefile.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace corvane {

MacroRow macroRowOf(const QString &line)
{
    const QStringList fields = line.split(u'\t');
    return {fields.value(MacroKey), fields.value(MacroText), fields.value(MacroCategory),
            fields.value(MacroKind) == "D"_L1};
}

QString macroLineOf(const MacroRow &row)
{
    return QStringList{row.macro, row.text, row.category, u"U"_s}.join(u'\t');
}

QList<MacroRow> macroRows(const ApplicationGlobals &globals)
{
    const QStringList lines = globals.lines.ReadLines(globals.paths.macrosFile);
    QList<MacroRow> rows;
    rows.reserve(lines.size());
    for (const QString &line : lines) {
        rows.append(macroRowOf(line));
    }
    return rows;
}

std::optional<QString> sampleText(const QString &macro)
{
    const RecipientValues sample(QString::fromUtf16(sampleRecipient), QString::fromUtf16(sampleAddress));
    if (auto text = recipientText(macro, sample)) {
        return text;
    }
    return momentText(macro);
}

MacroFault checkMacro(const MacroRow &row, const QStringList &present, qsizetype own)
{
    if (row.text.isEmpty() || row.macro == QStringView(emptyMacro)) {
        return MacroFault::NoMacro;
    }
    if (!row.macro.startsWith(u'{') || !row.macro.endsWith(u'}')) {
        return MacroFault::NoDelimiters;
    }
    for (qsizetype i = 0; i < present.size(); ++i) {
        if (i != own && present.at(i) == row.macro) {
            return MacroFault::Exists;
        }
    }
    return MacroFault::None;
}

QString messageKeyOf(MacroFault fault)
{
    switch (fault) {
    case MacroFault::None:
    case MacroFault::NotWritten:
        break;
    case MacroFault::NoMacro:
        return u"NO_MACRO"_s;
    case MacroFault::NoDelimiters:
        return u"ERR_MACRO_DELIMITER"_s;
    case MacroFault::Exists:
        return u"MACRO_EXISTS"_s;
    }
    return {};
}

bool addMacro(const ApplicationGlobals &globals, const MacroRow &row)
{
    return globals.lines.AppendLine(globals.paths.macrosFile, macroLineOf(row));
}

bool replaceMacro(const ApplicationGlobals &globals, const MacroRow &old, const MacroRow &row)
{
    return globals.lines.ReplaceLine(globals.paths.macrosFile, macroLineOf(old), macroLineOf(row), QString(), 0);
}

bool deleteMacros(const ApplicationGlobals &globals, const QStringList &macros)
{
    const QSet<QString> keys(macros.begin(), macros.end());
    quillon::LineFile file(globals.paths.macrosFile);
    const auto isOne = [&](const QString &line) { return keys.contains(line.section(u'\t', MacroKey, MacroKey)); };
    const bool nothingToDo = file.removeIf(isOne) == 0 && file.readable();
    return nothingToDo || file.save();
}

} // namespace corvane
