#include "core/WaveformState.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orlune {

namespace {

/// How one field approaches its target: each push covers a share of the distance, with one share
/// for rising and one for falling. Below the floor the field counts as 0.
struct Follower {
    double rising;
    double falling;
    double floor;

    double follow(double current, double target) const {
        return current + (target - current) * (current < target ? rising : falling);
    }
    double floored(double value) const { return value < floor ? 0 : value; }
};

constexpr Follower levelFollower{0.96, 0.48, 0.01};
constexpr Follower calmLevelFollower{0.54, 0.16, 0.008};
constexpr Follower voiceActivityFollower{0.88, 0.22, 0.008};
constexpr Follower speechPulseFollower{0.92, 0.24, 0.006};

// Quiet input is raised (an exponent below 1), so that soft speech also moves the picture.
constexpr double quietestInput = 0.008;
constexpr double shapeExponent = 0.68;

// The level at which a voice begins to show, and the range from there to full activity.
constexpr double voiceThreshold = 0.012;
constexpr double voiceRange = 0.11;

// A syllable begins where the input rises above the calm level and above this share of the level
// before it.
constexpr double previousLevelShare = 0.82;
constexpr double pulseGain = 3.8;

// Radians per push at full voice activity.
constexpr double phaseStepForLevel = 0.14;
constexpr double phaseStepAlways = 0.012;
constexpr double phaseStepForPulse = 0.1;
constexpr double phasePeriod = 8 * std::numbers::pi;

double shaped(double input) {
    return input >= quietestInput ? std::min(std::pow(input, shapeExponent), 1.0) : 0.0;
}

WaveformState::Frame movedOn(WaveformState::Frame frame, double input) {
    const double previousLevel = frame.level;
    const double shapedInput = shaped(input);

    frame.level = levelFollower.follow(frame.level, shapedInput);
    frame.calmLevel = calmLevelFollower.follow(frame.calmLevel, frame.level);

    const double voice = std::clamp((frame.level - voiceThreshold) / voiceRange, 0.0, 1.0);
    frame.voiceActivity = voiceActivityFollower.follow(frame.voiceActivity, voice);

    const double rise = shapedInput - std::max(frame.calmLevel, previousLevel * previousLevelShare);
    const double pulse = rise >= 0 ? std::min(rise * pulseGain, 1.0) : 0.0;
    frame.speechPulse = speechPulseFollower.follow(frame.speechPulse, pulse);

    const double step =
        (frame.level * phaseStepForLevel + phaseStepAlways + frame.speechPulse * phaseStepForPulse)
        * frame.voiceActivity;
    frame.motionPhase = std::fmod(frame.motionPhase, phasePeriod) + step;

    frame.level = levelFollower.floored(frame.level);
    frame.calmLevel = calmLevelFollower.floored(frame.calmLevel);
    frame.voiceActivity = voiceActivityFollower.floored(frame.voiceActivity);
    frame.speechPulse = speechPulseFollower.floored(frame.speechPulse);
    return frame;
}

} // namespace

void WaveformState::push(std::span<const double> levels) {
    Frame frame = frame_.get();
    for (const double level : levels) {
        frame = movedOn(frame, level);
    }
    frame_.set(frame);
}

} // namespace orlune
