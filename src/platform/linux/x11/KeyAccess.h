// Checks whether an X display lets us see and post keys in other programs. Main thread.
#pragma once

#include <string>

struct _XDisplay;

namespace orlune {

/// The reason when no display answers, for the user.
extern const char* const noDisplayReason;

/// Why keys cannot be seen while other programs have the keyboard; empty when they can. Announces
/// XInput 2.2 first, which this connection needs to see raw keys during another client's grab.
std::string missingKeyObservation(_XDisplay* display);
/// Why keys cannot be posted to other programs; empty when they can.
std::string missingKeyPosting(_XDisplay* display);

/// Why keys cannot be seen or posted on this display, for the user; empty when both work. XInput is
/// announced first.
std::string missingKeyAccess(_XDisplay* display);

} // namespace orlune
