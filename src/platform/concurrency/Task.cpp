#include "platform/concurrency/Task.h"

#include "platform/concurrency/Continuation.h"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>

#include <cstdio>
#include <mutex>
#include <vector>

namespace orlune {

namespace asio = boost::asio;

struct Task::State {
    explicit State(Executor taskExecutor) : executor(std::move(taskExecutor)) {}

    void finish() {
        std::vector<Continuation<std::monostate>> ended;
        {
            const std::lock_guard lock(mutex);
            finished = true;
            ended.swap(waiters);
        }
        for (const auto& waiter : ended) {
            waiter.resume();
        }
    }

    const Executor executor;
    asio::cancellation_signal signal; // only touched on `executor`
    std::atomic<bool> cancelled = false;
    std::mutex mutex;
    bool finished = false;
    std::vector<Continuation<std::monostate>> waiters;
};

namespace {

/// Reports an error that escaped a task, except the normal end of a cancelled one.
void reportEscaped(const std::exception_ptr& error, bool cancelled) {
    try {
        std::rethrow_exception(error);
    } catch (const boost::system::system_error& systemError) {
        if (cancelled && systemError.code() == asio::error::operation_aborted) {
            return;
        }
        std::fprintf(stderr, "orlune: an error escaped a task: %s\n", systemError.what());
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "orlune: an error escaped a task: %s\n", exception.what());
    } catch (...) {
        std::fputs("orlune: an unknown error escaped a task\n", stderr);
    }
}

} // namespace

Awaitable<void> Task::run(Task task, std::shared_ptr<Body> body) {
    auto running = (*body)(std::move(task));
    co_await std::move(running);
}

Task Task::startBody(const Executor& executor, Body body) {
    Task task(std::make_shared<State>(executor));
    auto held = std::make_shared<Body>(std::move(body));
    // When the executor ends, it unwinds the task, even one that has not begun. The task counts as
    // ended then, so that its waiters are resumed.
    std::shared_ptr<void> ending(nullptr, [state = task.state_](void*) { state->finish(); });
    asio::post(executor, [task, held = std::move(held), ending = std::move(ending)]() mutable {
        auto state = task.state_;
        asio::co_spawn(state->executor, run(std::move(task), std::move(held)),
                       asio::bind_cancellation_slot(
                           state->signal.slot(),
                           [state, ending = std::move(ending)](const std::exception_ptr& error) {
                               if (error) {
                                   reportEscaped(error, state->cancelled);
                               }
                           }));
        if (state->cancelled) {
            state->signal.emit(asio::cancellation_type::terminal);
        }
    });
    return task;
}

void Task::cancel() const {
    if (!state_ || state_->cancelled.exchange(true)) {
        return;
    }
    asio::post(state_->executor,
               [state = state_] { state->signal.emit(asio::cancellation_type::terminal); });
}

bool Task::isCancelled() const {
    return state_ && state_->cancelled;
}

Awaitable<void> Task::value() const {
    if (!state_) {
        co_return;
    }
    auto wait = withContinuation<std::monostate>([state = state_](auto continuation) {
        {
            const std::lock_guard lock(state->mutex);
            if (!state->finished) {
                state->waiters.push_back(std::move(continuation));
                return;
            }
        }
        continuation.resume();
    });
    co_await std::move(wait);
}

} // namespace orlune
