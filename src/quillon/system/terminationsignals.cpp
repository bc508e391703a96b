#include "quillon/system/terminationsignals.h"

#include "quillon/fault.h"

#include <QSocketNotifier>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

std::atomic<int> writeEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "it is read while anything may be half done");

/// Nothing but a write may be done here, and a full pipe has told enough.
void note(int)
{
    const int reason = errno;
    const char octet = 0;
    if (const int file = writeEnd; file >= 0) {
        [[maybe_unused]] const ssize_t count = ::write(file, &octet, 1);
    }
    errno = reason;
}

} // namespace

TerminationSignals::TerminationSignals()
{
    if (::pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        reportFault(u"cannot make a pipe for signals"_s);
        return;
    }
    writeEnd = m_pipe[1];
    connect(new QSocketNotifier(m_pipe[0], QSocketNotifier::Read, this), &QSocketNotifier::activated, this,
            &TerminationSignals::read);
    struct sigaction action {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        ::sigaction(numbers[i], &action, &m_before[i]);
    }
}

TerminationSignals::~TerminationSignals()
{
    if (writeEnd < 0) {
        return;
    }
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        ::sigaction(numbers[i], m_received ? &ignore : &m_before[i], nullptr);
    }
    writeEnd = -1;
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

void TerminationSignals::read()
{
    std::array<char, 64> octets{};
    while (::read(m_pipe[0], octets.data(), octets.size()) > 0) {
        m_received = true;
    }
    Q_EMIT received();
}

} // namespace quillon
