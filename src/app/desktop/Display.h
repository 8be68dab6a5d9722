// Checks the X display that windows and keys need before the toolkit starts, which would end the
// program if it is missing. Main thread.
#pragma once

#include <optional>
#include <string>

namespace orlune {

/// Why the display cannot be used, to follow "a display, and "; none when it answers.
std::optional<std::string> displayProblem();

/// Makes the toolkit use X, in a Wayland session through Xwayland, unless the user has chosen
/// another platform. True when X is used.
bool chooseX();

} // namespace orlune
