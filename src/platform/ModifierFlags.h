// The modifier keys held during a keyboard event, as bits of one word. Plain values, usable on any
// thread.
#pragma once

#include <cstdint>

namespace orlune {

/// The bit positions are those of the Mac's event flags, like the key codes everywhere above the
/// platform. A value may contain further bits (Caps Lock, numeric pad, one key of a left and right
/// pair); they are kept, but no code above the platform reads them.
enum class ModifierFlags : std::uint64_t {
    none = 0,
    shift = std::uint64_t{1} << 17,
    control = std::uint64_t{1} << 18,
    option = std::uint64_t{1} << 19,
    command = std::uint64_t{1} << 20,
    function = std::uint64_t{1} << 23,
};

constexpr ModifierFlags operator|(ModifierFlags left, ModifierFlags right) {
    return static_cast<ModifierFlags>(static_cast<std::uint64_t>(left)
                                      | static_cast<std::uint64_t>(right));
}

constexpr ModifierFlags operator&(ModifierFlags left, ModifierFlags right) {
    return static_cast<ModifierFlags>(static_cast<std::uint64_t>(left)
                                      & static_cast<std::uint64_t>(right));
}

constexpr ModifierFlags operator~(ModifierFlags flags) {
    return static_cast<ModifierFlags>(~static_cast<std::uint64_t>(flags));
}

constexpr ModifierFlags& operator|=(ModifierFlags& left, ModifierFlags right) {
    return left = left | right;
}

constexpr ModifierFlags& operator&=(ModifierFlags& left, ModifierFlags right) {
    return left = left & right;
}

/// Whether `flags` contains every bit of `wanted`.
constexpr bool contains(ModifierFlags flags, ModifierFlags wanted) {
    return (flags & wanted) == wanted;
}

} // namespace orlune
