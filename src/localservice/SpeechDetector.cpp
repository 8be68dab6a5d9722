#include "localservice/SpeechDetector.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace orlune::localservice {
namespace {

// Decibels relative to full scale, of the differentiated signal (which removes offset and mains
// hum).
constexpr double silenceLevel = -90;
constexpr double lowestFloor = -72;
constexpr double highestFirstFloor = -45; // speech from the first frame on must not pass for noise
constexpr double speechAboveFloor = 11;

// The floor falls at once in a pause and rises slowly, even more slowly during speech.
constexpr double fallPerFrame = 0.3; // share of the distance
constexpr double riseInNoise = 0.03; // decibels per frame
constexpr double riseInSpeech = 0.005;

constexpr std::uint32_t window = 0b111111; // the last 60 ms
constexpr int loudFramesOfSpeech = 3;

} // namespace

bool SpeechDetector::isSpeech(std::span<const std::int16_t, frameSamples> frame) {
    double energy = 0;
    for (const auto sample : frame) {
        const double difference = sample - 0.95 * previousSample_;
        previousSample_ = sample;
        energy += difference * difference;
    }
    const double power = energy / (static_cast<double>(frameSamples) * 32768.0 * 32768.0);
    const double level = power > 0 ? std::max(silenceLevel, 10 * std::log10(power)) : silenceLevel;
    loudFrames_ = ((loudFrames_ << 1U) | (isLoud(level) ? 1U : 0U)) & window;
    return std::popcount(loudFrames_) >= loudFramesOfSpeech;
}

std::size_t SpeechDetector::framesSinceLoud() const {
    return static_cast<std::size_t>(std::countr_zero(loudFrames_));
}

bool SpeechDetector::isLoud(double level) {
    if (noiseFloor_ == 0) {
        noiseFloor_ = std::clamp(level, lowestFloor, highestFirstFloor);
    }
    const bool loud = level > noiseFloor_ + speechAboveFloor;
    if (level < noiseFloor_) {
        noiseFloor_ += (level - noiseFloor_) * fallPerFrame;
    } else {
        noiseFloor_ += loud ? riseInSpeech : riseInNoise;
    }
    noiseFloor_ = std::max(noiseFloor_, lowestFloor);
    return loud;
}

} // namespace orlune::localservice
