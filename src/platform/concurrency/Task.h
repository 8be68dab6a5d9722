// A coroutine that was started and runs independently; the handle cancels it and waits for its end.
// Dropping the handle does not affect the task, which keeps its captures alive until it ends. The
// body runs on the given executor and starts in a later turn. Cancellation takes effect at the
// task's next suspension (a sleep ends early). An exception that escapes the body is a bug and is
// reported on standard error.
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

    /// Starts `body`, a callable that returns `Awaitable<void>` and takes either nothing or its own
    /// task.
    template <typename Body>
    static Task start(const Executor& executor, Body body);

    /// May be called from any thread, from the task itself, and repeatedly.
    void cancel() const;
    /// True as soon as `cancel()` was called, even before the task has noticed.
    bool isCancelled() const;
    explicit operator bool() const { return state_ != nullptr; }

    /// Waits until the task has ended in any way.
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
    // std::function needs copyable callables; a shared holder also supports move-only bodies.
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
