#include "quillon/sequence/sequence.h"

#include <QTimer>

#include <utility>

namespace quillon {

SequenceRunner::~SequenceRunner()
{
    destroyFrames();
}

void SequenceRunner::destroyFrames()
{
    if (const std::coroutine_handle<> frame = std::exchange(m_outermost, nullptr)) {
        frame.destroy();
    }
}

void SequenceRunner::resume(std::coroutine_handle<> frame)
{
    m_running = true;
    frame.resume();
    m_running = false;
    if (m_ended || m_outermost.done()) {
        destroyFrames();
    }
    if (m_ended) {
        deleteLater(); // it may be within a call of the event loop
    }
}

void SequenceRunner::resumeLater(std::coroutine_handle<> frame)
{
    QMetaObject::invokeMethod(
        this, [this, frame] { resume(frame); }, Qt::QueuedConnection);
}

void SequenceRunner::end()
{
    if (m_running) {
        m_ended = true;
    } else {
        delete this;
    }
}

void Sequence::start(Task<> task)
{
    end();
    const auto frame = std::exchange(task.m_frame, nullptr);
    m_runner = new SequenceRunner(frame);
    frame.promise().runner = m_runner;
    m_runner->resume(frame);
}

void Sequence::end()
{
    if (SequenceRunner *runner = m_runner) {
        m_runner.clear();
        runner->end();
    }
}

Pending<> nextTurn()
{
    Pending<> pending;
    // A timer of no time comes behind the events that wait, those of the user among them.
    QTimer::singleShot(0, QCoreApplication::instance(), [settler = pending.settler()] { settler.settle(); });
    return pending;
}

Pending<> elapsed(qint64 milliseconds)
{
    if (milliseconds <= 0) {
        return Pending<>::settled();
    }
    Pending<> pending;
    QTimer::singleShot(std::chrono::milliseconds(milliseconds), Qt::PreciseTimer, QCoreApplication::instance(),
                       [settler = pending.settler()] { settler.settle(); });
    return pending;
}

} // namespace quillon
