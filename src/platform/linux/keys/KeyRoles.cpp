#include "platform/linux/keys/KeyRoles.h"

#include "platform/VirtualKey.h"
#include "platform/linux/keys/VirtualKeyCodes.h"
#include "platform/linux/x11/ModifierSymbols.h"

#include <X11/XF86keysym.h>
#include <X11/keysym.h>

namespace orlune {

namespace {

/// KEY_FN as a symbol; older headers do not name it.
constexpr KeyboardLayout::Keysym functionSymbol = 0x100811d0;

KeyRoles::Role roleOfSymbol(KeyboardLayout::Keysym symbol) {
    if (const auto flag = modifierFlagOf(symbol)) {
        return {.isModifier = true, .flag = *flag};
    }
    switch (symbol) {
    case functionSymbol:
    case XF86XK_WakeUp: // what the Fn key of some notebooks sends
        return {.isModifier = true, .flag = ModifierFlags::function};
    case XK_Caps_Lock:
    case XK_Shift_Lock:
        return {.isModifier = true};
    default:
        return {};
    }
}

} // namespace

KeyRoles::KeyRoles() {
    for (std::size_t key = 0; key < virtualKeys_.size(); ++key) {
        virtualKeys_[key] = virtualKeyForKeycode(static_cast<std::uint16_t>(key));
    }
}

void KeyRoles::assign(Keycode keycode, Role role) {
    roles_[keycode] = role;
    if (role.flag == ModifierFlags::function) {
        virtualKeys_[keycode] = virtual_key::function;
    }
}

/// Escape is the one key that is looked for by what it says, and people do move it (`caps:escape`,
/// `caps:swapescape`). Where no key is called Escape, the one in its place remains.
void KeyRoles::moveEscape(const KeyboardLayout& layout) {
    if (layout.keycodeOf(XK_Escape)) {
        for (std::size_t key = 0; key < virtualKeys_.size(); ++key) {
            const auto symbol = layout.symbolOf(static_cast<Keycode>(key));
            if (symbol == XK_Escape) {
                virtualKeys_[key] = virtual_key::escape;
            } else if (virtualKeys_[key] == virtual_key::escape) {
                virtualKeys_[key] =
                    symbol == XK_Caps_Lock ? std::optional(virtual_key::capsLock) : std::nullopt;
            }
        }
    }
}

KeyRoles KeyRoles::of(const KeyboardLayout& layout, std::optional<Keycode> functionKey) {
    KeyRoles roles;
    roles.moveEscape(layout);
    for (std::size_t key = 0; key < roles.roles_.size(); ++key) {
        const auto keycode = static_cast<Keycode>(key);
        roles.assign(keycode, roleOfSymbol(layout.symbolOf(keycode)));
    }
    if (functionKey) {
        roles.assign(*functionKey, {.isModifier = true, .flag = ModifierFlags::function});
    }
    return roles;
}

} // namespace orlune
