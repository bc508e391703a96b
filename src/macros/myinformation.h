#pragma once

#include "core/globals.h"

namespace corvane {

/// Fills those of the macros {My First Name}, {My Last Name}, {My Full Name} and {My Email Address} that have no text
/// yet from the name and the address of who sends. A filled macro moves to the end of macros.dll; one that has a text,
/// or that was deleted, is left alone. The file is rewritten once, so that a kill loses no macro.
void SyncMyInformation(const ApplicationGlobals &globals, const QString &name, const QString &address);

} // namespace corvane
