#pragma once

#include "core/globals.h"
#include "macros/macrotexts.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace corvane {

/// One macro of the catalogue, as its line has it.
struct MacroRow {
    QString macro; ///< the placeholder, braces included
    QString text;
    QString category;
    bool predefined = false; ///< computed at send time; can be neither edited nor deleted

    friend bool operator==(const MacroRow &, const MacroRow &) = default;
};

/// A line as a row; a line of fewer than four fields fills it as far as it goes, and is a user's.
[[nodiscard]] MacroRow macroRowOf(const QString &line);
/// The line of a user's macro.
[[nodiscard]] QString macroLineOf(const MacroRow &row);
/// All lines of macros.dll, in file order.
[[nodiscard]] QList<MacroRow> macroRows(const ApplicationGlobals &globals);

/// What stands in the sample column instead of the line's own text, for the sample recipient and the present moment;
/// nothing for a macro that shows its own text.
[[nodiscard]] std::optional<QString> sampleText(const QString &macro);

/// What is wrong with a macro.
enum class MacroFault {
    None,
    NoMacro,      ///< no text, or a placeholder with nothing in its braces
    NoDelimiters, ///< not enclosed in braces
    Exists,       ///< another row has this placeholder
    NotWritten,   ///< it could not be written, of which the status bar tells
};

/// Tests a row, its texts as fieldText() gives them, against the placeholders of all rows, exact in case. @p own is the
/// index of the row that is edited and may keep its placeholder, -1 when a macro is added. The faults are looked for in
/// the order of the enum.
[[nodiscard]] MacroFault checkMacro(const MacroRow &row, const QStringList &present, qsizetype own);
/// The message key of a fault; empty for none, and for one that no box tells.
[[nodiscard]] QString messageKeyOf(MacroFault fault);

/// The changes of macros.dll. A replaced line must stand there exactly as @p old has it; deleting removes every line
/// of those placeholders, in one rewrite. False when the file could not be written.
bool addMacro(const ApplicationGlobals &globals, const MacroRow &row);
bool replaceMacro(const ApplicationGlobals &globals, const MacroRow &old, const MacroRow &row);
bool deleteMacros(const ApplicationGlobals &globals, const QStringList &macros);

} // namespace corvane
