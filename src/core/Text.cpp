#include "core/Text.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace orlune {
namespace {

constexpr std::size_t longestCharacter = 4; // bytes

const std::uint8_t* bytesOf(std::string_view text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

std::size_t whitespaceAtStart(std::string_view text) {
    std::size_t length = 0;
    UChar32 character = U_SENTINEL; // as for bytes that are not valid UTF-8
    if (!text.empty()) {
        // ICU's macro, not ours: NOLINTNEXTLINE(bugprone-inc-dec-in-conditions)
        U8_NEXT(bytesOf(text), length, text.size(), character);
    }
    return isWhitespaceOrNewline(static_cast<char32_t>(character)) ? length : 0;
}

std::size_t whitespaceAtEnd(std::string_view text) {
    // ICU's index is too narrow for a text of any length.
    const auto tail = text.substr(text.size() - std::min(text.size(), longestCharacter));
    auto start = static_cast<std::int32_t>(tail.size());
    UChar32 character = U_SENTINEL;
    if (!tail.empty()) {
        // ICU's macro, not ours: NOLINTNEXTLINE(bugprone-inc-dec-in-conditions)
        U8_PREV(bytesOf(tail), 0, start, character);
    }
    return isWhitespaceOrNewline(static_cast<char32_t>(character))
               ? tail.size() - static_cast<std::size_t>(start)
               : 0;
}

} // namespace

bool isWhitespaceOrNewline(char32_t character) {
    constexpr char32_t nextLine = 0x85;
    return (character >= U'\t' && character <= U'\r') || character == nextLine
           || (U_GET_GC_MASK(static_cast<UChar32>(character)) & U_GC_Z_MASK) != 0;
}

std::string_view trimmedWhitespaceAndNewlines(std::string_view text) {
    while (const std::size_t length = whitespaceAtStart(text)) {
        text.remove_prefix(length);
    }
    while (const std::size_t length = whitespaceAtEnd(text)) {
        text.remove_suffix(length);
    }
    return text;
}

} // namespace orlune
