// Turns a desktop's reports "pressed" and "released" of one shortcut into the key events of which
// that shortcut consists. Reports that change nothing, such as repeats, give no event. A plain
// value.
#pragma once

#include "platform/KeyCombination.h"
#include "platform/KeyEvents.h"

#include <optional>

namespace orlune {

class ShortcutEdges {
  public:
    /// Replaces the shortcut. The result is the release of the one before, when that was down.
    std::optional<KeyEvent> setShortcut(const KeyCombination& shortcut);
    const KeyCombination& shortcut() const { return shortcut_; }

    std::optional<KeyEvent> press();
    std::optional<KeyEvent> release();
    bool isDown() const { return isDown_; }

  private:
    KeyEvent event(bool isDown) const;

    KeyCombination shortcut_;
    bool isDown_ = false;
};

/// A press or release of Escape.
KeyEvent escapeEvent(bool isDown);

} // namespace orlune
