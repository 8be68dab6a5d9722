// A clock that stands still until it is turned by hand.
#pragma once

#include "platform/concurrency/Clock.h"
#include "platform/concurrency/Continuation.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>

namespace orlune {

class ManualClock final : public Clock {
  public:
    Instant now() const override;
    Awaitable<void> sleep(Duration duration) override;

    /// Moves time forward and wakes, earliest first, whoever slept until then. The sleepers run in
    /// later turns of their executors: see `MemoryPlatform::advance` for turning both together.
    void advance(Duration duration);

    /// Unwinds whoever sleeps, in later turns of their executors.
    void forgetSleepers();

    /// When the next sleeper wakes; none when nobody sleeps.
    std::optional<Instant> nextWake() const;

  private:
    mutable std::mutex mutex_;
    Instant now_ = Instant(std::chrono::hours(1));
    std::multimap<Instant, Continuation<std::monostate>> sleepers_;
};

} // namespace orlune
