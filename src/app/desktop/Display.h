// The X display that windows and keys need, looked at before the toolkit starts: it would end the
// program over one that is missing. Main thread.
#pragma once

#include <optional>
#include <string>

namespace orlune {

/// What keeps the display from being used, to go on after "a display, and "; none when it answers.
std::optional<std::string> displayProblem();

/// Lets the toolkit use X, in a Wayland session through Xwayland, unless the user has chosen
/// something else. True when X it is.
bool chooseX();

} // namespace orlune
