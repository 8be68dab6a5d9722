#pragma once

// Decides for each 10 ms of audio whether it is speech, by its loudness above an adaptive noise
// floor. A value used by one thread; it cannot fail. The same samples always give the same answers.

#include <cstddef>
#include <cstdint>
#include <span>

namespace orlune::localservice {

class SpeechDetector {
  public:
    /// 10 ms at 16 kHz.
    static constexpr std::size_t frameSamples = 160;

    /// Takes the next frame. True during speech: at least half of the last 60 ms are loud.
    bool isSpeech(std::span<const std::int16_t, frameSamples> frame);
    /// During speech: how many frames ago the last loud one was.
    std::size_t framesSinceLoud() const;

  private:
    bool isLoud(double level);

    double previousSample_ = 0;
    double noiseFloor_ = 0; // decibels below full scale; 0 until the first frame
    std::uint32_t loudFrames_ = 0;
};

} // namespace orlune::localservice
