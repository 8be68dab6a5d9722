// Which virtual key each key of a keyboard is, and which of them modify others, as what: Super is
// Command, Alt is Option, and one key stands in for Fn, which most keyboards keep to themselves. A
// plain value; resolved anew when the layout changes.
#pragma once

#include "platform/ModifierFlags.h"
#include "platform/linux/x11/KeyboardLayout.h"

#include <array>
#include <cstdint>
#include <optional>

namespace orlune {

class KeyRoles {
  public:
    using Keycode = KeyboardLayout::Keycode;

    struct Role {
        bool isModifier = false;
        /// None for modifiers that have no flag, such as Caps Lock and AltGr.
        ModifierFlags flag = ModifierFlags::none;
    };

    /// No modifiers; every key is the one in its place.
    KeyRoles();
    /// By the symbols of the keys. The key that stands in for Fn counts as nothing else.
    static KeyRoles of(const KeyboardLayout& layout, std::optional<Keycode> functionKey);

    Role roleOf(Keycode keycode) const { return roles_[keycode]; }
    /// None for keys that no keyboard of a Mac has.
    std::optional<std::uint16_t> virtualKeyOf(Keycode keycode) const {
        return virtualKeys_[keycode];
    }
    void assign(Keycode keycode, Role role);

  private:
    void moveEscape(const KeyboardLayout& layout);

    std::array<Role, 256> roles_{};
    std::array<std::optional<std::uint16_t>, 256> virtualKeys_{};
};

} // namespace orlune
