// Cleans up what a peer says about a failure, so that it can be shown to the user. A pure function,
// usable on any thread.
#pragma once

#include <string>
#include <string_view>

namespace orlune {

/// The beginning of `text`, at most 200 bytes, as one line of UTF-8. Each control character becomes
/// a space, so that no terminal interprets it, and each byte that is not UTF-8 a replacement
/// character.
std::string plainLine(std::string_view text);

} // namespace orlune
