#include "tests/desktop/OverlayWindow.h"

#include "platform/Platform.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace orlune::desktop {

namespace {

using DisplayHandle = std::unique_ptr<Display, decltype(&XCloseDisplay)>;

DisplayHandle openDisplay() {
    DisplayHandle display(XOpenDisplay(nullptr), &XCloseDisplay);
    if (!display) {
        throw std::runtime_error("no X display");
    }
    return display;
}

/// The children of the root window, lowest first.
std::vector<Window> topLevelWindows(Display* display) {
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned int count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
    const std::vector<Window> windows(children, children + count);
    XFree(children);
    return windows;
}

bool isOrlunes(Display* display, Window window) {
    XClassHint hint{};
    if (!XGetClassHint(display, window, &hint)) {
        return false;
    }
    const bool isOurs = std::string_view(hint.res_class) == bundleIdentifier;
    XFree(hint.res_name);
    XFree(hint.res_class);
    return isOurs;
}

/// Windows may vanish during the queries.
int ignoreError(Display* /*display*/, XErrorEvent* /*error*/) {
    return 0;
}

} // namespace

std::optional<OverlayWindow> overlayWindow() {
    const auto display = openDisplay();
    auto* const previous = XSetErrorHandler(ignoreError);
    std::optional<OverlayWindow> found;
    for (const Window window : topLevelWindows(display.get())) {
        XWindowAttributes attributes{};
        if (!XGetWindowAttributes(display.get(), window, &attributes)
            || attributes.map_state != IsViewable || attributes.c_class != InputOutput) {
            continue;
        }
        if (found) {
            found->isOnTop = false;
        }
        if (attributes.override_redirect && isOrlunes(display.get(), window)) {
            found = {.geometry = {attributes.x, attributes.y, attributes.width, attributes.height},
                     .isOnTop = true};
        }
    }
    XSync(display.get(), False);
    XSetErrorHandler(previous);
    return found;
}

void movePointer(QPoint place) {
    const auto display = openDisplay();
    XTestFakeMotionEvent(display.get(), -1, place.x(), place.y(), CurrentTime);
    XSync(display.get(), False);
}

void click() {
    const auto display = openDisplay();
    XTestFakeButtonEvent(display.get(), 1, True, CurrentTime);
    XTestFakeButtonEvent(display.get(), 1, False, CurrentTime);
    XSync(display.get(), False);
}

ClickRecorder::ClickRecorder(const QRect& place) : display_(openDisplay().release()) {
    // Bypasses the window manager: the window must be exactly there, below the panel.
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    attributes.event_mask = ButtonPressMask;
    const Window window = XCreateWindow(
        display_, DefaultRootWindow(display_), place.x(), place.y(),
        static_cast<unsigned int>(place.width()), static_cast<unsigned int>(place.height()), 0,
        CopyFromParent, InputOutput, nullptr, CWOverrideRedirect | CWEventMask, &attributes);
    XMapWindow(display_, window);
    XLowerWindow(display_, window);
    XSync(display_, False);
}

ClickRecorder::~ClickRecorder() {
    XCloseDisplay(display_);
}

int ClickRecorder::clicks() {
    XSync(display_, False);
    while (XPending(display_) > 0) {
        XEvent event{};
        XNextEvent(display_, &event);
        clicks_ += event.type == ButtonPress ? 1 : 0;
    }
    return clicks_;
}

} // namespace orlune::desktop
