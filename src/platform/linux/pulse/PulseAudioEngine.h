// The default microphone of a Linux desktop, through libpulse. Owned by the capture service and
// used on the main actor; the tap is called on the thread "orlune-audio". Every call returns within
// a few seconds, also when the sound server hangs. When the server or the device is lost while
// recording, the log says so and the tap receives silence at the same pace; the next start uses
// whatever is there then.
#pragma once

#include "platform/AudioEngine.h"
#include "platform/Log.h"
#include "platform/linux/pulse/PulseConnection.h"

#include <memory>
#include <optional>

namespace orlune {

class PulseAudioEngine final : public AudioEngine {
  public:
    /// Begins to connect and returns at once. `log`, which may be null, outlives the engine.
    explicit PulseAudioEngine(Log* log = nullptr);
    ~PulseAudioEngine() override;

    /// The default source's own rate and channels, as float samples without interleaving. No
    /// channels without a server or a microphone.
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
    std::unique_ptr<Recording> recording_; ///< made and let go with the loop locked
};

} // namespace orlune
