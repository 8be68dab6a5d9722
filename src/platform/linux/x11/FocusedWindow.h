// Finds the window that has the keyboard focus on an X display. A window that vanishes meanwhile is
// not an error; the answer is then an empty class.
#pragma once

#include <string>

struct _XDisplay;

namespace orlune {

/// The two names of the property WM_CLASS.
struct WindowClass {
    std::string instanceName;
    std::string className;
};

/// The class of the window that the window manager calls active, or else of the application window
/// around the input focus. Empty when no window has the focus. `display` belongs to an
/// `XConnection`.
WindowClass classOfFocusedWindow(_XDisplay* display);

} // namespace orlune
