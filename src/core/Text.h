// Small operations on UTF-8 text. Pure functions, usable on any thread; they never fail.
#pragma once

#include <string_view>

namespace orlune {

/// Space separators (category Zs), tab, and the newline characters U+000A to U+000D, U+0085, U+2028
/// and U+2029.
bool isWhitespaceOrNewline(char32_t character);

/// The text without leading and trailing whitespace and newlines: a view into `text`, nothing is
/// copied. Bytes that are not valid UTF-8 are not whitespace.
std::string_view trimmedWhitespaceAndNewlines(std::string_view text);

} // namespace orlune
