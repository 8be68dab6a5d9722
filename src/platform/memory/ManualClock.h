// A clock that only moves when a test advances it.
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

    /// Moves time forward and wakes, earliest first, the sleepers whose time has come. They run in
    /// later turns of their executors: see `MemoryPlatform::advance`, which moves both.
    void advance(Duration duration);

    /// Unwinds all sleepers, in later turns of their executors.
    void forgetSleepers();

    /// When the next sleeper wakes; none when there is no sleeper.
    std::optional<Instant> nextWake() const;

  private:
    mutable std::mutex mutex_;
    Instant now_ = Instant(std::chrono::hours(1));
    std::multimap<Instant, Continuation<std::monostate>> sleepers_;
};

} // namespace orlune
