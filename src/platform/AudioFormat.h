// The layout of samples, and a buffer of them. Plain values, independent of any device.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace orlune {

struct AudioFormat {
    enum class Sample { float32, int16 };

    Sample sample = Sample::float32;
    double sampleRate = 0; ///< hertz; 0 or less when there is no device
    std::uint32_t channelCount = 0;
    bool isInterleaved = false;

    bool operator==(const AudioFormat&) const = default;
};

/// Room for `frameCapacity` frames in one format, of which `frameLength` are filled.
/// Samples are in the machine's byte order; float samples run from -1 to 1.
class AudioPCMBuffer {
  public:
    /// None when the format has no channels or the memory cannot be allocated.
    static std::optional<AudioPCMBuffer> create(const AudioFormat& format,
                                                std::uint32_t frameCapacity);

    const AudioFormat& format() const { return format_; }
    std::uint32_t frameCapacity() const { return frameCapacity_; }
    std::uint32_t frameLength() const { return frameLength_; }
    /// Limited to the capacity.
    void setFrameLength(std::uint32_t frames);

    /// The filled samples of one channel, contiguous; empty for another sample type. An interleaved
    /// buffer of several channels has one run, channel 0, with the samples of all channels.
    std::span<const float> floatChannel(std::uint32_t channel) const;
    std::span<const std::int16_t> int16Channel(std::uint32_t channel) const;
    /// The same, to the full capacity and writable.
    std::span<float> floatChannel(std::uint32_t channel);
    std::span<std::int16_t> int16Channel(std::uint32_t channel);

  private:
    AudioPCMBuffer() = default;
    std::size_t samplesPerRun(std::uint32_t frames) const;
    const std::byte* run(AudioFormat::Sample sample, std::uint32_t channel) const;

    AudioFormat format_;
    std::uint32_t frameCapacity_ = 0;
    std::uint32_t frameLength_ = 0;
    std::unique_ptr<std::byte[]> samples_;
};

} // namespace orlune
