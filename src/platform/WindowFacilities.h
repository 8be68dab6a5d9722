// What the desktop offers for windows in addition to showing them: transparency, blur behind them,
// changes of the stacking order, and bringing them to the front. Main thread.
#pragma once

#include "platform/Screens.h"
#include "platform/concurrency/Published.h"

#include <cstdint>
#include <vector>

namespace orlune {

class WindowFacilities {
  public:
    /// The desktop's identifier of a window.
    using WindowID = std::uintptr_t;

    virtual ~WindowFacilities() = default;

    /// Whether windows may be translucent now. Changes while the program runs, when compositing is
    /// switched on or off.
    virtual const Published<bool>& isCompositing() const = 0;
    /// Announced each time another window becomes active, which may then lie above ours.
    virtual Signal<void()>& activeWindowDidChange() = 0;
    /// Asks the desktop to blur what lies behind `region` of the window; an empty region ends the
    /// blur. In logical pixels from the window's upper left corner; `scale` is the number of device
    /// pixels per logical pixel. Does nothing where the desktop does not support it.
    virtual void setBlurBehind(WindowID window, const std::vector<Rect>& region, double scale) = 0;
    /// Brings a visible window to the front and gives it the keyboard. To be called only when the
    /// user has asked for it: the request is also granted by desktops that prevent programs from
    /// taking the focus.
    virtual void activate(WindowID window) = 0;
};

} // namespace orlune
