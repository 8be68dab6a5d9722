// A microphone in memory: it hears what it is told to deliver, and keeps a log of what was asked of
// it. Whoever speaks into it owns it; the engines that its factory makes share it and must not
// outlive it. Buffers reach the tap on the thread that delivers them. It fails as it is told to.
#pragma once

#include "platform/AudioEngine.h"

#include <optional>
#include <string>
#include <vector>

namespace orlune {

class MemoryAudioEngine final : public AudioEngine {
  public:
    AudioFormat inputFormat() override { return format; }
    void installTap(std::uint32_t bufferSize, const AudioFormat& tapFormat, Tap tap) override;
    void removeTap() override;
    void prepare() override;
    void start() override;
    void stop() override;
    bool isRunning() const override { return isRunning_; }

    /// Calls the tap before it returns. False when the engine does not run or has no tap.
    bool deliver(std::span<const AudioPCMBuffer> buffers);
    bool deliver(const AudioPCMBuffer& buffer) { return deliver({&buffer, 1}); }
    /// The same with one tap's worth of frames that all have the given value in every channel.
    bool deliver(float value);

    /// Engines that are this one, under another owner.
    AudioEngineFactory factory();

    AudioFormat format{AudioFormat::Sample::float32, 48000, 1, false};
    /// What `start` throws instead of starting.
    std::optional<std::string> startError;
    /// "installTap 576", "removeTap", "prepare", "start", "stop", in order.
    std::vector<std::string> log;

  private:
    bool isRunning_ = false;
    Tap tap_;
    AudioFormat tapFormat_;
    std::uint32_t bufferSize_ = 0;
};

} // namespace orlune
