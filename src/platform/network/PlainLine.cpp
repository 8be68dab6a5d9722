#include "platform/network/PlainLine.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>

namespace orlune {

namespace {

/// No user reads more than about a line.
constexpr std::size_t lengthLimit = 200;
constexpr std::string_view replacement = "\uFFFD";

} // namespace

std::string plainLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        UChar32 character = 0;
        std::size_t length = 0;
        // ICU's macro, not ours: NOLINTNEXTLINE(bugprone-inc-dec-in-conditions)
        U8_NEXT(reinterpret_cast<const std::uint8_t*>(text.data()), length, text.size(), character);
        if (character < 0) {
            length = 1; // ICU may have skipped more
        }
        const auto shown = character < 0                    ? replacement
                           : u_isISOControl(character) != 0 ? std::string_view(" ")
                                                            : text.substr(0, length);
        if (line.size() + shown.size() > lengthLimit) {
            break;
        }
        line += shown;
        text.remove_prefix(length);
    }
    return line;
}

} // namespace orlune
