// What a target program writes to standard output: a line for each change, `focus in`, `focus out`,
// or `text` and the whole text. Bytes outside printable ASCII, and the backslash, are \xNN.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <unistd.h>

namespace orlune::targets {

/// In one piece, so that lines of two processes do not mix.
inline void writeLine(int descriptor, std::string line) {
    line += '\n';
    [[maybe_unused]] const auto written = ::write(descriptor, line.data(), line.size());
}

inline void reportFocus(bool isIn, int descriptor = STDOUT_FILENO) {
    writeLine(descriptor, isIn ? "focus in" : "focus out");
}

inline void reportText(std::string_view text, int descriptor = STDOUT_FILENO) {
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string line = "text ";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= ' ' && byte < 0x7f && byte != '\\') {
            line += character;
        } else {
            line += "\\x";
            line += digits[byte >> 4U];
            line += digits[byte & 0xfU];
        }
    }
    writeLine(descriptor, std::move(line));
}

} // namespace orlune::targets
