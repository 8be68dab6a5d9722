// Which keys of a keyboard modify others, and as what: Super is Command, Alt is Option, and one key
// stands in for Fn, which most keyboards keep to themselves. A plain value; resolved anew when the
// layout changes.
#pragma once

#include "platform/ModifierFlags.h"
#include "platform/linux/KeyboardLayout.h"

#include <array>
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

    /// By the symbols of the keys. The key that stands in for Fn counts as nothing else.
    static KeyRoles of(const KeyboardLayout& layout, std::optional<Keycode> functionKey);

    Role roleOf(Keycode keycode) const { return roles_[keycode]; }
    void assign(Keycode keycode, Role role) { roles_[keycode] = role; }

  private:
    std::array<Role, 256> roles_{};
};

} // namespace orlune
