#include "quillon/fault.h"

#include <cstdio>
#include <cstdlib>

namespace quillon {

namespace {
constexpr int internalSoftwareError = 70; // EX_SOFTWARE of sysexits.h
bool stop = false;
int faults = 0;
} // namespace

void reportFault(const QString &what)
{
    ++faults;
    if (!stop) {
        return;
    }
    std::fprintf(stderr, "corvane: fault: %s\n", what.toLocal8Bit().constData());
    std::fflush(stderr);
    std::_Exit(internalSoftwareError);
}

void setStopOnFault(bool value)
{
    stop = value;
}

bool stopOnFault()
{
    return stop;
}

int faultCount()
{
    return faults;
}

} // namespace quillon
