// Whether the screen is locked, as the session manager (logind) and the desktop's screen saver tell
// over D-Bus. Main thread, with Qt's loop running; changes are told there. A bus or a service that
// is not there never locks; one that ends no longer counts.
#pragma once

#include <functional>
#include <memory>

namespace orlune {

class ScreenLock {
  public:
    using OnChange = std::function<void(bool isLocked)>;

    /// Returns at once; a screen that is locked already is told soon after.
    explicit ScreenLock(OnChange onChange);
    ~ScreenLock();
    ScreenLock(const ScreenLock&) = delete;
    ScreenLock& operator=(const ScreenLock&) = delete;

  private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

} // namespace orlune
