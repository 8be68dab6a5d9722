#include "platform/linux/x11/KeyboardLayout.h"

#include "platform/linux/x11/ModifierSymbols.h"
#include "platform/linux/x11/XHandles.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>

namespace orlune {

namespace {

constexpr std::size_t keycodeCount = 256;

} // namespace

std::optional<KeyboardLayout> KeyboardLayout::read(Display* display) {
    const XOwned<XkbDescRec> keyboard(
        XkbGetMap(display, XkbKeySymsMask | XkbModifierMapMask, XkbUseCoreKbd));
    XkbStateRec state{};
    if (!keyboard || !keyboard->map || !keyboard->map->modmap
        || XkbGetState(display, XkbUseCoreKbd, &state) != Success) {
        return std::nullopt;
    }
    std::array<char, keycodeCount / 8> downBits{};
    XQueryKeymap(display, downBits.data());

    KeyboardLayout layout;
    layout.keys_.resize(keycodeCount);
    layout.activeGroup_ = state.group;
    for (int keycode = keyboard->min_key_code; keycode <= keyboard->max_key_code; ++keycode) {
        auto& key = layout.keys_[static_cast<std::size_t>(keycode)];
        const int groups = XkbKeyNumGroups(keyboard.get(), keycode);
        for (int group = 0; group < groups; ++group) {
            key.symbols.push_back(XkbKeySymEntry(keyboard.get(), keycode, /*level=*/0, group));
        }
        layout.groupCount_ = std::max(layout.groupCount_, key.symbols.size());
        key.isModifier = (keyboard->map->modmap[keycode] & ~LockMask) != 0
                         || modifierFlagOf(layout.symbolIn(layout.activeGroup_, key));
        key.isDown = (downBits[static_cast<std::size_t>(keycode) / 8] >> (keycode % 8)) & 1;
    }
    return layout;
}

KeyboardLayout::Keysym KeyboardLayout::symbolIn(std::size_t group, const Key& key) const {
    // For a key with fewer layouts than the keyboard, the groups wrap around.
    return key.symbols.empty() ? NoSymbol : key.symbols[group % key.symbols.size()];
}

KeyboardLayout::Keysym KeyboardLayout::symbolOf(Keycode keycode) const {
    return symbolIn(activeGroup_, keys_.at(keycode));
}

std::optional<KeyboardLayout::Keycode> KeyboardLayout::keycodeOf(Keysym symbol) const {
    const auto find = [this, symbol](std::size_t group) -> std::optional<Keycode> {
        for (std::size_t keycode = 0; keycode < keys_.size(); ++keycode) {
            if (symbolIn(group, keys_[keycode]) == symbol) {
                return static_cast<Keycode>(keycode);
            }
        }
        return std::nullopt;
    };
    auto found = find(activeGroup_);
    for (std::size_t group = 0; !found && group < groupCount_; ++group) {
        found = find(group);
    }
    return found;
}

std::vector<KeyboardLayout::Keycode> KeyboardLayout::heldModifiers() const {
    std::vector<Keycode> held;
    for (std::size_t keycode = 0; keycode < keys_.size(); ++keycode) {
        if (keys_[keycode].isDown && keys_[keycode].isModifier) {
            held.push_back(static_cast<Keycode>(keycode));
        }
    }
    return held;
}

} // namespace orlune
