// X's names of keys, such as "Control_R", for a person. Pure functions, from any thread.
#pragma once

#include <string>
#include <string_view>

namespace orlune {

/// Whether this is Fn itself. Most keyboards keep it to themselves; a few report it.
bool isFunctionKey(std::string_view name);

/// As one would call the key: "Right Control". A name without words of its own stays as it is.
std::string keyInWords(std::string_view name);

} // namespace orlune
