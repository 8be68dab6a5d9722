#include "platform/audio/SpeexAudioConverter.h"

#include "tests/support/Tones.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace orlune {
namespace {

using Sample = AudioFormat::Sample;
using test::amplitudeAt;
using test::rootMeanSquare;
using test::tone;

constexpr AudioFormat packetFormat{Sample::int16, 16000, 1, true};
constexpr double rates[] = {8000, 16000, 32000, 44100, 48000, 96000};

std::string describe(const AudioFormat& format) {
    return std::to_string(format.sampleRate) + " Hz, " + std::to_string(format.channelCount)
           + (format.sample == Sample::float32 ? " float" : " int16")
           + (format.isInterleaved ? " interleaved" : "");
}

/// A buffer in which every channel holds the same samples.
AudioPCMBuffer filled(const AudioFormat& format, std::span<const float> samples) {
    auto buffer = *AudioPCMBuffer::create(format, static_cast<std::uint32_t>(samples.size()));
    const std::uint32_t channels = format.channelCount;
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        const std::uint32_t run = format.isInterleaved ? 0 : channel;
        for (std::size_t frame = 0; frame < samples.size(); ++frame) {
            const std::size_t index = format.isInterleaved ? frame * channels + channel : frame;
            if (format.sample == Sample::float32) {
                buffer.floatChannel(run)[index] = samples[frame];
            } else {
                buffer.int16Channel(run)[index] =
                    static_cast<std::int16_t>(std::lrint(samples[frame] * 32767));
            }
        }
    }
    buffer.setFrameLength(buffer.frameCapacity());
    return buffer;
}

AudioConverter::Input once(const AudioPCMBuffer& buffer) {
    return [pending = &buffer](AudioConverter::InputStatus& status) mutable {
        status = pending ? AudioConverter::InputStatus::haveData
                         : AudioConverter::InputStatus::noDataNow;
        return std::exchange(pending, nullptr);
    };
}

std::vector<std::int16_t> convert(AudioConverter& converter, const AudioPCMBuffer& input,
                                  std::uint32_t capacity,
                                  const AudioFormat& format = packetFormat) {
    auto output = *AudioPCMBuffer::create(format, capacity);
    EXPECT_TRUE(converter.convert(output, once(input)));
    const auto samples = std::as_const(output).int16Channel(0);
    return {samples.begin(), samples.end()};
}

/// Converts the samples in taps of 12 ms, like the capture.
std::vector<std::int16_t> convertInTaps(const AudioFormat& format, std::span<const float> samples) {
    const auto converter = SpeexAudioConverter::create(format, packetFormat);
    if (!converter) {
        ADD_FAILURE() << "no converter from " << describe(format);
        return {};
    }
    const auto tap = static_cast<std::size_t>(format.sampleRate * 0.012);
    const auto exact = 16000 / format.sampleRate * static_cast<double>(tap);
    std::vector<std::int16_t> all;
    for (; samples.size() >= tap; samples = samples.subspan(tap)) {
        const auto part = convert(*converter, filled(format, samples.first(tap)),
                                  static_cast<std::uint32_t>(exact) + 1);
        // Every buffer is converted at once; nothing is held back.
        EXPECT_NEAR(static_cast<double>(part.size()), exact, 1) << describe(format);
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

TEST(SpeexAudioConverterTest, EveryMicrophoneBecomesTheSameTone) {
    for (const double rate : rates) {
        const auto samples = tone(1000, 0.5F, rate, 1.0);
        for (std::uint32_t channels = 1; channels <= 8; ++channels) {
            for (const auto sample : {Sample::float32, Sample::int16}) {
                for (const bool isInterleaved : {false, true}) {
                    const AudioFormat format{sample, rate, channels, isInterleaved};
                    const auto converted = convertInTaps(format, samples);
                    ASSERT_NEAR(static_cast<double>(converted.size()), 16000, 250)
                        << describe(format);
                    const std::span<const std::int16_t> settled(converted.begin() + 1000, 8000);
                    EXPECT_NEAR(amplitudeAt(1000, settled, 16000), 0.5 * 32768, 80)
                        << describe(format);
                    // Aliases and clipping would add power to the tone.
                    EXPECT_NEAR(rootMeanSquare(settled), 0.5 * 32768 / std::sqrt(2), 60)
                        << describe(format);
                }
            }
        }
    }
}

TEST(SpeexAudioConverterTest, TwelveMillisecondsAt48KilohertzAreAlways192Frames) {
    const AudioFormat format{Sample::float32, 48000, 1, false};
    const auto converter = SpeexAudioConverter::create(format, packetFormat);
    const auto buffer = filled(format, std::vector<float>(576));
    for (int count = 0; count < 100; ++count) {
        ASSERT_EQ(convert(*converter, buffer, 193).size(), 192u);
    }
}

TEST(SpeexAudioConverterTest, WhatSixteenKilohertzCannotHoldIsFilteredOut) {
    struct Row {
        double frequency;
        double loudest; // of 16384, the amplitude of the input
        double softest;
    };
    constexpr Row rows[] = {
        {100, 16500, 16200}, {4000, 16500, 16200}, {7000, 16500, 16000},
        {9000, 10, 0},       {12000, 2, 0},        {20000, 2, 0},
    };
    for (const double rate : {44100.0, 48000.0, 96000.0}) {
        for (const auto& row : rows) {
            const auto converted = convertInTaps({Sample::float32, rate, 1, false},
                                                 tone(row.frequency, 0.5F, rate, 1));
            const std::span<const std::int16_t> settled(converted.begin() + 1000, 8000);
            const double amplitude = rootMeanSquare(settled) * std::sqrt(2);
            EXPECT_LE(amplitude, row.loudest) << row.frequency << " Hz at " << rate;
            EXPECT_GE(amplitude, row.softest) << row.frequency << " Hz at " << rate;
        }
    }
}

TEST(SpeexAudioConverterTest, SamplesAreRoundedAndCutToTheRange) {
    struct Row {
        float sample;
        int expected;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const Row rows[] = {
        {0, 0},
        {1, 32767},
        {-1, -32768},
        {2, 32767},
        {-2, -32768},
        {infinity, 32767},
        {-infinity, -32768},
        {nan, 0},
        {0.5F, 16384},
        {1.4F / 32768, 1},
        {1.6F / 32768, 2},
        {-1.4F / 32768, -1},
        {-1.6F / 32768, -2},
    };
    const AudioFormat format{Sample::float32, 16000, 1, false};
    const auto converter = SpeexAudioConverter::create(format, packetFormat);
    for (const auto& row : rows) {
        const auto samples = convert(*converter, filled(format, std::vector{row.sample}), 2);
        EXPECT_EQ(samples, std::vector{static_cast<std::int16_t>(row.expected)}) << row.sample;
    }
}

TEST(SpeexAudioConverterTest, AFullScaleEdgeOvershootsWithoutWrappingRound) {
    std::vector<float> loud(48000);
    std::vector<float> soft(48000);
    for (std::size_t frame = 0; frame < loud.size(); ++frame) {
        loud[frame] = frame / 240 % 2 ? 1.0F : -1.0F;
        soft[frame] = loud[frame] / 4;
    }
    const AudioFormat format{Sample::float32, 48000, 1, false};
    const auto converted = convertInTaps(format, loud);
    const auto unlimited = convertInTaps(format, soft);
    ASSERT_GT(*std::ranges::max_element(unlimited), 8192 + 100) << "there is an overshoot";
    for (std::size_t frame = 0; frame < converted.size(); ++frame) {
        ASSERT_NEAR(converted[frame], std::clamp(unlimited[frame] * 4, -32768, 32767), 2) << frame;
    }
}

TEST(SpeexAudioConverterTest, ChannelsAreAveraged) {
    const AudioFormat format{Sample::float32, 16000, 3, false};
    auto buffer = filled(format, std::vector{0.0F});
    buffer.floatChannel(0)[0] = 0.9F;
    buffer.floatChannel(1)[0] = -0.3F;
    const auto converter = SpeexAudioConverter::create(format, packetFormat);
    EXPECT_EQ(convert(*converter, buffer, 2), std::vector<std::int16_t>{6554});
}

TEST(SpeexAudioConverterTest, SixteenKilohertzIntegersPassUnchanged) {
    const AudioFormat format{Sample::int16, 16000, 1, true};
    auto buffer = *AudioPCMBuffer::create(format, 65536);
    for (int value = -32768; value <= 32767; ++value) {
        buffer.int16Channel(0)[static_cast<std::uint16_t>(value + 32768)] =
            static_cast<std::int16_t>(value);
    }
    buffer.setFrameLength(65536);
    const auto samples = std::as_const(buffer).int16Channel(0);
    const auto converter = SpeexAudioConverter::create(format, packetFormat);
    EXPECT_EQ(convert(*converter, buffer, 65537),
              std::vector<std::int16_t>(samples.begin(), samples.end()));
}

TEST(SpeexAudioConverterTest, WhatDoesNotFitComesWithTheNextCall) {
    for (const double rate : {16000.0, 48000.0}) {
        const AudioFormat format{Sample::float32, rate, 1, false};
        const auto samples = tone(440, 0.5F, rate, 0.1);
        const auto whole = SpeexAudioConverter::create(format, packetFormat);
        const auto expected = convert(*whole, filled(format, samples), 1601);

        const auto narrow = SpeexAudioConverter::create(format, packetFormat);
        auto all = convert(*narrow, filled(format, samples), 100);
        const auto nothing = filled(format, {});
        for (auto part = convert(*narrow, nothing, 100); !part.empty();
             part = convert(*narrow, nothing, 100)) {
            all.insert(all.end(), part.begin(), part.end());
        }
        EXPECT_EQ(all, expected) << rate;
    }
}

TEST(SpeexAudioConverterTest, RefusesWhatItCannotDo) {
    const AudioFormat microphone{Sample::float32, 48000, 1, false};
    struct Row {
        const char* name;
        AudioFormat from;
        AudioFormat to;
    };
    const Row rows[] = {
        {"no channels", {Sample::float32, 48000, 0, false}, packetFormat},
        {"no rate", {Sample::float32, 0, 1, false}, packetFormat},
        {"a broken rate", {Sample::float32, std::nan(""), 1, false}, packetFormat},
        {"a rate between two hertz", {Sample::float32, 44100.5, 1, false}, packetFormat},
        {"an absurd rate", {Sample::float32, 1e9, 1, false}, packetFormat},
        {"float samples out", microphone, {Sample::float32, 16000, 1, true}},
        {"two channels out", microphone, {Sample::int16, 16000, 2, true}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SpeexAudioConverter::create(row.from, row.to), nullptr) << row.name;
    }
    const AudioFormat telephone{Sample::int16, 8000, 1, true};
    const auto other = SpeexAudioConverter::create(microphone, telephone);
    ASSERT_NE(other, nullptr) << "any rate of 16-bit mono is possible";
    const auto tap = filled(microphone, std::vector<float>(576));
    EXPECT_EQ(convert(*other, tap, 97, telephone).size(), 96u);
    auto wrong = *AudioPCMBuffer::create(packetFormat, 193);
    EXPECT_FALSE(other->convert(wrong, once(tap))) << "an output of another format";
    auto output = *AudioPCMBuffer::create(telephone, 97);
    EXPECT_FALSE(other->convert(output, once(wrong))) << "an input of another format";
    EXPECT_EQ(output.frameLength(), 0u);
}

} // namespace
} // namespace orlune
