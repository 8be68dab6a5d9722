// The keyboard of a Wayland session as the user presses it: one device for the whole test, because
// seats briefly lose their keyboard when one comes or goes. Keys are the kernel's codes. Main
// thread.
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

    /// Uses whatever this compositor offers to a trusted program. Throws when it offers nothing.
    Hands();
    ~Hands();

    void press(KeyCode key) { send_(key, /*isDown=*/true); }
    void release(KeyCode key) { send_(key, /*isDown=*/false); }
    /// Presses the keys in order and releases them in reverse order.
    void tap(const std::vector<KeyCode>& keys);

  private:
    std::unique_ptr<WaylandConnection> connection_;
    std::function<void(KeyCode key, bool isDown)> send_;
};

} // namespace orlune::desktop
