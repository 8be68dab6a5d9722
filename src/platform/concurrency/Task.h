// A coroutine that was started and runs on its own: the handle cancels it and waits for its end.
// Dropping the handle changes nothing; the task keeps what it captured alive until it ends.
// The body runs on the executor given, first in a later turn. Cancellation takes effect at the
// task's next suspension (a sleep ends early). An exception that escapes the body is a bug: it is
// reported on standard error and never silently lost.
#pragma once

#include "platform/concurrency/Awaitable.h"

#include <concepts>
#include <functional>
#include <memory>

namespace orlune {

class Task {
  public:
    /// An empty handle: cancelling it does nothing, waiting for it returns at once.
    Task() = default;

    /// Starts `body`, a callable that returns `Awaitable<void>` and takes nothing or its own task.
    template <typename Body>
    static Task start(const Executor& executor, Body body);

    /// May be called from any thread, also on the task itself, any number of times.
    void cancel() const;
    /// True from the moment `cancel()` was called, before the task itself has noticed.
    bool isCancelled() const;
    explicit operator bool() const { return state_ != nullptr; }

    /// Waits until the task has ended, however it ended.
    Awaitable<void> value() const;

  private:
    struct State;
    using Body = std::function<Awaitable<void>(Task)>;
    static Task startBody(const Executor& executor, Body body);
    static Awaitable<void> run(Task task, std::shared_ptr<Body> body);

    explicit Task(std::shared_ptr<State> state) : state_(std::move(state)) {}
    std::shared_ptr<State> state_;
};

template <typename BodyType>
Task Task::start(const Executor& executor, BodyType body) {
    // std::function needs copies; a shared holder admits bodies that can only be moved.
    auto holder = std::make_shared<BodyType>(std::move(body));
    return startBody(executor, [holder](Task task) -> Awaitable<void> {
        if constexpr (std::invocable<BodyType&, Task>) {
            return (*holder)(std::move(task));
        } else {
            return (*holder)();
        }
    });
}

} // namespace orlune
