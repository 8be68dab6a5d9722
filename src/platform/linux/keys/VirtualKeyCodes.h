// The virtual key codes used above this folder, and the keys of a Linux keyboard in the same
// places. Keys are named by their X keycode, which is the kernel's code plus 8. Layouts, which may
// move Escape, are for `KeyRoles`. Pure functions, from any thread.
#pragma once

#include <cstdint>
#include <optional>

namespace orlune {

/// The kernel counts keys from 0, X from 8.
constexpr std::uint16_t keycodeOffset = 8;

/// The key in this place; none for codes no keyboard of ours has.
std::optional<std::uint16_t> keycodeForVirtualKey(std::uint16_t virtualKey);

/// The code of the key in this place; none for keys without one. Print Screen, Scroll Lock and
/// Pause answer with F13, F14 and F15, whose places they hold.
std::optional<std::uint16_t> virtualKeyForKeycode(std::uint16_t keycode);

} // namespace orlune
