// The virtual key codes that the program itself watches or presses. They are the Mac's, by the
// key's position on an ANSI keyboard.
#pragma once

#include <cstdint>

namespace orlune::virtual_key {

inline constexpr std::uint16_t v = 9;
inline constexpr std::uint16_t escape = 53;
inline constexpr std::uint16_t capsLock = 57;
inline constexpr std::uint16_t function = 63;
inline constexpr std::uint16_t insert = 114; ///< the Help key of a Mac's keyboard

} // namespace orlune::virtual_key
