#include "services/AudioCaptureService.h"

#include "platform/memory/MemoryAudioConverter.h"
#include "platform/memory/MemoryAudioEngine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace orlune {
namespace {

using testing::ElementsAre;
using CaptureError = AudioCaptureService::CaptureError;

class AudioCaptureServiceTest : public testing::Test {
  protected:
    AudioFormat prepare() {
        return service.prepare(
            [this](auto delivered) {
                levels.insert(levels.end(), delivered.begin(), delivered.end());
                calls += "levels " + std::to_string(delivered.size()) + " ";
            },
            [this](AudioPacket packet) {
                packets.push_back(packet);
                calls += "packet ";
            });
    }

    /// The error of a preparation, which must fail.
    CaptureError prepareError() {
        try {
            prepare();
        } catch (const CaptureError& error) {
            return error;
        }
        throw std::logic_error("prepare() succeeded");
    }

    MemoryAudioEngine microphone;
    MemoryAudioConverter converters;
    AudioCaptureService service{microphone.factory(), converters.factory()};
    std::vector<double> levels;
    std::vector<AudioPacket> packets;
    std::string calls;
};

AudioPCMBuffer sine(const AudioFormat& format, std::uint32_t frames, float amplitude) {
    auto buffer = AudioPCMBuffer::create(format, frames);
    auto samples = buffer->floatChannel(0);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        // Twelve whole periods per 12 ms at 48 kHz.
        samples[frame] =
            amplitude * std::sin(2 * std::numbers::pi_v<float> * static_cast<float>(frame) / 48);
    }
    buffer->setFrameLength(frames);
    return std::move(*buffer);
}

TEST_F(AudioCaptureServiceTest, CapturesFromStartToStop) {
    EXPECT_FALSE(service.isPrepared());
    EXPECT_EQ(prepare(), (AudioFormat{AudioFormat::Sample::int16, 16000, 1, true}));
    EXPECT_TRUE(service.isPrepared());
    service.start();
    EXPECT_TRUE(microphone.deliver(0.5F));
    service.stop();
    EXPECT_FALSE(service.isPrepared());
    EXPECT_FALSE(microphone.deliver(0.5F));
    ASSERT_EQ(packets.size(), 1u);
    EXPECT_EQ(packets[0].size(), 192u * 2) << "12 ms at 16 kHz";
    EXPECT_EQ(packets[0].substr(0, 2), (std::string{'\xff', '\x3f'})) << "16383, low byte first";
    EXPECT_THAT(microphone.log,
                ElementsAre("installTap 576", "prepare", "start", "stop", "removeTap"));
}

TEST_F(AudioCaptureServiceTest, StartAndStopWithoutAPreparationDoNothing) {
    service.start();
    service.stop();
    service.stop();
    EXPECT_THAT(microphone.log, ElementsAre());
}

TEST_F(AudioCaptureServiceTest, ASecondPreparationReplacesTheFirstAndForgetsItsLevel) {
    prepare();
    service.start();
    microphone.deliver(1.0F);
    prepare();
    EXPECT_FALSE(microphone.isRunning());
    service.start();
    microphone.deliver(1.0F);
    EXPECT_THAT(levels, ElementsAre(0.94, 0.94));
    EXPECT_EQ(converters.madeCount, 2);
    EXPECT_THAT(microphone.log, ElementsAre("installTap 576", "prepare", "start", "stop",
                                            "removeTap", "installTap 576", "prepare", "start"));
}

TEST_F(AudioCaptureServiceTest, SaysWhyThereIsNothingToCapture) {
    const AudioFormat good = microphone.format;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [sampleRate, channels] :
         {std::pair(0.0, 1u), std::pair(-1.0, 1u), std::pair(nan, 1u), std::pair(48000.0, 0u)}) {
        microphone.format = good;
        microphone.format.sampleRate = sampleRate;
        microphone.format.channelCount = channels;
        EXPECT_EQ(prepareError(), CaptureError(CaptureError::Case::noInput)) << sampleRate;
    }
    EXPECT_STREQ(prepareError().what(), "No microphone is available");
    microphone.format = good;
    converters.refusesFormats = true;
    EXPECT_EQ(prepareError(), CaptureError(CaptureError::Case::conversionFailed));
    EXPECT_STREQ(prepareError().what(), "The microphone audio format isn't supported");
    EXPECT_FALSE(service.isPrepared());
    EXPECT_THAT(microphone.log, ElementsAre()) << "nothing was installed";
}

TEST_F(AudioCaptureServiceTest, TheEnginesOwnErrorReachesTheCaller) {
    microphone.startError = "Device busy";
    prepare();
    try {
        service.start();
        FAIL() << "the error must be thrown";
    } catch (const AudioEngineError& error) {
        EXPECT_STREQ(error.what(), "Device busy");
    }
    EXPECT_TRUE(service.isPrepared()) << "the tap stays until stop()";
    service.stop();
    EXPECT_THAT(microphone.log, ElementsAre("installTap 576", "prepare", "start", "removeTap"));
}

TEST_F(AudioCaptureServiceTest, TheTapHolds12MillisecondsButAtLeast256Frames) {
    for (const auto& [sampleRate, frames] :
         {std::pair(48000.0, 576), std::pair(44100.0, 529), std::pair(96000.0, 1152),
          std::pair(16000.0, 256), std::pair(8000.0, 256), std::pair(21334.0, 256)}) {
        microphone.format.sampleRate = sampleRate;
        microphone.log.clear();
        prepare();
        EXPECT_THAT(microphone.log, testing::Contains("installTap " + std::to_string(frames)))
            << sampleRate;
    }
}

TEST_F(AudioCaptureServiceTest, ADeliveryOfSeveralBuffersIsReportedAtOnce) {
    prepare();
    service.start();
    std::vector<AudioPCMBuffer> delivery;
    delivery.push_back(sine(microphone.format, 576, 1));
    delivery.push_back(sine(microphone.format, 576, 0));
    microphone.deliver(delivery);
    EXPECT_EQ(calls, "levels 2 packet packet ");
    EXPECT_THAT(levels, ElementsAre(0.94, testing::DoubleNear(0.94 * 0.62, 1e-9)));
    ASSERT_EQ(packets.size(), 2u);
    EXPECT_NE(packets[0], packets[1]);
    EXPECT_EQ(packets[1], std::string(192u * 2, '\0')) << "the second buffer comes second";
}

TEST_F(AudioCaptureServiceTest, AFailedConversionStillMovesTheLevel) {
    prepare();
    service.start();
    converters.failsConversions = true;
    microphone.deliver(1.0F);
    converters.failsConversions = false;
    microphone.deliver(1.0F);
    EXPECT_EQ(levels.size(), 2u);
    EXPECT_EQ(packets.size(), 1u) << "capture goes on after a conversion that failed";
}

TEST_F(AudioCaptureServiceTest, AnEmptyBufferGivesALevelButNoPacket) {
    prepare();
    service.start();
    microphone.deliver(*AudioPCMBuffer::create(microphone.format, 576));
    EXPECT_THAT(levels, ElementsAre(0));
    EXPECT_THAT(packets, ElementsAre());
}

TEST_F(AudioCaptureServiceTest, IntegerSamplesAreSentButShowNoLevel) {
    microphone.format.sample = AudioFormat::Sample::int16;
    prepare();
    service.start();
    microphone.deliver(1.0F);
    EXPECT_THAT(levels, ElementsAre(0));
    EXPECT_EQ(packets.size(), 1u);
}

TEST_F(AudioCaptureServiceTest, TheLevelUsesOnlyTheFirstChannel) {
    microphone.format.channelCount = 2;
    prepare();
    service.start();
    auto buffer = *AudioPCMBuffer::create(microphone.format, 576);
    buffer.setFrameLength(576);
    std::ranges::fill(buffer.floatChannel(1), 1.0F);
    microphone.deliver(buffer);
    std::ranges::fill(buffer.floatChannel(0), 1.0F);
    microphone.deliver(buffer);
    EXPECT_THAT(levels, ElementsAre(0, 0.94));
}

TEST_F(AudioCaptureServiceTest, LoudnessIsGatedStretchedAndSmoothed) {
    struct Row {
        const char* name;
        float decibels; // of full scale
        double target;
    };
    constexpr Row rows[] = {
        {"far below the range", -90, 0},
        {"the bottom of the range", -56, 0},
        {"just inside the gate", -54.54F, 0},
        {"just above the gate", -53.5F, (2.5 / 42 - 0.035) / 0.965},
        {"the middle of the range", -35, (0.5 - 0.035) / 0.965},
        {"the top of the range", -14, 1},
        {"full scale", 0, 1},
    };
    for (const auto& row : rows) {
        levels.clear();
        prepare();
        service.start();
        microphone.deliver(std::pow(10.0F, row.decibels / 20));
        const double reported = row.target * 0.94;
        EXPECT_NEAR(levels.at(0), reported, 1e-5) << row.name;
    }
}

TEST_F(AudioCaptureServiceTest, TheLevelRisesFastAndDecaysToExactlyZero) {
    prepare();
    service.start();
    const auto loud = sine(microphone.format, 576, 1);
    microphone.deliver(loud);
    microphone.deliver(loud);
    ASSERT_EQ(levels.size(), 2u);
    EXPECT_DOUBLE_EQ(levels[0], 0.94);
    EXPECT_DOUBLE_EQ(levels[1], 0.9964);
    double expected = levels[1];
    for (int buffer = 0; buffer < 12; ++buffer) {
        microphone.deliver(0.0F);
        expected *= 0.62;
        EXPECT_DOUBLE_EQ(levels.back(), expected < 0.012 ? 0 : expected) << buffer;
    }
    EXPECT_EQ(levels.back(), 0);
}

} // namespace
} // namespace orlune
