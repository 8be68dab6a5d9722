#include "platform/memory/ManualClock.h"

#include <vector>

namespace orlune {

Clock::Instant ManualClock::now() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

Awaitable<void> ManualClock::sleep(Duration duration) {
    auto wait = withContinuation<std::monostate>([this, duration](auto continuation) {
        const std::lock_guard lock(mutex_);
        sleepers_.emplace(now_ + duration, std::move(continuation));
    });
    co_await std::move(wait);
}

void ManualClock::advance(Duration duration) {
    std::vector<Continuation<std::monostate>> awake;
    {
        const std::lock_guard lock(mutex_);
        now_ += duration;
        const auto end = sleepers_.upper_bound(now_);
        for (auto sleeper = sleepers_.begin(); sleeper != end; ++sleeper) {
            awake.push_back(std::move(sleeper->second));
        }
        sleepers_.erase(sleepers_.begin(), end);
    }
    for (const auto& sleeper : awake) {
        sleeper.resume();
    }
}

void ManualClock::forgetSleepers() {
    decltype(sleepers_) forgotten;
    const std::lock_guard lock(mutex_);
    forgotten.swap(sleepers_);
}

std::optional<Clock::Instant> ManualClock::nextWake() const {
    const std::lock_guard lock(mutex_);
    for (const auto& [instant, sleeper] : sleepers_) {
        if (!sleeper.isResumed()) {
            return instant;
        }
    }
    return std::nullopt;
}

} // namespace orlune
