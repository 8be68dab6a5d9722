// What an X display must offer so that keys can be seen and posted in other programs. Main thread.
#pragma once

#include <string>

struct _XDisplay;

namespace orlune {

/// Why there is no access when no display answers, for a person.
extern const char* const noDisplayReason;

/// Why keys cannot be seen while other programs have the keyboard; empty when they can. Announces
/// XInput 2.2 first, which is what lets this connection see raw keys during another client's grab.
std::string missingKeyObservation(_XDisplay* display);
/// Why keys cannot be posted into other programs; empty when they can.
std::string missingKeyPosting(_XDisplay* display);

/// Why keys cannot be seen and posted on this display, for a person; empty when they can. Observing
/// is announced first.
std::string missingKeyAccess(_XDisplay* display);

} // namespace orlune
