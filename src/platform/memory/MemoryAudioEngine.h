// A microphone in memory: a test delivers buffers, and a log records the calls. Owned by the test;
// the engines that its factory makes share it and must not outlive it. Buffers reach the tap on the
// thread that delivers them. It can be set to fail.
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
    /// The same with one tap's worth of frames, which all have the given value in every channel.
    bool deliver(float value);

    /// Makes engines that refer to this one.
    AudioEngineFactory factory();

    AudioFormat format{AudioFormat::Sample::float32, 48000, 1, false};
    /// When set, `start` throws this instead of starting.
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
