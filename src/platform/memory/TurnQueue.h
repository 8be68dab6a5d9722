// A queue of work that a test runs on the thread that made it: the main actor, or the background's
// executor, without an event loop. While one queue runs, the others are not current, so that work
// on the wrong one is noticed.
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

    /// Runs the queued work, and the work that this adds, until nothing is left. Returns how many
    /// turns ran.
    std::size_t runUntilIdle() {
        const Turn turn(this);
        context_.restart();
        return context_.poll();
    }
    /// Runs only the oldest turn. False when there was none.
    bool runOne() {
        const Turn turn(this);
        context_.restart();
        return context_.poll_one() > 0;
    }

  private:
    /// Turns of several queues may nest: a view in a test waits from within its own turn.
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
