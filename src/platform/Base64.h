// Base64 with padding, on one line. Pure functions, usable on any thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {

std::string base64(std::span<const std::byte> bytes);
/// None for text that `base64` would not write: blanks, stray bits, missing padding.
std::optional<std::vector<std::byte>> bytesFromBase64(std::string_view text);

} // namespace orlune
