#pragma once

#include "quillon/system/platform.h"

#include <QList>

#include <functional>

/// A clock that stands still; waits return at once and are recorded.
class TestClock : public quillon::Clock {
public:
    explicit TestClock(const QDateTime &moment) : present(moment), m_before(quillon::setSystemClock(this)) {}
    ~TestClock() override { quillon::setSystemClock(m_before); }
    TestClock(const TestClock &) = delete;
    TestClock &operator=(const TestClock &) = delete;

    [[nodiscard]] QDateTime now() const override { return present; }
    void wait(qint64 milliseconds) override
    {
        waits.append(milliseconds);
        if (whileWaiting) {
            whileWaiting();
        }
    }

    QDateTime present;
    QList<qint64> waits;
    std::function<void()> whileWaiting; ///< what the user does meanwhile

private:
    quillon::Clock *m_before;
};
