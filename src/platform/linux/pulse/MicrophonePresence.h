// Whether a sound server, PulseAudio or PipeWire, has a microphone for us: the same source that
// `PulseAudioEngine` would record from. After the first question it follows the server on its own
// thread "orlune-mic", which sleeps while nothing changes. No call blocks. Without a server, access
// is denied. A server that starts later is found by the next question.
#pragma once

#include "platform/CaptureAuthorization.h"

#include <memory>

namespace orlune {

class MicrophonePresence final : public CaptureAuthorization {
  public:
    MicrophonePresence();
    /// Unanswered requests are dropped.
    ~MicrophonePresence() override;

    Status authorizationStatus() override;
    /// A server that does not answer within 3 s counts as absent.
    void requestAccess(std::function<void(bool isGranted)> completion) override;

  private:
    class Watch;
    Watch& watch();

    std::unique_ptr<Watch> watch_;
};

} // namespace orlune
