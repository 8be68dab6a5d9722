// The symbols of an American keyboard, by the positions of its keys. Desktops that bind symbols
// look for the key with that symbol on the user's layout, where a letter may be in another
// position. A pure function, usable on any thread.
#pragma once

#include <cstdint>
#include <string>

namespace orlune {

/// The symbol's name, such as "space" or "F9"; empty when there is no such key. `keycode` is X's.
std::string symbolInPlace(std::uint32_t keycode);

} // namespace orlune
