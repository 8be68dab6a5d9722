#include "platform/linux/keys/RepeatedPresses.h"

namespace orlune {

namespace {

using Edges = RepeatedPresses::Edges;
using Edge = RepeatedPresses::Edge;

/// The shortest that GNOME's settings offer. A desktop that was busy reports several repeats at
/// once, from which nothing is learnt.
constexpr RepeatedPresses::Time shortestDelay{100};
/// How far the first repeat may be from its usual delay.
constexpr RepeatedPresses::Time tolerance{100};

} // namespace

RepeatedPresses::Edges RepeatedPresses::reportPress(Time now) {
    switch (state_) {
    case State::up:
        state_ = State::down;
        pressedAt_ = now;
        deadline_.reset();
        if (const auto delay = repeats_ ? std::optional(delay_) : longestDelay_) {
            deadline_ = now + *delay + longestInterval;
        }
        return {Edge::press};
    case State::down:
        state_ = State::doubtful;
        pressedAgainAt_ = now;
        break;
    case State::doubtful: // nobody presses twice within an interval
        state_ = State::repeating;
        if (pressedAgainAt_ - pressedAt_ >= shortestDelay) {
            delay_ = pressedAgainAt_ - pressedAt_;
            repeats_ = true;
        }
        break;
    case State::repeating:
        break;
    }
    deadline_ = now + longestInterval;
    return {};
}

RepeatedPresses::Edges RepeatedPresses::reportRelease() {
    const bool wasPressedAgain = state_ == State::doubtful && !isFirstRepeat();
    const bool wasDown = state_ != State::up;
    reset();
    if (wasPressedAgain) {
        return {Edge::release, Edge::press, Edge::release};
    }
    return wasDown ? Edges{Edge::release} : Edges{};
}

RepeatedPresses::Edges RepeatedPresses::expire() {
    if (state_ == State::doubtful && !isFirstRepeat()) {
        const auto pressedAt = pressedAgainAt_;
        reset();
        auto edges = reportPress(pressedAt);
        edges.insert(edges.begin(), Edge::release);
        return edges;
    }
    return reportRelease();
}

void RepeatedPresses::reset() {
    state_ = State::up;
    deadline_.reset();
}

bool RepeatedPresses::isFirstRepeat() const {
    // Where there are no releases, a second press at this moment is likelier than a key that comes
    // up right after its first repeat.
    return !longestDelay_ && std::chrono::abs(pressedAgainAt_ - pressedAt_ - delay_) <= tolerance;
}

} // namespace orlune
