#pragma once

namespace corvane {

/// How a run came about. An automatic one asks and shows nothing: its faults go to the log alone.
enum class RunMode { Manual, Automatic };

/// What the send run is doing. The run owns it and moves it on; whoever shows the run, or stops it, asks it.
class RunState {
public:
    enum class Phase {
        Resting,
        Checking,  ///< the fields; nothing is logged yet
        Preparing, ///< connecting, filling the message, packing folders
        Counting,  ///< mails go out
        Stopping,  ///< Cancel was pressed: the mail under way is finished, the next one is not begun
        Closing,   ///< the outcome is told
    };

    [[nodiscard]] Phase phase() const { return m_phase; }
    /// Keeps a second run out.
    [[nodiscard]] bool Sending() const { return m_phase != Phase::Resting; }
    /// Whether the status line tells of the run, so that no hint may take its place.
    [[nodiscard]] bool isTold() const { return Sending() && m_phase != Phase::Checking; }
    [[nodiscard]] bool isCounting() const { return m_phase == Phase::Counting; }
    [[nodiscard]] bool pblnStop() const { return m_phase == Phase::Stopping; }

    void enter(Phase phase) { m_phase = phase; }
    /// Cancel. While no mail is to come it has nothing to stop.
    void requestStop()
    {
        if (m_phase == Phase::Preparing || m_phase == Phase::Counting) {
            m_phase = Phase::Stopping;
        }
    }

private:
    Phase m_phase = Phase::Resting;
};

} // namespace corvane
