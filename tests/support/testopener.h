#pragma once

#include "quillon/system/platform.h"

/// Records what is opened while it lives, instead of opening it.
class TestOpener : public quillon::DesktopOpener {
public:
    TestOpener() : m_before(quillon::setDesktopOpener(this)) {}
    ~TestOpener() override { quillon::setDesktopOpener(m_before); }
    TestOpener(const TestOpener &) = delete;
    TestOpener &operator=(const TestOpener &) = delete;

    bool open(const QString &pathOrUrl) override
    {
        opened.append(pathOrUrl);
        return true;
    }

    QStringList opened;

private:
    quillon::DesktopOpener *m_before;
};
