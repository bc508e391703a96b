#pragma once

#include "quillon/system/platform.h"

#include <QList>

#include <functional>

/// A clock that stands still; waits are recorded and take one turn of the event loop.
class TestClock : public quillon::Clock {
public:
    explicit TestClock(const QDateTime &moment) : present(moment), m_before(quillon::setSystemClock(this)) {}
    ~TestClock() override { quillon::setSystemClock(m_before); }
    TestClock(const TestClock &) = delete;
    TestClock &operator=(const TestClock &) = delete;

    [[nodiscard]] QDateTime now() const override { return present; }
    quillon::Pending<> wait(qint64 milliseconds) override
    {
        waits.append(milliseconds);
        return quillon::fromEventLoop([user = whileWaiting] {
            if (user) {
                user();
            }
        });
    }

    QDateTime present;
    QList<qint64> waits;
    std::function<void()> whileWaiting; ///< what the user does meanwhile

private:
    quillon::Clock *m_before;
};
