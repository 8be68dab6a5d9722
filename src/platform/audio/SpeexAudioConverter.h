// Resamples and mixes any microphone's samples to one channel of 16-bit integers. Owned by its
// creator and used on one thread at a time. Converts every buffer at once, with a delay of about 5
// ms. Unsupported formats give no converter.
#pragma once

#include "platform/AudioConverter.h"

#include <speex/speex_resampler.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace orlune {

class SpeexAudioConverter final : public AudioConverter {
  public:
    /// From float or 16-bit samples with any number of channels to 16-bit mono, between rates that
    /// are whole numbers of hertz; null otherwise. Channels are averaged, samples rounded to the
    /// nearest and clipped to the range. Equal rates use no filter.
    static std::unique_ptr<AudioConverter> create(const AudioFormat& from, const AudioFormat& to);

    bool convert(AudioPCMBuffer& output, const Input& input) override;

  private:
    struct Destroy {
        void operator()(SpeexResamplerState* state) const { speex_resampler_destroy(state); }
    };
    using Resampler = std::unique_ptr<SpeexResamplerState, Destroy>;

    SpeexAudioConverter(const AudioFormat& from, const AudioFormat& to, Resampler resampler);

    std::span<const float> mixed(const AudioPCMBuffer& buffer);
    std::uint32_t resample(std::span<const float>& input, std::span<std::int16_t> output);

    AudioFormat from_;
    AudioFormat to_;
    Resampler resampler_; ///< null between equal rates
    std::vector<float> mixed_;
    std::vector<float> resampled_;
    std::vector<float> waiting_; ///< mixed input that did not fit in the output
};

} // namespace orlune
