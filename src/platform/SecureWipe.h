// Removes secrets from memory. Any thread.
#pragma once

#include <cstring>
#include <string>

namespace orlune {

/// Overwrites a secret before its memory is freed, in a way that the compiler cannot optimise away.
/// The text is empty afterwards.
inline void wipe(std::string& text) {
    text.resize(text.capacity());
    ::explicit_bzero(text.data(), text.size());
    text.clear();
}

/// Overwrites freed memory that the main heap and the calling thread still hold, where libraries
/// may have left copies that cannot be reached any more. To be called on the main thread; takes
/// some milliseconds. Does nothing with a heap other than glibc's.
void wipeFreeMemory();

} // namespace orlune
