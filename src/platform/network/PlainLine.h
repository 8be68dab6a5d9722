// What a peer says about a failure, made fit to be shown to a person. A pure function, from any
// thread.
#pragma once

#include <string>
#include <string_view>

namespace orlune {

/// The beginning of `text`, at most 200 bytes, as one line of UTF-8: each control character becomes
/// a space, so that a terminal obeys none, and each byte that is not UTF-8 a replacement character.
std::string plainLine(std::string_view text);

} // namespace orlune
