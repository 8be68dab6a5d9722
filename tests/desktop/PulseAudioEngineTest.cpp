#include "platform/linux/pulse/PulseAudioEngine.h"

#include "platform/memory/MemoryLog.h"
#include "tests/support/PulseServer.h"
#include "tests/support/Tones.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <span>
#include <vector>

namespace orlune {
namespace {

using namespace std::chrono_literals;
using test::amplitudeAt;
using Instant = std::chrono::steady_clock::time_point;

constexpr auto soundDeadline = 10s;

Instant now() {
    return std::chrono::steady_clock::now();
}

/// What a tap received, per channel. The test waits for its content. Declared before the engine
/// that it listens to, so that it outlives it.
class Recorder {
  public:
    AudioEngine::Tap tap() {
        return [this](auto buffers) {
            {
                const std::lock_guard lock(mutex_);
                for (const auto& buffer : buffers) {
                    hear(buffer);
                }
            }
            heard_.notify_all();
        };
    }

    std::size_t bufferCount() const {
        const std::lock_guard lock(mutex_);
        return lengths_.size();
    }
    std::vector<std::uint32_t> lengths() const {
        const std::lock_guard lock(mutex_);
        return lengths_;
    }

    /// True when every sample so far was zero.
    bool isSilent() const {
        const std::lock_guard lock(mutex_);
        return std::ranges::all_of(channels_, [](const auto& samples) {
            return std::ranges::all_of(samples, [](float sample) { return sample == 0; });
        });
    }

    /// True when another buffer arrives in time.
    bool hearsMore() {
        return hears([count = bufferCount()](auto& self) { return self.lengths_.size() > count; });
    }

    /// True when the last tenth of a second becomes silent.
    bool hearsSilence(double sampleRate) {
        return hears([&](auto& self) {
            const auto last =
                std::span(self.channels_.at(0)).last(static_cast<std::size_t>(sampleRate / 10));
            return std::ranges::all_of(last, [](float sample) { return sample == 0; });
        });
    }

    /// True when the last tenth of a second of each channel becomes a tone with amplitude 0.25: 400
    /// Hz in channel 0 and 100 Hz more in each further one.
    bool hearsTones(double sampleRate, std::uint32_t channels) {
        return hears([&](auto& self) {
            const auto window = static_cast<std::size_t>(sampleRate / 10);
            if (self.channels_.size() != channels || self.channels_[0].size() < window) {
                return false;
            }
            for (std::uint32_t channel = 0; channel < channels; ++channel) {
                const auto samples = std::span(self.channels_[channel]).last(window);
                const double amplitude = amplitudeAt(400 + 100 * channel, samples, sampleRate);
                if (std::abs(amplitude - 0.25) > 0.01) {
                    return false;
                }
            }
            return true;
        });
    }

  private:
    void hear(const AudioPCMBuffer& buffer) {
        lengths_.push_back(buffer.frameLength());
        channels_.resize(buffer.format().channelCount);
        for (std::uint32_t channel = 0; channel < channels_.size(); ++channel) {
            const auto samples = buffer.floatChannel(channel);
            channels_[channel].insert(channels_[channel].end(), samples.begin(), samples.end());
        }
    }

    bool hears(const std::function<bool(const Recorder&)>& condition) {
        std::unique_lock lock(mutex_);
        return heard_.wait_for(lock, soundDeadline, [&] { return condition(*this); });
    }

    mutable std::mutex mutex_;
    std::condition_variable heard_;
    std::vector<std::uint32_t> lengths_;
    std::vector<std::vector<float>> channels_;
};

std::vector<float> tones(int sampleRate, int channels) {
    const auto frames = static_cast<std::size_t>(sampleRate) * 20;
    std::vector<float> interleaved(frames * static_cast<std::size_t>(channels));
    for (int channel = 0; channel < channels; ++channel) {
        const auto samples = test::tone(400 + 100 * channel, 0.25F, sampleRate, 20);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            interleaved[frame * static_cast<std::size_t>(channels)
                        + static_cast<std::size_t>(channel)] = samples[frame];
        }
    }
    return interleaved;
}

class PulseAudioEngineTest : public testing::Test {
  protected:
    /// Captures from the current default source.
    void startCapture(AudioEngine& engine, Recorder& listener) {
        format = engine.inputFormat();
        engine.installTap(576, format, listener.tap());
        engine.prepare();
        engine.start();
    }

    static std::string startError(AudioEngine& engine) {
        try {
            engine.start();
        } catch (const AudioEngineError& error) {
            return error.what();
        }
        return "";
    }

    test::PulseServer server;
    AudioFormat format;
    Recorder recorder;
};

TEST_F(PulseAudioEngineTest, CapturesEverySourceInItsOwnFormat) {
    server.start();
    struct Row {
        int sampleRate;
        int channels;
    };
    for (const auto& [sampleRate, channels] :
         {Row{8000, 1}, Row{16000, 1}, Row{44100, 2}, Row{48000, 1}, Row{48000, 2}, Row{48000, 6},
          Row{48000, 8}, Row{96000, 2}}) {
        SCOPED_TRACE(std::to_string(sampleRate) + " Hz, " + std::to_string(channels) + " channels");
        const auto module = server.addMicrophone("microphone", sampleRate, channels);
        const auto player =
            server.play("microphone", tones(sampleRate, channels), sampleRate, channels);
        Recorder heard;
        PulseAudioEngine engine;
        startCapture(engine, heard);
        EXPECT_EQ(format, (AudioFormat{AudioFormat::Sample::float32, double(sampleRate),
                                       std::uint32_t(channels), false}));
        EXPECT_TRUE(engine.isRunning());
        EXPECT_TRUE(heard.hearsTones(sampleRate, std::uint32_t(channels)));
        engine.stop();
        EXPECT_THAT(heard.lengths(), testing::Each(576u));
        server.unload(module);
    }
}

TEST_F(PulseAudioEngineTest, CapturesTheFirstSoundAtOnceAndKeepsUp) {
    server.start();
    server.addMicrophone("microphone", 48000, 1);
    PulseAudioEngine engine;
    const auto begin = now();
    startCapture(engine, recorder);
    EXPECT_TRUE(recorder.hearsMore());
    EXPECT_LT(now() - begin, 500ms) << "usually below 50 ms; other tests may keep the machine busy";
    while (recorder.bufferCount() < 50 && now() - begin < soundDeadline) {
        recorder.hearsMore();
    }
    // A server with a large buffer would deliver in bursts of two seconds.
    EXPECT_LT(now() - begin, 1500ms) << "50 buffers are 600 ms of sound";
}

TEST_F(PulseAudioEngineTest, SaysWhetherThereIsAMicrophone) {
    PulseAudioEngine engine;
    EXPECT_EQ(engine.inputFormat().channelCount, 0u) << "no server";
    server.start();
    EXPECT_EQ(engine.inputFormat().channelCount, 0u) << "no source";

    const auto speakers = server.load(
        "module-null-sink sink_name=speakers channels=2 sink_properties=device.api=alsa");
    EXPECT_EQ(engine.inputFormat().channelCount, 0u) << "what the machine plays is no microphone";
    const auto standIn = server.load("module-null-sink sink_name=auto_null");
    server.control("set-default-sink auto_null");
    EXPECT_EQ(engine.inputFormat().channelCount, 0u) << "what the server makes up is none either";
    server.unload(standIn);

    const auto virtualSink = server.addMicrophone("studio", 44100, 6);
    server.control("set-default-sink speakers");
    EXPECT_EQ(engine.inputFormat().channelCount, 6u) << "the user chose this monitor";
    server.unload(virtualSink);

    server.load("module-sine-source rate=32000");
    EXPECT_EQ(engine.inputFormat().channelCount, 1u) << "a source that is no monitor";
    server.control("set-default-source speakers.monitor");
    EXPECT_EQ(engine.inputFormat().channelCount, 2u) << "preferred to a microphone";
    server.unload(speakers);
    EXPECT_EQ(engine.inputFormat().sampleRate, 32000) << "back to the microphone";
    server.kill();
    EXPECT_EQ(engine.inputFormat().channelCount, 0u) << "the server is gone";
}

TEST_F(PulseAudioEngineTest, AServerThatWasRestartedIsFoundAgain) {
    server.start();
    server.addMicrophone("first", 48000, 1);
    Recorder heard;
    PulseAudioEngine engine;
    startCapture(engine, recorder);
    ASSERT_TRUE(recorder.hearsMore());

    server.kill();
    EXPECT_TRUE(recorder.hearsMore()) << "a lost server is silence";
    engine.stop();
    engine.removeTap();
    EXPECT_EQ(engine.inputFormat().channelCount, 0u);
    engine.installTap(576, format, recorder.tap());
    EXPECT_EQ(startError(engine), "Connection refused");
    EXPECT_FALSE(engine.isRunning());

    server.start();
    server.addMicrophone("second", 44100, 2);
    const auto player = server.play("second", tones(44100, 2), 44100, 2);
    startCapture(engine, heard);
    EXPECT_TRUE(heard.hearsTones(44100, 2));
}

TEST_F(PulseAudioEngineTest, ASourceThatVanishesIsFollowedByTheNextOrBySilence) {
    server.start();
    const auto last = server.addMicrophone("last", 48000, 1);
    const auto player = server.play("last", tones(48000, 1), 48000, 1);
    const auto microphone = server.addMicrophone("microphone", 16000, 1);
    MemoryLog log;
    PulseAudioEngine engine(&log);
    startCapture(engine, recorder);
    ASSERT_TRUE(recorder.hearsMore());
    server.unload(microphone);
    EXPECT_TRUE(recorder.hearsTones(16000, 1)) << "at the rate that was agreed";
    EXPECT_TRUE(log.entries().empty());
    server.unload(last);
    EXPECT_TRUE(recorder.hearsSilence(16000)) << "the meter falls";
    EXPECT_EQ(log.entries(),
              (std::vector<MemoryLog::Entry>{
                  {Log::Level::error, "Microphone",
                   "lost while recording, which goes on in silence: Entity killed"}}));
    EXPECT_TRUE(engine.isRunning());
    engine.stop();
    EXPECT_EQ(engine.inputFormat().channelCount, 0u);
    EXPECT_EQ(startError(engine), "No such entity");
}

TEST_F(PulseAudioEngineTest, AServerThatHangsNeitherFreezesNorEndsTheProgram) {
    server.start();
    server.addMicrophone("microphone", 48000, 1);
    PulseAudioEngine engine;
    startCapture(engine, recorder);
    ASSERT_TRUE(recorder.hearsMore());
    server.freeze();
    const auto begin = now();
    engine.stop();
    EXPECT_LT(now() - begin, 500ms);
    EXPECT_EQ(engine.inputFormat().channelCount, 0u);
    EXPECT_EQ(startError(engine), "Timeout");
    PulseAudioEngine late;
    EXPECT_EQ(late.inputFormat().channelCount, 0u);
    EXPECT_LT(now() - begin, 10s);
    server.thaw();
    startCapture(engine, recorder);
    EXPECT_TRUE(recorder.hearsMore());
}

TEST_F(PulseAudioEngineTest, NothingIsCapturedBetweenStopAndTheNextStart) {
    server.start();
    server.addMicrophone("microphone", 48000, 1);
    PulseAudioEngine engine;
    for (int dictation = 0; dictation < 5; ++dictation) {
        startCapture(engine, recorder);
        ASSERT_TRUE(recorder.hearsMore());
        engine.stop();
        const auto count = recorder.bufferCount();
        EXPECT_FALSE(engine.isRunning());
        engine.removeTap();
        // Several round trips to the server, during which more audio would have arrived.
        engine.inputFormat();
        server.control("info");
        EXPECT_EQ(recorder.bufferCount(), count);
    }
}

TEST_F(PulseAudioEngineTest, AMutedMicrophoneDeliversSilence) {
    server.start();
    server.addMicrophone("microphone", 48000, 1);
    const auto player = server.play("microphone", tones(48000, 1), 48000, 1);
    server.control("set-source-mute microphone.monitor 1");
    PulseAudioEngine engine;
    startCapture(engine, recorder);
    EXPECT_TRUE(recorder.hearsMore());
    EXPECT_TRUE(recorder.isSilent());
    server.control("set-source-mute microphone.monitor 0");
    EXPECT_TRUE(recorder.hearsTones(48000, 1));
}

TEST_F(PulseAudioEngineTest, TwoEnginesCaptureTheSame) {
    server.start();
    server.addMicrophone("microphone", 48000, 2);
    const auto player = server.play("microphone", tones(48000, 2), 48000, 2);
    Recorder otherRecorder;
    PulseAudioEngine one;
    PulseAudioEngine other;
    startCapture(one, recorder);
    startCapture(other, otherRecorder);
    EXPECT_TRUE(recorder.hearsTones(48000, 2));
    EXPECT_TRUE(otherRecorder.hearsTones(48000, 2));
    one.stop();
    EXPECT_TRUE(otherRecorder.hearsMore());
}

} // namespace
} // namespace orlune
