#pragma once

#include "quillon/system/platform.h"

#include <QList>

#include <functional>

/// Records what is started and ended while it lives, as "start path arguments" and "end name on data root", and
/// does neither.
class TestProcesses : public quillon::Processes {
public:
    TestProcesses() : m_before(quillon::setProcesses(this)) {}
    ~TestProcesses() override { quillon::setProcesses(m_before); }
    TestProcesses(const TestProcesses &) = delete;
    TestProcesses &operator=(const TestProcesses &) = delete;

    quillon::Pending<> end(const QString &executable, const QString &dataRoot) override
    {
        quillon::Pending<> ended;
        endings.append(ended.settler());
        if (!takesItsTime) {
            endings.constLast().settle();
        }
        tell(QStringLiteral("end ") + executable + QStringLiteral(" on ") + dataRoot);
        return ended;
    }
    bool start(const QString &program, const QStringList &arguments) override
    {
        tell((QStringList{QStringLiteral("start"), program} + arguments).join(u' '));
        return true;
    }

    bool takesItsTime = false; ///< an end is not over until its settler is called
    QList<quillon::Pending<>::Settler> endings;

    /// Told each step at its moment.
    std::function<void(const QString &step)> told;

private:
    void tell(const QString &step)
    {
        if (told) {
            told(step);
        }
    }

    quillon::Processes *m_before;
};
