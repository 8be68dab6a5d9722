// What the desktop does with windows beyond showing them: transparency, blur behind them, the
// stacking order that others change, and the way to its top. Main thread.
#pragma once

#include "platform/Screens.h"
#include "platform/concurrency/Published.h"

#include <cstdint>
#include <vector>

namespace orlune {

class WindowServer {
  public:
    /// The desktop's own name of a window.
    using WindowID = std::uintptr_t;

    virtual ~WindowServer() = default;

    /// Whether windows may be translucent now. It changes while the program runs, as compositing is
    /// switched on and off.
    virtual const Published<bool>& isCompositing() const = 0;
    /// Announced each time another window has become the active one, which may now lie above ours.
    virtual Signal<void()>& activeWindowDidChange() = 0;
    /// Asks for what lies behind `region` of the window to be blurred; an empty region ends it. In
    /// logical pixels from the window's upper left corner; `scale` is how many of the device's make
    /// one. Does nothing where the desktop does not offer it.
    virtual void setBlurBehind(WindowID window, const std::vector<Rect>& region, double scale) = 0;
    /// Brings a window that is shown to the front and gives it the keyboard, whatever other
    /// programs have just done. Only when the user has asked for it: desktops that keep programs
    /// from pushing themselves forward let this through.
    virtual void activate(WindowID window) = 0;
};

} // namespace orlune
