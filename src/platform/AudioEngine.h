// The microphone: one input with one tap. Owned by the capture service and used on the main actor;
// the tap is called on the engine's own audio thread, once for each delivery of the device. A
// device that vanishes while running delivers silence; it never causes an error or blocks.
#pragma once

#include "platform/AudioFormat.h"

#include <functional>
#include <memory>
#include <span>
#include <stdexcept>

namespace orlune {

/// Why the engine did not start, in the sound server's words.
class AudioEngineError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class AudioEngine {
  public:
    /// Receives the buffers that one delivery has filled, oldest first, at least one.
    using Tap = std::function<void(std::span<const AudioPCMBuffer> buffers)>;

    virtual ~AudioEngine() = default;

    /// The native format of the default input. No channels, or a rate of 0, when there is no input.
    virtual AudioFormat inputFormat() = 0;

    /// From the next start on, `tap` receives buffers of exactly `bufferSize` frames in `format`.
    virtual void installTap(std::uint32_t bufferSize, const AudioFormat& format, Tap tap) = 0;
    virtual void removeTap() = 0;

    /// Acquires what `start` needs, so that `start` is quick.
    virtual void prepare() = 0;
    /// Throws `AudioEngineError`.
    virtual void start() = 0;
    /// The tap is not called after this has returned. Must not be called from the tap.
    virtual void stop() = 0;
    virtual bool isRunning() const = 0;
};

using AudioEngineFactory = std::function<std::unique_ptr<AudioEngine>()>;

} // namespace orlune
