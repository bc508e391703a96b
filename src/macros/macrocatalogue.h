#pragma once

#include "core/globals.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// Fields of a line of macros.dll, from 0.
enum MacroField { MacroKey, MacroText, MacroCategory, MacroKind };

/// The predefined lines, in the order in which they are written.
[[nodiscard]] QStringList predefinedMacroLines();

/// Appends the predefined lines when macros.dll holds fewer than ten lines; what is there stays in front of them.
void seedMacros(const ApplicationGlobals &globals);

/// Captions of the insert menu, in file order: all placeholders but those of a user's macros without text. A line of
/// fewer than four fields is passed over.
[[nodiscard]] QStringList macroMenuCaptions(const ApplicationGlobals &globals);

} // namespace corvane
