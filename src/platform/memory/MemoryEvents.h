// What happened to several memory facilities, in one order, as words a test can compare.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace orlune {

/// Shared by the facilities whose order matters to each other; one that is given none has its own.
using MemoryEvents = std::shared_ptr<std::vector<std::string>>;

inline MemoryEvents makeMemoryEvents() {
    return std::make_shared<std::vector<std::string>>();
}

} // namespace orlune
