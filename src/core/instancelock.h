#pragma once

#include <QString>

namespace corvane {

/// The test for another instance: a lock in the user's runtime folder, one for each data root, which the system frees
/// when the process that holds it dies.
class InstanceLock {
public:
    explicit InstanceLock(const QString &dataRoot);
    ~InstanceLock();
    InstanceLock(const InstanceLock &) = delete;
    InstanceLock &operator=(const InstanceLock &) = delete;

    /// True when another process holds the lock. A lock that cannot be made at all lets the program start.
    [[nodiscard]] bool otherInstanceRuns() const { return m_other; }

private:
    int m_file = -1;
    bool m_other = false;
};

} // namespace corvane
