// The form of every text from outside that the user sees: one line of UTF-8 without control
// characters.
#pragma once

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <string>

namespace orlune::fuzz {

inline bool isOneCleanLine(const std::string& text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto size = static_cast<std::int32_t>(text.size());
    for (std::int32_t at = 0; at < size;) {
        UChar32 character = 0;
        U8_NEXT(bytes, at, size, character); // NOLINT(bugprone-inc-dec-in-conditions)
        if (character < 0 || u_charType(character) == U_CONTROL_CHAR) {
            return false;
        }
    }
    return true;
}

} // namespace orlune::fuzz
