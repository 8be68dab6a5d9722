// The bridge from callbacks to coroutines: a coroutine suspends, and the owner of its Continuation
// resumes it, from any thread, at most once. Nothing else in the program uses Asio's completion
// handlers directly. A cancelled wait ends with `operation_aborted`; a continuation that is dropped
// without being resumed unwinds its coroutine.
#pragma once

#include "platform/concurrency/Awaitable.h"

#include <boost/asio/associated_cancellation_slot.hpp>
#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/system/system_error.hpp>

#include <atomic>
#include <exception>
#include <memory>
#include <utility>
#include <variant>

namespace orlune {

namespace detail {

template <typename Value>
class SuspendedCoroutine {
  public:
    virtual ~SuspendedCoroutine() = default;
    virtual void resume(std::exception_ptr error, Value value) = 0;
    virtual bool isResumed() const = 0;
};

template <typename Value, typename Handler>
class SuspendedHandler final
    : public SuspendedCoroutine<Value>,
      public std::enable_shared_from_this<SuspendedHandler<Value, Handler>> {
  public:
    explicit SuspendedHandler(Handler handler)
        : handler_(std::move(handler)), work_(boost::asio::get_associated_executor(handler_)) {}

    void listenForCancellation() {
        auto slot = boost::asio::get_associated_cancellation_slot(handler_);
        if (!slot.is_connected()) {
            return;
        }
        slot.assign([weakSelf = this->weak_from_this()](boost::asio::cancellation_type) {
            if (auto self = weakSelf.lock()) {
                self->resume(std::make_exception_ptr(boost::system::system_error(
                                 boost::asio::error::operation_aborted)),
                             Value{});
            }
        });
    }

    void resume(std::exception_ptr error, Value value) override {
        if (resumed_.exchange(true)) {
            return;
        }
        // Posted even when already on the right thread: a coroutine never resumes within the call
        // that resumes it, so the caller's own state is consistent by then.
        boost::asio::post(work_.get_executor(),
                          [self = this->shared_from_this(), error = std::move(error),
                           value = std::move(value)]() mutable {
                              boost::asio::get_associated_cancellation_slot(self->handler_).clear();
                              auto handler = std::move(self->handler_);
                              self->work_.reset();
                              self.reset();
                              std::move(handler)(std::move(error), std::move(value));
                          });
    }

    bool isResumed() const override { return resumed_; }

  private:
    Handler handler_;
    boost::asio::executor_work_guard<boost::asio::associated_executor_t<Handler>> work_;
    std::atomic<bool> resumed_ = false;
};

} // namespace detail

/// The right to resume one suspended coroutine. Copies share it; the first use counts, later ones
/// do nothing. Safe from any thread; the coroutine continues in a later turn of its own executor.
template <typename Value>
class Continuation {
  public:
    Continuation() = default;
    explicit Continuation(std::shared_ptr<detail::SuspendedCoroutine<Value>> suspended)
        : suspended_(std::move(suspended)) {}

    void resume(Value value = {}) const { suspended_->resume(nullptr, std::move(value)); }
    void fail(std::exception_ptr error) const { suspended_->resume(std::move(error), Value{}); }

    /// True once the coroutine was resumed or its wait was cancelled.
    bool isResumed() const { return !suspended_ || suspended_->isResumed(); }

  private:
    std::shared_ptr<detail::SuspendedCoroutine<Value>> suspended_;
};

/// Suspends the calling coroutine and passes its continuation to `start`, which runs at once on the
/// calling thread. `Value` must be default constructible; use `std::monostate` for "nothing".
template <typename Value, typename Start>
Awaitable<Value> withContinuation(Start start) {
    auto initiate = [](auto handler, Start body) {
        using Handler = decltype(handler);
        auto suspended =
            std::make_shared<detail::SuspendedHandler<Value, Handler>>(std::move(handler));
        suspended->listenForCancellation();
        body(Continuation<Value>(std::move(suspended)));
    };
    auto operation = boost::asio::async_initiate<const boost::asio::use_awaitable_t<>,
                                                 void(std::exception_ptr, Value)>(
        initiate, boost::asio::use_awaitable, std::move(start));
    co_return co_await std::move(operation);
}

} // namespace orlune
