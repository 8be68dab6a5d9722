// One ordered log of several memory facilities, in words that a test can compare.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace orlune {

/// Shared by the facilities whose relative order matters; a facility that is given none makes its
/// own.
using MemoryEvents = std::shared_ptr<std::vector<std::string>>;

inline MemoryEvents makeMemoryEvents() {
    return std::make_shared<std::vector<std::string>>();
}

} // namespace orlune
