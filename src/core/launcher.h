#pragma once

#include "core/companion.h"
#include "core/globals.h"

#include <QStringList>

#include <functional>

namespace corvane {

/// True when the whole command line, upper-cased, is "/D". @p arguments come without the program's own name.
[[nodiscard]] bool isSwitch(const QStringList &arguments);

/// What must exist before any window may: the data tree, converted data, settings; and an old system's temporary
/// mail account gone.
void prepareProgram(ApplicationGlobals &globals);

/// What the splash's timer hands over to; every step is required.
struct HandOver {
    std::function<void()> showMainWindow;
    std::function<void()> createHiddenProgress;
    std::function<void(int milliseconds)> setPositionTimer;
    std::function<void()> unloadSplash;
    std::function<bool()> isEnding; ///< whether the program's end began while the main window loaded
};

/// Brings the main window up and restarts the companion, in this order; where that one takes its time to end, its start
/// comes behind the other steps. Nothing follows once the program is ending.
void handOver(ApplicationGlobals &globals, Companion &companion, HandOver steps);

/// What the exit needs of the windows; every step is required.
struct ExitSteps {
    std::function<bool()> saveCancelled; ///< the check for an unsaved message; true: stay
    std::function<void(const QString &form)> unloadForm;
    std::function<void()> closeHelp;
    std::function<void()> removeTrayIcon;
    std::function<void()> unloadMainWindow; ///< with the tag that lets it go
};

/// The one way out of the program. False when the user stayed. The companion outlives the task.
quillon::Task<bool> exitProgram(Companion &companion, bool stopScheduler, ExitSteps steps);

} // namespace corvane
