// The default microphone of a Linux desktop, through libpulse. Owned by the capture service and
// used on the main actor; the tap is called on the thread "orlune-audio". Every call returns within
// a few seconds, even when the sound server hangs. When the server or the device is lost while
// recording, the log reports it and the tap receives silence at the same pace; the next start uses
// the source available then.
#pragma once

#include "platform/AudioEngine.h"
#include "platform/Log.h"
#include "platform/linux/pulse/PulseConnection.h"

#include <memory>
#include <optional>

namespace orlune {

class PulseAudioEngine final : public AudioEngine {
  public:
    /// Starts to connect and returns at once. `log` may be null; it must outlive the engine.
    explicit PulseAudioEngine(Log* log = nullptr);
    ~PulseAudioEngine() override;

    /// The default source's own rate and channels, as float samples, not interleaved. No channels
    /// without a server or a microphone.
    AudioFormat inputFormat() override;
    void installTap(std::uint32_t bufferSize, const AudioFormat& format, Tap tap) override;
    void removeTap() override;
    void prepare() override;
    void start() override;
    void stop() override;
    bool isRunning() const override { return isRunning_; }

  private:
    class Recording;

    Log* log_;
    PulseConnection connection_;
    std::optional<PulseConnection::Source> source_;
    std::uint32_t bufferSize_ = 0;
    AudioFormat format_;
    Tap tap_;
    bool isRunning_ = false;
    std::unique_ptr<Recording> recording_; ///< created and destroyed with the loop locked
};

} // namespace orlune
