// The cost of one tap of 12 ms on the audio thread, with level, conversion and packet, compared
// with the conversion alone by libsamplerate's medium sinc filter. Compare `tap` with `samplerate`
// at the same number of channels; `tap` does more and should still cost a third.
#include "platform/audio/SpeexAudioConverter.h"
#include "platform/memory/MemoryAudioEngine.h"
#include "services/AudioCaptureService.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <samplerate.h>
#include <vector>

namespace {

constexpr std::uint32_t tapFrames = 576;
constexpr double inputRate = 48000;

/// Half a second of noise and tones in the form of microphone data.
std::vector<orlune::AudioPCMBuffer> microphoneBuffers(std::uint32_t channels) {
    const orlune::AudioFormat format{orlune::AudioFormat::Sample::float32, inputRate, channels,
                                     false};
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-0.1F, 0.1F);
    std::vector<orlune::AudioPCMBuffer> buffers;
    float frame = 0;
    while (buffers.size() < 42) {
        auto buffer = *orlune::AudioPCMBuffer::create(format, tapFrames);
        for (std::uint32_t index = 0; index < tapFrames; ++index, ++frame) {
            for (std::uint32_t channel = 0; channel < channels; ++channel) {
                buffer.floatChannel(channel)[index] =
                    0.3F * std::sin(frame * 0.05F) + noise(random);
            }
        }
        buffer.setFrameLength(tapFrames);
        buffers.push_back(std::move(buffer));
    }
    return buffers;
}

void tap(benchmark::State& state) {
    const auto buffers = microphoneBuffers(static_cast<std::uint32_t>(state.range(0)));
    orlune::MemoryAudioEngine microphone;
    microphone.format = buffers[0].format();
    orlune::AudioCaptureService service(microphone.factory(), orlune::SpeexAudioConverter::create);
    service.prepare([](auto levels) { benchmark::DoNotOptimize(levels.data()); },
                    [](orlune::AudioPacket packet) { benchmark::DoNotOptimize(packet.data()); });
    service.start();
    std::size_t index = 0;
    for ([[maybe_unused]] auto iteration : state) {
        microphone.deliver(buffers[index]);
        index = (index + 1) % buffers.size();
    }
}

void samplerate(benchmark::State& state) {
    const auto channels = static_cast<std::uint32_t>(state.range(0));
    const auto buffers = microphoneBuffers(channels);
    int error = 0;
    const std::unique_ptr<SRC_STATE, SRC_STATE* (*)(SRC_STATE*)> converter(
        src_new(SRC_SINC_MEDIUM_QUALITY, /*channels=*/1, &error), src_delete);
    if (!converter) {
        state.SkipWithError(src_strerror(error));
        return;
    }
    std::array<float, tapFrames> mono{};
    std::array<float, tapFrames> resampled{};
    std::array<std::int16_t, tapFrames> samples{};
    std::size_t index = 0;
    for ([[maybe_unused]] auto iteration : state) {
        const auto& buffer = buffers[index];
        index = (index + 1) % buffers.size();
        const float share = 1.0F / static_cast<float>(channels);
        mono.fill(0);
        for (std::uint32_t channel = 0; channel < channels; ++channel) {
            const auto input = buffer.floatChannel(channel);
            for (std::size_t frame = 0; frame < tapFrames; ++frame) {
                mono[frame] += input[frame] * share;
            }
        }
        SRC_DATA data{};
        data.data_in = mono.data();
        data.input_frames = tapFrames;
        data.data_out = resampled.data();
        data.output_frames = tapFrames;
        data.src_ratio = 16000 / inputRate;
        src_process(converter.get(), &data);
        src_float_to_short_array(resampled.data(), samples.data(),
                                 static_cast<int>(data.output_frames_gen));
        benchmark::DoNotOptimize(samples.data());
    }
}

BENCHMARK(samplerate)->ArgName("channels")->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(tap)->ArgName("channels")->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
