#pragma once

#include <QObject>

#include <array>
#include <csignal>

namespace quillon {

/// While it lives, the system's requests to end (SIGTERM, SIGINT) do not end the process but come as a signal of the
/// event loop, whichever one runs; what comes before there is one is told by the first. One object at a time.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    /// Gives the signals back to who had them. Where one has come, the process is ending: further ones are ignored from
    /// then on, so that they do not cut its last steps short.
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    void read();

    static constexpr std::array<int, 2> numbers = {SIGTERM, SIGINT};
    std::array<struct sigaction, 2> m_before{};
    std::array<int, 2> m_pipe = {-1, -1};
    bool m_received = false;
};

} // namespace quillon
