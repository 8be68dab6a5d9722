#include "core/Text.h"

#include <unicode/uchar.h>

#include <cstddef>

namespace orlune {
namespace {

// No whitespace lies beyond U+FFFF, so characters of four bytes do not matter here.
constexpr std::size_t longestWhitespace = 3;

// Whether the bytes are the UTF-8 form of one whitespace or newline character, and nothing else.
bool isWhitespaceOrNewlineInUtf8(std::string_view bytes) {
    const auto byte = [&](std::size_t index) {
        return static_cast<char32_t>(static_cast<unsigned char>(bytes[index]));
    };
    const auto isTrailing = [&](std::size_t index) { return (byte(index) & 0xC0) == 0x80; };
    const auto bits = [&](std::size_t index) { return byte(index) & 0x3F; };
    char32_t character = 0;
    switch (bytes.size()) {
    case 1:
        return byte(0) < 0x80 && isWhitespaceOrNewline(byte(0));
    case 2:
        character = (byte(0) & 0x1F) << 6 | bits(1);
        return byte(0) >> 5 == 0x06 && isTrailing(1) && character >= 0x80
               && isWhitespaceOrNewline(character);
    default:
        character = (byte(0) & 0x0F) << 12 | bits(1) << 6 | bits(2);
        return byte(0) >> 4 == 0x0E && isTrailing(1) && isTrailing(2) && character >= 0x800
               && isWhitespaceOrNewline(character);
    }
}

std::size_t whitespaceAtStart(std::string_view text) {
    for (std::size_t length = 1; length <= longestWhitespace && length <= text.size(); ++length) {
        if (isWhitespaceOrNewlineInUtf8(text.substr(0, length))) {
            return length;
        }
    }
    return 0;
}

std::size_t whitespaceAtEnd(std::string_view text) {
    for (std::size_t length = 1; length <= longestWhitespace && length <= text.size(); ++length) {
        if (isWhitespaceOrNewlineInUtf8(text.substr(text.size() - length))) {
            return length;
        }
    }
    return 0;
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
