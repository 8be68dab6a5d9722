#include "services/AudioCaptureService.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace orlune {

namespace {

constexpr AudioFormat packetFormat{AudioFormat::Sample::int16, 16000, 1, true};

// 12 ms of input: short enough to follow speech closely, long enough to be cheap.
constexpr double tapSeconds = 0.012;
constexpr double smallestTapFrames = 256;

// The displayed loudness covers -56 to -14 decibels of full scale, which is speech at arm's length.
constexpr float quietestDecibels = -56;
constexpr float decibelRange = 42;
// The lowest part of that range is the noise of a room; the rest is stretched over the whole range.
constexpr double noiseGate = 0.035;
// Shares of the distance to the target that each buffer covers.
constexpr double risingShare = 0.94;
constexpr double fallingShare = 0.38;
// A decaying level below this is silence.
constexpr double smallestLevel = 0.012;

std::uint32_t tapFrames(double sampleRate) {
    return static_cast<std::uint32_t>(std::max(sampleRate * tapSeconds, smallestTapFrames));
}

double targetLevel(float rms) {
    if (!(rms > 0)) {
        return 0;
    }
    const float normalised = (20 * std::log10(rms) - quietestDecibels) / decibelRange;
    if (normalised >= 1) {
        return 1;
    }
    const double level = normalised;
    return level <= noiseGate ? 0 : (level - noiseGate) / (1 - noiseGate);
}

float sumOfSquares(std::span<const float> samples) {
    // Separate sums have no fixed order, so the compiler may use vector instructions.
    constexpr std::size_t lanes = 16;
    std::array<float, lanes> sums{};
    std::size_t index = 0;
    for (; index + lanes <= samples.size(); index += lanes) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            sums[lane] += samples[index + lane] * samples[index + lane];
        }
    }
    float sum = 0;
    for (; index < samples.size(); ++index) {
        sum += samples[index] * samples[index];
    }
    for (const float laneSum : sums) {
        sum += laneSum;
    }
    return sum;
}

} // namespace

const char* AudioCaptureService::CaptureError::what() const noexcept {
    switch (kind_) {
    case Case::noInput:
        return "No microphone is available";
    case Case::conversionFailed:
        return "The microphone audio format isn't supported";
    }
    return "";
}

/// Processes each delivery, with the state of one preparation. Only used on the audio thread.
class AudioCaptureService::TapHandler {
  public:
    TapHandler(LevelCallback level, AudioDataCallback audioData,
               std::unique_ptr<AudioConverter> converter, double inputRate)
        : level_(std::move(level)), audioData_(std::move(audioData)),
          converter_(std::move(converter)), outputPerInput_(packetFormat.sampleRate / inputRate) {}

    void handle(std::span<const AudioPCMBuffer> buffers) {
        // The levels come first, so that a conversion that fails still moves the waveform.
        levels_.clear();
        for (const auto& buffer : buffers) {
            levels_.push_back(smoothed(targetLevel(rms(buffer))));
        }
        level_(levels_);
        for (const auto& buffer : buffers) {
            convert(buffer);
        }
        for (auto& packet : packets_) {
            audioData_(std::move(packet));
        }
        packets_.clear();
    }

  private:
    double smoothed(double target) {
        const double share = previousLevel_ < target ? risingShare : fallingShare;
        previousLevel_ += (target - previousLevel_) * share;
        if (previousLevel_ < smallestLevel) {
            previousLevel_ = 0;
        }
        return previousLevel_;
    }

    /// Adds the buffer's packet, if there is one.
    void convert(const AudioPCMBuffer& buffer) {
        const auto capacity =
            static_cast<std::uint32_t>(outputPerInput_ * buffer.frameLength()) + 1;
        // All buffers have one size, so this one is made only once.
        if (!output_ || output_->frameCapacity() != capacity) {
            output_ = AudioPCMBuffer::create(packetFormat, capacity);
        }
        if (!output_) {
            return;
        }
        output_->setFrameLength(0);
        const AudioPCMBuffer* pending = &buffer;
        const bool converted =
            converter_->convert(*output_, [&pending](AudioConverter::InputStatus& status) {
                status = pending ? AudioConverter::InputStatus::haveData
                                 : AudioConverter::InputStatus::noDataNow;
                return std::exchange(pending, nullptr);
            });
        const auto samples = std::as_bytes(std::as_const(*output_).int16Channel(0));
        if (converted && !samples.empty()) {
            packets_.emplace_back(reinterpret_cast<const char*>(samples.data()), samples.size());
        }
    }

    LevelCallback level_;
    AudioDataCallback audioData_;
    std::unique_ptr<AudioConverter> converter_;
    double outputPerInput_;
    double previousLevel_ = 0;
    std::vector<double> levels_;
    std::vector<AudioPacket> packets_;
    std::optional<AudioPCMBuffer> output_;
};

AudioCaptureService::AudioCaptureService(const AudioEngineFactory& makeEngine,
                                         AudioConverterFactory makeConverter)
    : engine_(makeEngine()), makeConverter_(std::move(makeConverter)) {}

AudioCaptureService::~AudioCaptureService() {
    stop();
}

AudioFormat AudioCaptureService::prepare(LevelCallback level, AudioDataCallback audioData) {
    stop();
    const auto inputFormat = engine_->inputFormat();
    if (inputFormat.channelCount == 0 || !(inputFormat.sampleRate > 0)) {
        throw CaptureError(CaptureError::Case::noInput);
    }
    auto converter = makeConverter_(inputFormat, packetFormat);
    if (!converter) {
        throw CaptureError(CaptureError::Case::conversionFailed);
    }
    const auto handler = std::make_shared<TapHandler>(std::move(level), std::move(audioData),
                                                      std::move(converter), inputFormat.sampleRate);
    engine_->installTap(tapFrames(inputFormat.sampleRate), inputFormat,
                        [handler](auto buffers) { handler->handle(buffers); });
    engine_->prepare();
    isPrepared_ = true;
    return packetFormat;
}

void AudioCaptureService::start() {
    if (isPrepared_) {
        engine_->start();
    }
}

void AudioCaptureService::stop() {
    if (engine_->isRunning()) {
        engine_->stop();
    }
    if (std::exchange(isPrepared_, false)) {
        engine_->removeTap();
    }
}

float AudioCaptureService::rms(const AudioPCMBuffer& buffer) {
    const auto channel = buffer.floatChannel(0);
    const auto samples = channel.first(std::min<std::size_t>(channel.size(), buffer.frameLength()));
    if (samples.empty()) {
        return 0;
    }
    return std::sqrt(sumOfSquares(samples) / static_cast<float>(samples.size()));
}

} // namespace orlune
