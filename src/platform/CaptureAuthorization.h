// Whether this program may listen to a microphone. Main thread.
#pragma once

#include <functional>

namespace orlune {

class CaptureAuthorization {
  public:
    enum class Status {
        notDetermined, ///< nobody has been asked yet, or the answer is not in yet
        denied,        ///< refused, or there is no microphone
        authorized,
    };

    virtual ~CaptureAuthorization() = default;

    /// What is known now; returns at once.
    virtual Status authorizationStatus() = 0;
    /// Asks the desktop, and the user where it comes to that. `completion` is called once, on any
    /// thread, with whether access is granted.
    virtual void requestAccess(std::function<void(bool isGranted)> completion) = 0;
};

} // namespace orlune
