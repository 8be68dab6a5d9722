// Whose window has the keyboard on an X display. Windows that vanish while they are looked at are
// ordinary; the answer is then an empty class.
#pragma once

#include <string>

struct _XDisplay;

namespace orlune {

/// The two names of the property WM_CLASS.
struct WindowClass {
    std::string instanceName;
    std::string className;
};

/// Of the window the window manager calls active, else of the application window round the input
/// focus. Empty when nothing has the keyboard. `display` belongs to an `XConnection`.
WindowClass classOfFocusedWindow(_XDisplay* display);

} // namespace orlune
