// Leaving nothing of a secret behind in memory. Any thread.
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

/// Overwrites what the main heap and the calling thread keep of memory that was given back, where
/// libraries leave copies that nobody can reach any more. To be called on the main thread, some
/// milliseconds long. Does nothing where the heap is not glibc's.
void wipeFreeMemory();

} // namespace orlune
