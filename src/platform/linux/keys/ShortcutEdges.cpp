#include "platform/linux/keys/ShortcutEdges.h"

#include "platform/VirtualKey.h"

#include <utility>

namespace orlune {

std::optional<KeyEvent> ShortcutEdges::setShortcut(const KeyCombination& shortcut) {
    auto released = release();
    shortcut_ = shortcut;
    return released;
}

std::optional<KeyEvent> ShortcutEdges::press() {
    return std::exchange(isDown_, true) ? std::nullopt : std::optional(event(/*isDown=*/true));
}

std::optional<KeyEvent> ShortcutEdges::release() {
    return std::exchange(isDown_, false) ? std::optional(event(/*isDown=*/false)) : std::nullopt;
}

KeyEvent ShortcutEdges::event(bool isDown) const {
    if (!shortcut_.virtualKey) {
        return {.type = KeyEvent::Type::flagsChanged,
                .keyCode = virtual_key::function,
                .modifierFlags = isDown ? shortcut_.modifiers : ModifierFlags::none};
    }
    return {.type = isDown ? KeyEvent::Type::keyDown : KeyEvent::Type::keyUp,
            .keyCode = *shortcut_.virtualKey,
            .modifierFlags = shortcut_.modifiers};
}

KeyEvent escapeEvent(bool isDown) {
    return {.type = isDown ? KeyEvent::Type::keyDown : KeyEvent::Type::keyUp,
            .keyCode = virtual_key::escape,
            .modifierFlags = ModifierFlags::none};
}

} // namespace orlune
