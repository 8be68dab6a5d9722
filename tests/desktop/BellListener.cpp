#include "tests/desktop/BellListener.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include <stdexcept>

namespace orlune::desktop {

BellListener::BellListener() {
    display_ = XkbOpenDisplay(nullptr, &event_, nullptr, nullptr, nullptr, nullptr);
    if (!display_) {
        throw std::runtime_error("no X display");
    }
    XkbSelectEvents(display_, XkbUseCoreKbd, XkbBellNotifyMask, XkbBellNotifyMask);
    XSync(display_, False);
}

BellListener::~BellListener() {
    XCloseDisplay(display_);
}

int BellListener::count() {
    XSync(display_, False);
    while (XPending(display_) > 0) {
        XEvent event{};
        XNextEvent(display_, &event);
        // Other events arrive unrequested, such as a change of the layout.
        count_ += event.type == event_ ? 1 : 0;
    }
    return count_;
}

} // namespace orlune::desktop
