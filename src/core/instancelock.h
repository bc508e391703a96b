#pragma once

#include <QString>

namespace corvane {

/// The test for another instance: a lock on a file beside the data root, wherever that really lies, which the system
/// frees when the process that holds it dies. So there is one program for each tree, from whatever session it was
/// started. Where that file system has no locks, or cannot be written to, the lock is in the user's runtime folder.
class InstanceLock {
public:
    /// Makes the folder that is to hold @p dataRoot, if need be.
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
