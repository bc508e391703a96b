#pragma once

#include "quillon/sequence/runner.h"

#include <QCoreApplication>
#include <QObject>
#include <QPointer>

#include <coroutine>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace quillon {

/// What an operation will have done, or will yield, later. A sequence awaits it (co_await) and goes on from a call of
/// the event loop's own, never from within the socket or the timer that settled it, so that it may destroy those. An
/// operation that ends without a result settles all the same; who awaits it would wait for ever otherwise.
template <typename T = void> class [[nodiscard]] Pending {
    using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

    struct State {
        std::optional<Value> value;
        std::function<void()> wake;
        bool wanted = true;
    };

public:
    /// The operation's end of it.
    class Settler {
    public:
        explicit Settler(std::shared_ptr<State> state) : m_state(std::move(state)) {}

        /// Whether somebody still holds the other end.
        [[nodiscard]] bool isWanted() const { return m_state->wanted; }

        /// Only the first call counts.
        void settle(Value value = Value()) const
        {
            if (m_state->value) {
                return;
            }
            m_state->value = std::move(value);
            if (const auto wake = std::exchange(m_state->wake, nullptr)) {
                wake();
            }
        }

    private:
        std::shared_ptr<State> m_state;
    };

    Pending() : m_state(std::make_shared<State>()) {}
    ~Pending() { letGo(); }
    Pending(Pending &&other) noexcept : m_state(std::exchange(other.m_state, nullptr)) {}
    Pending &operator=(Pending &&other) noexcept
    {
        if (this != &other) {
            letGo();
            m_state = std::exchange(other.m_state, nullptr);
        }
        return *this;
    }
    Pending(const Pending &) = delete;
    Pending &operator=(const Pending &) = delete;

    /// One that is settled from the start.
    static Pending settled(Value value = Value())
    {
        Pending pending;
        pending.m_state->value = std::move(value);
        return pending;
    }

    [[nodiscard]] Settler settler() const { return Settler(m_state); }
    [[nodiscard]] bool isSettled() const { return m_state->value.has_value(); }

    /// For those who are no sequence: @p wake is called once, when it is settled, from where that happens.
    void whenSettled(const std::function<void()> &wake) { m_state->wake = wake; }

    // What co_await asks.
    [[nodiscard]] bool await_ready() const { return isSettled(); }
    template <typename Promise> void await_suspend(std::coroutine_handle<Promise> frame)
    {
        whenSettled([runner = QPointer<SequenceRunner>(frame.promise().runner), frame] {
            if (runner) {
                runner->resumeLater(frame);
            }
        });
    }
    T await_resume()
    {
        if constexpr (!std::is_void_v<T>) {
            return std::move(*m_state->value);
        }
    }

private:
    void letGo()
    {
        if (m_state) {
            m_state->wake = nullptr;
            m_state->wanted = false;
        }
    }

    std::shared_ptr<State> m_state;
};

/// The result of @p call, made from the event loop while the sequence rests: for what blocks, such as a box. A sequence
/// that is ended meanwhile is gone at once, and nothing of it happens after the box. Holds what @p call captured by
/// itself, so that must be values.
template <typename Call> auto fromEventLoop(Call call) -> Pending<std::invoke_result_t<Call>>
{
    using T = std::invoke_result_t<Call>;
    Pending<T> pending;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [settler = pending.settler(), call = std::move(call)] {
            if (!settler.isWanted()) {
                return;
            }
            if constexpr (std::is_void_v<T>) {
                call();
                settler.settle();
            } else {
                settler.settle(call());
            }
        },
        Qt::QueuedConnection);
    return pending;
}

/// Settled when the event loop has handled what waits there now.
[[nodiscard]] Pending<> nextTurn();

/// Settled after that time; at once when it is 0 or less.
[[nodiscard]] Pending<> elapsed(qint64 milliseconds);

} // namespace quillon
