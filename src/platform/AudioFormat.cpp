#include "platform/AudioFormat.h"

#include <algorithm>
#include <new>

namespace orlune {

namespace {

std::size_t bytesPerSample(AudioFormat::Sample sample) {
    return sample == AudioFormat::Sample::float32 ? sizeof(float) : sizeof(std::int16_t);
}

std::uint32_t runCount(const AudioFormat& format) {
    return format.isInterleaved ? 1 : format.channelCount;
}

} // namespace

std::optional<AudioPCMBuffer> AudioPCMBuffer::create(const AudioFormat& format,
                                                     std::uint32_t frameCapacity) {
    if (format.channelCount == 0) {
        return std::nullopt;
    }
    AudioPCMBuffer buffer;
    buffer.format_ = format;
    buffer.frameCapacity_ = frameCapacity;
    const std::size_t bytes =
        std::size_t{frameCapacity} * format.channelCount * bytesPerSample(format.sample);
    buffer.samples_.reset(new (std::nothrow) std::byte[std::max<std::size_t>(bytes, 1)]{});
    if (!buffer.samples_) {
        return std::nullopt;
    }
    return buffer;
}

void AudioPCMBuffer::setFrameLength(std::uint32_t frames) {
    frameLength_ = std::min(frames, frameCapacity_);
}

std::size_t AudioPCMBuffer::samplesPerRun(std::uint32_t frames) const {
    return std::size_t{frames} * (format_.isInterleaved ? format_.channelCount : 1);
}

const std::byte* AudioPCMBuffer::run(AudioFormat::Sample sample, std::uint32_t channel) const {
    if (format_.sample != sample || channel >= runCount(format_)) {
        return nullptr;
    }
    return samples_.get() + channel * samplesPerRun(frameCapacity_) * bytesPerSample(sample);
}

std::span<const float> AudioPCMBuffer::floatChannel(std::uint32_t channel) const {
    const auto* start = run(AudioFormat::Sample::float32, channel);
    return {reinterpret_cast<const float*>(start), start ? samplesPerRun(frameLength_) : 0};
}

std::span<const std::int16_t> AudioPCMBuffer::int16Channel(std::uint32_t channel) const {
    const auto* start = run(AudioFormat::Sample::int16, channel);
    return {reinterpret_cast<const std::int16_t*>(start), start ? samplesPerRun(frameLength_) : 0};
}

std::span<float> AudioPCMBuffer::floatChannel(std::uint32_t channel) {
    auto* start = const_cast<std::byte*>(run(AudioFormat::Sample::float32, channel));
    return {reinterpret_cast<float*>(start), start ? samplesPerRun(frameCapacity_) : 0};
}

std::span<std::int16_t> AudioPCMBuffer::int16Channel(std::uint32_t channel) {
    auto* start = const_cast<std::byte*>(run(AudioFormat::Sample::int16, channel));
    return {reinterpret_cast<std::int16_t*>(start), start ? samplesPerRun(frameCapacity_) : 0};
}

} // namespace orlune
