#include "platform/audio/SpeexAudioConverter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace orlune {

namespace {

// Flat to 7.5 kHz at 16 kHz output, with aliases below the resolution of 16 bits.
constexpr int quality = 8;

// A rate outside this range is a mistake, and the filter's table would grow without limit.
constexpr double slowestRate = 1000;
constexpr double fastestRate = 768000;
constexpr std::uint32_t mostChannels = 64;

constexpr float fullScale = 32768;

bool isUsableRate(double rate) {
    return rate >= slowestRate && rate <= fastestRate && rate == std::floor(rate);
}

std::int16_t toInt16(float sample) {
    if (std::isnan(sample)) {
        return 0; // a broken driver: silence is better than a click
    }
    return static_cast<std::int16_t>(
        std::lrint(std::clamp(sample * fullScale, -fullScale, fullScale - 1)));
}

/// Adds one channel to the mix; `stride` is the distance between its samples.
template <typename Sample>
void add(std::span<const Sample> samples, std::size_t stride, float gain, std::span<float> mix) {
    for (std::size_t frame = 0; frame < mix.size(); ++frame) {
        mix[frame] += static_cast<float>(samples[frame * stride]) * gain;
    }
}

} // namespace

std::unique_ptr<AudioConverter> SpeexAudioConverter::create(const AudioFormat& from,
                                                            const AudioFormat& to) {
    if (from.channelCount == 0 || from.channelCount > mostChannels || !isUsableRate(from.sampleRate)
        || !isUsableRate(to.sampleRate) || to.sample != AudioFormat::Sample::int16
        || to.channelCount != 1) {
        return nullptr;
    }
    Resampler resampler;
    if (from.sampleRate != to.sampleRate) {
        int error = RESAMPLER_ERR_SUCCESS;
        resampler.reset(speex_resampler_init(1, static_cast<spx_uint32_t>(from.sampleRate),
                                             static_cast<spx_uint32_t>(to.sampleRate), quality,
                                             &error));
        if (!resampler || error != RESAMPLER_ERR_SUCCESS) {
            return nullptr;
        }
    }
    return std::unique_ptr<AudioConverter>(new SpeexAudioConverter(from, to, std::move(resampler)));
}

SpeexAudioConverter::SpeexAudioConverter(const AudioFormat& from, const AudioFormat& to,
                                         Resampler resampler)
    : from_(from), to_(to), resampler_(std::move(resampler)) {}

bool SpeexAudioConverter::convert(AudioPCMBuffer& output, const Input& input) {
    output.setFrameLength(0);
    const auto& format = output.format();
    if (format.sample != to_.sample || format.channelCount != 1
        || format.sampleRate != to_.sampleRate) {
        return false;
    }
    auto room = output.int16Channel(0);
    std::uint32_t written = 0;
    const auto take = [&](std::span<const float> samples) {
        const auto count = resample(samples, room);
        room = room.subspan(count);
        written += count;
        return samples;
    };
    if (!waiting_.empty()) {
        const auto rest = take(waiting_);
        waiting_.erase(waiting_.begin(), waiting_.end() - std::ssize(rest));
    }
    auto status = InputStatus::noDataNow;
    while (const auto* buffer = input(status)) {
        if (status != InputStatus::haveData) {
            break;
        }
        if (buffer->format() != from_) {
            return false;
        }
        auto rest = mixed(*buffer);
        if (waiting_.empty()) {
            rest = take(rest);
        }
        waiting_.insert(waiting_.end(), rest.begin(), rest.end());
    }
    output.setFrameLength(written);
    return true;
}

std::span<const float> SpeexAudioConverter::mixed(const AudioPCMBuffer& buffer) {
    if (from_.sample == AudioFormat::Sample::float32 && from_.channelCount == 1) {
        return buffer.floatChannel(0);
    }
    mixed_.assign(buffer.frameLength(), 0.0F);
    const auto channels = from_.channelCount;
    const float share = 1.0F / static_cast<float>(channels);
    for (std::uint32_t channel = 0; channel < channels && !mixed_.empty(); ++channel) {
        const std::uint32_t run = from_.isInterleaved ? 0 : channel;
        const std::size_t first = from_.isInterleaved ? channel : 0;
        const std::size_t stride = from_.isInterleaved ? channels : 1;
        if (from_.sample == AudioFormat::Sample::float32) {
            add(buffer.floatChannel(run).subspan(first), stride, share, mixed_);
        } else {
            add(buffer.int16Channel(run).subspan(first), stride, share / fullScale, mixed_);
        }
    }
    return mixed_;
}

/// Fills the output as far as it has room and leaves unused samples in `input`.
std::uint32_t SpeexAudioConverter::resample(std::span<const float>& input,
                                            std::span<std::int16_t> output) {
    auto taken = static_cast<spx_uint32_t>(input.size());
    auto made = static_cast<spx_uint32_t>(output.size());
    std::span<const float> samples = input;
    if (resampler_) {
        resampled_.resize(output.size());
        speex_resampler_process_float(resampler_.get(), 0, input.data(), &taken, resampled_.data(),
                                      &made);
        samples = resampled_;
    } else {
        taken = made = std::min(taken, made);
    }
    std::ranges::transform(samples.first(made), output.begin(), toInt16);
    input = input.subspan(taken);
    return made;
}

} // namespace orlune
