#pragma once

#include <QObject>

#include <coroutine>

namespace quillon {

/// Carries the frames of one sequence: whatever goes on in it does so through here, one frame at a time. Made and ended
/// by Sequence.
class SequenceRunner : public QObject {
    Q_OBJECT

public:
    /// Takes over the outermost frame.
    explicit SequenceRunner(std::coroutine_handle<> outermost) : m_outermost(outermost) {}
    ~SequenceRunner() override;

    /// Lets @p frame go on, until the sequence waits again or is over.
    void resume(std::coroutine_handle<> frame);

    /// The same, from the event loop; left out when the sequence is ended before.
    void resumeLater(std::coroutine_handle<> frame);

    [[nodiscard]] bool isOver() const { return !m_outermost; }

    /// Destroys the frames and this object: at once while the sequence waits, else as soon as it waits or is over.
    void end();

private:
    void destroyFrames();

    std::coroutine_handle<> m_outermost; ///< none when it is over
    bool m_running = false;
    bool m_ended = false;
};

} // namespace quillon
