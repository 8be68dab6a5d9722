// A queue of work that is turned by hand, on the thread that made it: the main actor, or what
// stands for the background, without an event loop. While one queue turns, the others are not
// current, so that work on the wrong one is noticed.
#pragma once

#include "platform/concurrency/MainActor.h"

#include <boost/asio/io_context.hpp>

#include <cstddef>
#include <thread>
#include <utility>

namespace orlune {

class TurnQueue final : public MainActor {
  public:
    Executor executor() const override { return context_.get_executor(); }
    /// Outside of any turn, code on the thread counts as running on each of its queues.
    bool isCurrent() const override {
        return std::this_thread::get_id() == thread_ && (!turning_ || turning_ == this);
    }

    /// Runs what is queued, and what that queues, until nothing is left. Returns how many turns
    /// ran.
    std::size_t runUntilIdle() {
        const Turn turn(this);
        context_.restart();
        return context_.poll();
    }
    /// Runs the oldest turn alone. False when there was none.
    bool runOne() {
        const Turn turn(this);
        context_.restart();
        return context_.poll_one() > 0;
    }

  private:
    /// Queues may turn one another: a view in a test waits from within its own turn.
    class Turn {
      public:
        explicit Turn(const TurnQueue* queue) : outer_(std::exchange(turning_, queue)) {}
        ~Turn() { turning_ = outer_; }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

      private:
        const TurnQueue* outer_;
    };

    static inline thread_local const TurnQueue* turning_ = nullptr;
    mutable boost::asio::io_context context_{1};
    std::thread::id thread_ = std::this_thread::get_id();
};

} // namespace orlune
