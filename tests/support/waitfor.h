#pragma once

#include "quillon/sequence/sequence.h"

#include <QEventLoop>

/// Lets the event loop run until @p pending is settled, and gives its value.
template <typename T> T waitFor(quillon::Pending<T> pending)
{
    if (!pending.isSettled()) {
        QEventLoop loop;
        pending.whenSettled([&loop] { loop.quit(); });
        loop.exec();
    }
    return pending.await_resume();
}

template <typename T> quillon::Task<> settleWith(quillon::Task<T> task, typename quillon::Pending<T>::Settler settler)
{
    if constexpr (std::is_void_v<T>) {
        co_await task;
        settler.settle();
    } else {
        settler.settle(co_await task);
    }
}

/// The same for a task, which it begins.
template <typename T> T waitFor(quillon::Task<T> task)
{
    quillon::Pending<T> pending;
    quillon::Sequence sequence;
    sequence.start(settleWith<T>(std::move(task), pending.settler()));
    return waitFor(std::move(pending));
}
