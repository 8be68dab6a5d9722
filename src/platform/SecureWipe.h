#pragma once

#include <cstring>
#include <string>

namespace orlune {

/// Overwrites a secret in memory before its place is given back, in a way that the compiler does
/// not leave out. The text is empty afterwards.
inline void wipe(std::string& text) {
    text.resize(text.capacity());
    ::explicit_bzero(text.data(), text.size());
    text.clear();
}

} // namespace orlune
