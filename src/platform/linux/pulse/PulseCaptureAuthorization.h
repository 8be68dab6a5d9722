// Whether a sound server, PulseAudio or PipeWire, has a microphone for us: the same source that
// `PulseAudioEngine` would record from. From the first question on it follows the server on a
// thread "orlune-mic" of its own, which sleeps while nothing changes, and nobody ever waits for it.
// Without a server access is denied. A server that comes later is found when somebody asks.
#pragma once

#include "platform/CaptureAuthorization.h"

#include <memory>

namespace orlune {

class PulseCaptureAuthorization final : public CaptureAuthorization {
  public:
    PulseCaptureAuthorization();
    /// Requests that have no answer yet are dropped.
    ~PulseCaptureAuthorization() override;

    Status authorizationStatus() override;
    /// A server that does not answer within 3 s counts as none.
    void requestAccess(std::function<void(bool isGranted)> completion) override;

  private:
    class Watch;
    Watch& watch();

    std::unique_ptr<Watch> watch_;
};

} // namespace orlune
