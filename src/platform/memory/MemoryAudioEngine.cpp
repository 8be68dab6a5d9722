#include "platform/memory/MemoryAudioEngine.h"

#include <algorithm>
#include <utility>

namespace orlune {

namespace {

class SharedEngine final : public AudioEngine {
  public:
    explicit SharedEngine(AudioEngine& engine) : engine_(engine) {}

    AudioFormat inputFormat() override { return engine_.inputFormat(); }
    void installTap(std::uint32_t bufferSize, const AudioFormat& format, Tap tap) override {
        engine_.installTap(bufferSize, format, std::move(tap));
    }
    void removeTap() override { engine_.removeTap(); }
    void prepare() override { engine_.prepare(); }
    void start() override { engine_.start(); }
    void stop() override { engine_.stop(); }
    bool isRunning() const override { return engine_.isRunning(); }

  private:
    AudioEngine& engine_;
};

} // namespace

void MemoryAudioEngine::installTap(std::uint32_t bufferSize, const AudioFormat& tapFormat,
                                   Tap tap) {
    log.push_back("installTap " + std::to_string(bufferSize));
    bufferSize_ = bufferSize;
    tapFormat_ = tapFormat;
    tap_ = std::move(tap);
}

void MemoryAudioEngine::removeTap() {
    log.push_back("removeTap");
    tap_ = nullptr;
}

void MemoryAudioEngine::prepare() {
    log.push_back("prepare");
}

void MemoryAudioEngine::start() {
    log.push_back("start");
    if (startError) {
        throw AudioEngineError(*startError);
    }
    isRunning_ = true;
}

void MemoryAudioEngine::stop() {
    log.push_back("stop");
    isRunning_ = false;
}

bool MemoryAudioEngine::deliver(std::span<const AudioPCMBuffer> buffers) {
    if (!isRunning_ || !tap_) {
        return false;
    }
    // A copy: the tap may be replaced while it runs.
    const Tap tap = tap_;
    tap(buffers);
    return true;
}

bool MemoryAudioEngine::deliver(float value) {
    auto buffer = AudioPCMBuffer::create(tapFormat_, bufferSize_);
    if (!buffer) {
        return false;
    }
    for (std::uint32_t channel = 0; channel < tapFormat_.channelCount; ++channel) {
        std::ranges::fill(buffer->floatChannel(channel), value);
        std::ranges::fill(buffer->int16Channel(channel),
                          static_cast<std::int16_t>(value * 32767.0F));
    }
    buffer->setFrameLength(bufferSize_);
    return deliver(*buffer);
}

AudioEngineFactory MemoryAudioEngine::factory() {
    return [this] { return std::make_unique<SharedEngine>(*this); };
}

} // namespace orlune
