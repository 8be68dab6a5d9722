// Reads a secret from standard input: without echo on a terminal, up to the first line break
// elsewhere.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orlune {

/// Prints `prompt` on standard error when standard input is a terminal. The terminal's echo is
/// restored in every case, including an interrupt. None at the end of input without any text, or
/// when the line is longer than any key (4096 bytes).
std::optional<std::string> readSecret(int fileDescriptor, std::string_view prompt);

} // namespace orlune
