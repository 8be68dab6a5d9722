// Turns the levels of the microphone into the few quantities that the waveform views animate. Owned
// by the session controller, which pushes every level while it listens and resets the frame between
// dictations. Only used on the main actor. Does not depend on time: it advances once per pushed
// level.
#pragma once

#include "platform/concurrency/Published.h"

#include <span>

namespace orlune {

class WaveformState : public ObservableObject {
  public:
    struct Frame {
        double level = 0;         ///< 0 to 1, follows the input quickly
        double calmLevel = 0;     ///< 0 to 1, follows `level` slowly
        double voiceActivity = 0; ///< 0 in silence, 1 while speaking
        double speechPulse = 0;   ///< radians, 0 to slightly above 8π, advances during speech
        double motionPhase = 0;   ///< radians, 0 to slightly above 8π, runs while somebody speaks

        bool operator==(const Frame&) const = default;
    };

    const Published<Frame>& frame() const { return frame_; }

    /// Advances the frame by each level, from 0 to 1, and publishes it once.
    void push(std::span<const double> levels);
    void push(double level) { push({&level, 1}); }

    void reset() { frame_.set(Frame{}); }

  private:
    Published<Frame> frame_{*this, Frame{}};
};

} // namespace orlune
