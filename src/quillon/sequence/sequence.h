#pragma once

#include "quillon/sequence/pending.h"
#include "quillon/sequence/task.h"

namespace quillon {

/// Owns a sequence of steps that the one event loop carries: it "blocks" where it awaits something, and the program
/// goes on. Its end, or that of its owner, destroys it where it rests: nothing of it happens afterwards.
class Sequence {
public:
    Sequence() = default;
    ~Sequence() { end(); }
    Sequence(const Sequence &) = delete;
    Sequence &operator=(const Sequence &) = delete;

    /// Begins @p task, and returns when it first waits or is over. One that was under way is ended before.
    void start(Task<> task);

    [[nodiscard]] bool isUnderWay() const { return m_runner && !m_runner->isOver(); }

    /// Ends what is under way. From within one of its own steps that step is finished first; it should be its last.
    void end();

private:
    QPointer<SequenceRunner> m_runner;
};

} // namespace quillon
