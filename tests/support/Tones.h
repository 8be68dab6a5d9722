// Generates tones, and measures a tone in a recording.
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

namespace orlune::test {

inline std::vector<float> tone(double frequency, float amplitude, double sampleRate,
                               double seconds) {
    std::vector<float> samples(static_cast<std::size_t>(seconds * sampleRate));
    for (std::size_t frame = 0; frame < samples.size(); ++frame) {
        const double turns = frequency * static_cast<double>(frame) / sampleRate;
        samples[frame] = amplitude * static_cast<float>(std::sin(2 * std::numbers::pi * turns));
    }
    return samples;
}

/// The amplitude of one frequency, exact when the samples contain whole periods of it.
template <typename Samples>
double amplitudeAt(double frequency, const Samples& samples, double sampleRate) {
    std::complex<double> sum;
    double frame = 0;
    for (const auto sample : samples) {
        const double angle = 2 * std::numbers::pi * frequency * frame++ / sampleRate;
        sum += static_cast<double>(sample) * std::polar(1.0, angle);
    }
    return 2 * std::abs(sum) / frame;
}

template <typename Samples>
double rootMeanSquare(const Samples& samples) {
    double sum = 0;
    for (const auto sample : samples) {
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    }
    return std::sqrt(sum / static_cast<double>(std::size(samples)));
}

} // namespace orlune::test
