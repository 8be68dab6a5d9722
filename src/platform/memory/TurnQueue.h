// A main actor without an event loop: its work waits until the queue is turned by hand, and runs on
// the thread that turns it.
#pragma once

#include "platform/MainActor.h"

#include <boost/asio/io_context.hpp>

#include <cstddef>
#include <thread>

namespace orlune {

class TurnQueue final : public MainActor {
  public:
    Executor executor() const override { return context_.get_executor(); }
    bool isCurrent() const override { return std::this_thread::get_id() == thread_; }

    /// Runs what is queued, and what that queues, until nothing is left. Returns how many turns
    /// ran.
    std::size_t runUntilIdle() {
        context_.restart();
        return context_.poll();
    }
    /// Runs the oldest turn alone. False when there was none.
    bool runOne() {
        context_.restart();
        return context_.poll_one() > 0;
    }

  private:
    mutable boost::asio::io_context context_{1};
    std::thread::id thread_ = std::this_thread::get_id();
};

} // namespace orlune
