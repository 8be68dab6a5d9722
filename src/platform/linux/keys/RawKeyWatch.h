// The keys of an X display as the hardware reports them, whichever program receives them, on an X
// connection of its own. Main thread, with Qt's loop running; the observer is called there, in the
// order of the keys, also from within `catchUp`. Where keys cannot be seen, none is told and the
// reason says why; a display that goes away ends the keys without harm.
#pragma once

#include "platform/linux/x11/KeyboardLayout.h"

#include <bitset>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

union _XEvent;

namespace orlune {

class XEventSource;

class RawKeyWatch {
  public:
    using Keycode = KeyboardLayout::Keycode;

    struct Key {
        Keycode keycode;
        bool isDown;
        /// Sent by a program, ours or another, not by a keyboard.
        bool isSynthetic;
    };
    struct Observer {
        std::function<void(const Key&)> onKey;
        /// A keyboard, its symbols or the active layout changed; several may come in a row.
        std::function<void()> onLayoutChange;
    };

    /// None when no server answers. An empty display name means the DISPLAY of the environment.
    static std::unique_ptr<RawKeyWatch> open(const std::string& displayName, Observer observer);
    ~RawKeyWatch();

    /// Why no keys are seen; empty while they are.
    std::string reasonForUnavailability() const;

    /// Tells everything that has happened up to now, instead of at the next turn of the loop.
    void catchUp();

    // Both ask the server. None when it does not tell.
    std::optional<KeyboardLayout> layout();
    std::optional<std::bitset<256>> keysDown();

  private:
    RawKeyWatch(std::unique_ptr<XEventSource> events, Observer observer);
    void select();
    void findSyntheticKeyboards();
    void read(_XEvent& event);
    void readInput(_XEvent& event);

    std::unique_ptr<XEventSource> events_;
    Observer observer_;
    std::string reason_;
    int inputOpcode_ = 0;
    int xkbEvent_ = -1;
    std::vector<int> syntheticKeyboards_; ///< by device number
};

} // namespace orlune
