#include "platform/linux/keys/KeyRoles.h"

#include "platform/linux/keys/VirtualKeyCodes.h"

#include <X11/XF86keysym.h>
#include <X11/keysym.h>

namespace orlune {

namespace {

constexpr std::uint16_t virtualEscape = 53;
constexpr std::uint16_t virtualCapsLock = 57;
constexpr std::uint16_t virtualFunction = 63;

/// KEY_FN as a symbol; older headers do not name it.
constexpr KeyboardLayout::Keysym functionSymbol = 0x100811d0;

KeyRoles::Role roleOfSymbol(KeyboardLayout::Keysym symbol) {
    switch (symbol) {
    case XK_Shift_L:
    case XK_Shift_R:
        return {.isModifier = true, .flag = ModifierFlags::shift};
    case XK_Control_L:
    case XK_Control_R:
        return {.isModifier = true, .flag = ModifierFlags::control};
    case XK_Alt_L:
    case XK_Alt_R:
    case XK_Meta_L:
    case XK_Meta_R:
        return {.isModifier = true, .flag = ModifierFlags::option};
    case XK_Super_L:
    case XK_Super_R:
        return {.isModifier = true, .flag = ModifierFlags::command};
    case functionSymbol:
    case XF86XK_WakeUp: // what the Fn key of some notebooks sends
        return {.isModifier = true, .flag = ModifierFlags::function};
    case XK_Caps_Lock:
    case XK_Shift_Lock:
    case XK_Hyper_L:
    case XK_Hyper_R:
    case XK_ISO_Level3_Shift: // AltGr writes characters; as Option it would trip shortcuts
    case XK_ISO_Level5_Shift:
    case XK_Mode_switch:
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
        virtualKeys_[keycode] = virtualFunction;
    }
}

/// Escape is the one key that is looked for by what it says, and people do move it (`caps:escape`,
/// `caps:swapescape`). Where no key is called Escape, the one in its place remains.
void KeyRoles::moveEscape(const KeyboardLayout& layout) {
    if (layout.keycodeOf(XK_Escape)) {
        for (std::size_t key = 0; key < virtualKeys_.size(); ++key) {
            const auto symbol = layout.symbolOf(static_cast<Keycode>(key));
            if (symbol == XK_Escape) {
                virtualKeys_[key] = virtualEscape;
            } else if (virtualKeys_[key] == virtualEscape) {
                virtualKeys_[key] =
                    symbol == XK_Caps_Lock ? std::optional(virtualCapsLock) : std::nullopt;
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
