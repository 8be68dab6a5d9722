// The machine's monotonic clock. It stops while the machine is suspended.
#pragma once

#include "platform/concurrency/Clock.h"

#include <boost/asio/io_context.hpp>

namespace orlune {

class SteadyClock final : public Clock {
  public:
    /// Timers run on `context`, whose thread must be running.
    explicit SteadyClock(boost::asio::io_context& context) : context_(context) {}

    Instant now() const override { return std::chrono::steady_clock::now(); }
    Awaitable<void> sleep(Duration duration) override;

  private:
    boost::asio::io_context& context_;
};

} // namespace orlune
