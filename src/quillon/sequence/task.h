#pragma once

#include "quillon/sequence/runner.h"

#include <coroutine>
#include <exception>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace quillon {

/// A part of a sequence, written as a coroutine: it begins when it is awaited, or with Sequence::start(), and ends with
/// its owner, whose destruction destroys the frame wherever it rests, the locals inside out. Its parameters are values,
/// or objects that outlive the sequence: a reference to a temporary of the caller dangles at the first wait. A lambda
/// that is a coroutine captures nothing.
template <typename T = void> class [[nodiscard]] Task {
    using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

    struct Base {
        SequenceRunner *runner = nullptr;
        std::coroutine_handle<> awaiting; ///< the frame that goes on when this one is over

        struct Ending {
            [[nodiscard]] bool await_ready() const noexcept { return false; }
            template <typename Promise>
            std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> frame) const noexcept
            {
                const std::coroutine_handle<> awaiting = frame.promise().awaiting;
                return awaiting ? awaiting : std::noop_coroutine();
            }
            void await_resume() const noexcept {}
        };

        std::suspend_always initial_suspend() noexcept { return {}; }
        Ending final_suspend() noexcept { return {}; }
        void unhandled_exception() noexcept { std::terminate(); }
    };

    struct ValuePromise : Base {
        std::optional<Value> value;
        void return_value(Value result) { value = std::move(result); }
    };

    struct VoidPromise : Base {
        void return_void() noexcept {}
    };

public:
    struct promise_type : std::conditional_t<std::is_void_v<T>, VoidPromise, ValuePromise> {
        Task get_return_object() { return Task(std::coroutine_handle<promise_type>::from_promise(*this)); }
    };

    ~Task()
    {
        if (m_frame) {
            m_frame.destroy();
        }
    }
    Task(Task &&other) noexcept : m_frame(std::exchange(other.m_frame, nullptr)) {}
    Task &operator=(Task &&other) noexcept
    {
        std::swap(m_frame, other.m_frame);
        return *this;
    }
    Task(const Task &) = delete;
    Task &operator=(const Task &) = delete;

    // What co_await asks.
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <typename Promise> std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> caller) noexcept
    {
        m_frame.promise().runner = caller.promise().runner;
        m_frame.promise().awaiting = caller;
        return m_frame;
    }
    T await_resume()
    {
        if constexpr (!std::is_void_v<T>) {
            return std::move(*m_frame.promise().value);
        }
    }

private:
    friend class Sequence;

    explicit Task(std::coroutine_handle<promise_type> frame) : m_frame(frame) {}

    std::coroutine_handle<promise_type> m_frame;
};

} // namespace quillon
