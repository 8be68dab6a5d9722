#include "platform/memory/MemoryAudioConverter.h"

#include <algorithm>

namespace orlune {

namespace {

std::int16_t firstChannelSample(const AudioPCMBuffer& buffer, std::uint32_t frame) {
    const std::size_t stride = buffer.format().isInterleaved ? buffer.format().channelCount : 1;
    if (buffer.format().sample == AudioFormat::Sample::int16) {
        return buffer.int16Channel(0)[frame * stride];
    }
    const float sample = std::clamp(buffer.floatChannel(0)[frame * stride], -1.0F, 1.0F);
    return static_cast<std::int16_t>(sample * 32767.0F);
}

} // namespace

class MemoryAudioConverter::Converter final : public AudioConverter {
  public:
    Converter(MemoryAudioConverter& owner, double inputPerOutput)
        : owner_(owner), inputPerOutput_(inputPerOutput) {}

    bool convert(AudioPCMBuffer& output, const Input& input) override {
        output.setFrameLength(0);
        auto status = InputStatus::noDataNow;
        while (const auto* buffer = input(status)) {
            append(*buffer, output);
        }
        if (owner_.failsConversions) {
            output.setFrameLength(0);
            return false;
        }
        return true;
    }

  private:
    void append(const AudioPCMBuffer& buffer, AudioPCMBuffer& output) {
        const auto samples = output.int16Channel(0);
        auto frame = output.frameLength();
        for (; nextInput_ < buffer.frameLength() && frame < output.frameCapacity(); ++frame) {
            samples[frame] = firstChannelSample(buffer, static_cast<std::uint32_t>(nextInput_));
            nextInput_ += inputPerOutput_;
        }
        output.setFrameLength(frame);
        nextInput_ = std::max(nextInput_ - buffer.frameLength(), 0.0);
    }

    MemoryAudioConverter& owner_;
    double inputPerOutput_;
    double nextInput_ = 0; // relative to the start of the next buffer
};

AudioConverterFactory MemoryAudioConverter::factory() {
    return
        [this](const AudioFormat& from, const AudioFormat& to) -> std::unique_ptr<AudioConverter> {
            const bool isPossible = from.channelCount > 0 && from.sampleRate > 0
                                    && to.sample == AudioFormat::Sample::int16
                                    && to.channelCount == 1 && to.sampleRate > 0;
            if (refusesFormats || !isPossible) {
                return nullptr;
            }
            ++madeCount;
            return std::make_unique<Converter>(*this, from.sampleRate / to.sampleRate);
        };
}

} // namespace orlune
