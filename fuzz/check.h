#pragma once

#include <cstdlib>

/// Ends the run, so that the fuzzer keeps the input, when what must hold does not.
inline void mustHold(bool holds)
{
    if (!holds) {
        std::abort();
    }
}
