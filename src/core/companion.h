#pragma once

#include "core/globals.h"
#include "quillon/sequence/sequence.h"

#include <optional>

namespace corvane {

/// The scheduler, a program of its own that comes and goes with this one. To wait for its end the event loop goes on.
class Companion {
public:
    /// @p stopOnFault: it is started with the switch.
    Companion(const ApplicationGlobals &globals, bool stopOnFault) : m_globals(globals), m_stopOnFault(stopOnFault) {}

    /// Ends one that runs and starts it again from the program's folder; one that is missing is no fault. Returns when
    /// it first waits.
    void restart();

    /// Over when it is as the program's exit leaves it: ended, or running on, and then not before a restart that is
    /// under way has started it. This object outlives the task.
    quillon::Task<> takeLeave(bool stop);

private:
    quillon::Task<> endAndStart();
    void start() const;

    const ApplicationGlobals &m_globals;
    bool m_stopOnFault;
    std::optional<quillon::Pending<>::Settler> m_restarted; ///< who waits for the end of a restart
    quillon::Sequence m_restart;
};

} // namespace corvane
