// Whether this program may listen to a microphone. Main thread.
#pragma once

#include <functional>

namespace orlune {

class CaptureAuthorization {
  public:
    enum class Status {
        notDetermined, ///< not requested yet, or not answered yet
        denied,        ///< refused, or there is no microphone
        authorized,
    };

    virtual ~CaptureAuthorization() = default;

    /// The current knowledge; returns at once.
    virtual Status authorizationStatus() = 0;
    /// Asks the desktop, and the user where necessary. `completion` is called once, on any thread,
    /// with whether access is granted.
    virtual void requestAccess(std::function<void(bool isGranted)> completion) = 0;
};

} // namespace orlune
