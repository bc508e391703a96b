#pragma once

#include <QString>
#include <QStringList>

namespace corvane {

/// Runs the program until its exit and gives the process's status; a second instance over the same data ends at once
/// and silently. The application object exists already. @p arguments come without the program's own name.
int runProgram(const QString &programFolder, const QStringList &arguments);

} // namespace corvane
