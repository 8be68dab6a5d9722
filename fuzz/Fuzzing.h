// What the fuzzers share.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace orlune::fuzz {

inline void expect(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// Takes the text up to the next NUL, or else everything, from the front of `rest`.
inline std::string_view takeField(std::string_view& rest) {
    const auto end = std::min(rest.find('\0'), rest.size());
    const auto field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

} // namespace orlune::fuzz
