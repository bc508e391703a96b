#pragma once

#include <QString>

namespace quillon {

/// The one place where a failing operation says so. Without the switch it does nothing: the operation has given its
/// empty value and the program goes on. With the switch it prints @p what to standard error and ends the process
/// with status 70, so that the fault shows where it occurs.
void reportFault(const QString &what);

/// Sets the switch ("/D" on the command line).
void setStopOnFault(bool stop);
[[nodiscard]] bool stopOnFault();

/// Faults reported so far in this process; lets a test see that a silent operation did notice.
[[nodiscard]] int faultCount();

} // namespace quillon
