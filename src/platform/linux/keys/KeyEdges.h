// Turns presses and releases of keys into key events: remembers what is down, composes the flags
// from it, and tells a repeat from a press. Knows no display; a press or release that changes
// nothing gives no event. One thread.
#pragma once

#include "platform/KeyEvents.h"
#include "platform/linux/keys/KeyRoles.h"

#include <bitset>
#include <map>
#include <optional>
#include <vector>

namespace orlune {

class KeyEdges {
  public:
    using Keycode = KeyRoles::Keycode;
    using KeysDown = std::bitset<256>; ///< by keycode

    struct Edge {
        Keycode keycode;
        KeyEvent event;
    };

    /// Keys that are down keep the role they were pressed in, so that each is let go as the same.
    void setRoles(const KeyRoles& roles) { roles_ = roles; }

    /// A press of a key that is down is a repeat; modifiers do not repeat.
    std::optional<KeyEvent> press(Keycode keycode);
    std::optional<KeyEvent> release(Keycode keycode);
    /// Everything that is down, one key after the other.
    std::vector<Edge> releaseAll();

    /// Compares with what the server holds for down. A key it misses twice in a row has come up
    /// unseen; once may be a press that is still under way there.
    std::vector<Edge> releaseMissing(const KeysDown& keysDown);

    bool isDown(Keycode keycode) const { return held_.contains(keycode); }
    bool isAnyDown() const { return !held_.empty(); }

  private:
    struct Held {
        KeyRoles::Role role;
        std::uint16_t virtualKey;
        int misses = 0;
    };

    ModifierFlags flags() const;

    KeyRoles roles_;
    std::map<Keycode, Held> held_;
};

} // namespace orlune
