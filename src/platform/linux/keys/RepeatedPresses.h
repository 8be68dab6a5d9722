// Tells presses from repeats where a desktop reports a shortcut as pressed again and again while it
// is held, and may lose its release: GNOME does when a modifier comes up before the key. A plain
// value; times are since any fixed moment and do not go back.
#pragma once

#include <chrono>
#include <optional>
#include <vector>

namespace orlune {

class RepeatedPresses {
  public:
    using Time = std::chrono::milliseconds;
    enum class Edge { press, release };
    using Edges = std::vector<Edge>; ///< what has happened, in order

    /// Repeats come at most this far apart: GNOME's settings go up to 110 ms, and a busy desktop
    /// may be late.
    static constexpr Time longestInterval{300};

    RepeatedPresses() = default;
    /// For a desktop that reports no releases: without repeats for this time the key has come up.
    explicit RepeatedPresses(Time longestDelay) : longestDelay_(longestDelay) {}

    Edges reportPress(Time now);
    Edges reportRelease();
    /// When to call `expire`, unless something is reported before.
    std::optional<Time> deadline() const { return deadline_; }
    Edges expire();
    /// Nothing is down any more. What was learnt about the desktop stays.
    void reset();

  private:
    enum class State {
        up,
        down,
        doubtful, ///< pressed again: the first repeat, or a press whose release before was lost
        repeating,
    };

    bool isFirstRepeat() const;

    State state_ = State::up;
    Time pressedAt_{};
    Time pressedAgainAt_{};
    std::optional<Time> deadline_;
    /// From a press to its first repeat: GNOME's default, until one was seen.
    Time delay_{500};
    bool repeats_ = false; ///< known once a series was seen
    std::optional<Time> longestDelay_;
};

} // namespace orlune
