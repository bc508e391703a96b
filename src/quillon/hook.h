#pragma once

#include "quillon/fault.h"

#include <functional>

namespace quillon {

/// Tells that the hook of that name, such as "MainHooks::send", was not set: a fault, and a warning that fails a test.
void reportMissingHook(const QString &name);

/// To be called once for each hook by what is handed it, so that nobody tests for it again: in place of one that is
/// not set stands one that does nothing and gives an empty value.
template <typename Result, typename... Arguments>
void requireHook(std::function<Result(Arguments...)> &hook, const QString &name)
{
    if (!hook) {
        reportMissingHook(name);
        hook = [](Arguments...) { return Result(); };
    }
}

} // namespace quillon
