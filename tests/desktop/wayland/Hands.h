// The keyboard of a Wayland session as a person's hands would use it: one device for the whole
// test, because seats lose their keyboard for a moment when one comes or goes. Keys are the
// kernel's codes. Main thread.
#pragma once

#include "platform/linux/wayland/WaylandConnection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace orlune::desktop {

class Hands {
  public:
    using KeyCode = std::uint16_t;

    /// Through whatever this compositor offers to a trusted program. Throws when it offers nothing.
    Hands();
    ~Hands();

    void press(KeyCode key) { send_(key, /*isDown=*/true); }
    void release(KeyCode key) { send_(key, /*isDown=*/false); }
    /// One after the other, and up again in the opposite order.
    void tap(const std::vector<KeyCode>& keys);

  private:
    std::unique_ptr<WaylandConnection> connection_;
    std::function<void(KeyCode key, bool isDown)> send_;
};

} // namespace orlune::desktop
