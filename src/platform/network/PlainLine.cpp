#include "platform/network/PlainLine.h"

#include <cstddef>

namespace orlune {

namespace {

/// No user reads more than about a line.
constexpr std::size_t lengthLimit = 200;
constexpr std::string_view replacement = "\uFFFD";

unsigned byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

/// The length of the character that `text` begins with; 0 when it begins with no valid one.
std::size_t characterLength(std::string_view text) {
    const unsigned lead = byteAt(text, 0);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    if (length > text.size()) {
        return 0;
    }
    for (std::size_t index = 1; index < length; ++index) {
        if ((byteAt(text, index) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    if (length < 3) {
        return length;
    }
    // Rejects overlong forms, surrogates, and values beyond the last character.
    const unsigned second = byteAt(text, 1);
    const bool isBeyond = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second >= 0xA0)
                          || (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second >= 0x90);
    return isBeyond ? 0 : length;
}

bool isControl(std::string_view character) {
    const unsigned lead = byteAt(character, 0);
    return lead < 0x20 || lead == 0x7F || (lead == 0xC2 && byteAt(character, 1) < 0xA0);
}

} // namespace

std::string plainLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const auto length = characterLength(text);
        const auto character = text.substr(0, length == 0 ? 1 : length);
        const auto shown = length == 0            ? replacement
                           : isControl(character) ? std::string_view(" ")
                                                  : character;
        if (line.size() + shown.size() > lengthLimit) {
            break;
        }
        line += shown;
        text.remove_prefix(character.size());
    }
    return line;
}

} // namespace orlune
