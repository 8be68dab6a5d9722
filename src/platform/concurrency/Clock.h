// The monotonic clock, and the only way to wait for time to pass. Everything above the platform
// reads the time and sleeps through it, so that tests can control it.
#pragma once

#include "platform/concurrency/Awaitable.h"

#include <chrono>

namespace orlune {

class Clock {
  public:
    using Instant = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    virtual ~Clock() = default;

    /// May be called from any thread.
    virtual Instant now() const = 0;
    /// Resumes on the calling coroutine's executor; throws `operation_aborted` when cancelled.
    virtual Awaitable<void> sleep(Duration duration) = 0;
};

} // namespace orlune
