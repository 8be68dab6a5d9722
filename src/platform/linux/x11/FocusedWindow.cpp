#include "platform/linux/x11/FocusedWindow.h"

#include "platform/linux/x11/WindowProperty.h"
#include "platform/linux/x11/XHandles.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <optional>

namespace orlune {

namespace {

std::optional<WindowClass> classOf(Display* display, Window window) {
    XClassHint hint{};
    if (!XGetClassHint(display, window, &hint)) {
        return std::nullopt;
    }
    const XOwned<char> instanceName(hint.res_name);
    const XOwned<char> className(hint.res_class);
    return WindowClass{.instanceName = instanceName ? instanceName.get() : "",
                       .className = className ? className.get() : ""};
}

std::optional<Window> parentOf(Display* display, Window window) {
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned int count = 0;
    const auto found = XQueryTree(display, window, &root, &parent, &children, &count);
    const XOwned<Window> owned(children);
    if (!found || parent == None || parent == root) {
        return std::nullopt;
    }
    return parent;
}

std::optional<Window> focus(Display* display) {
    Window window = None;
    int revertTo = 0;
    XGetInputFocus(display, &window, &revertTo);
    if (window == PointerRoot) {
        // The focus follows the pointer.
        Window root = None;
        int ignored = 0;
        unsigned int mask = 0;
        XQueryPointer(display, DefaultRootWindow(display), &root, &window, &ignored, &ignored,
                      &ignored, &ignored, &mask);
    }
    return window == None ? std::nullopt : std::optional(window);
}

} // namespace

WindowClass classOfFocusedWindow(Display* display) {
    const auto active =
        propertyItem(display, DefaultRootWindow(display), "_NET_ACTIVE_WINDOW", XA_WINDOW);
    if (active && *active != None) {
        if (auto found = classOf(display, *active)) {
            return *found;
        }
    }
    // The focus may be on a child without a class. Without a window manager no window has WM_STATE,
    // and the outermost window with a class counts.
    WindowClass outermost;
    for (auto window = focus(display); window; window = parentOf(display, *window)) {
        auto found = classOf(display, *window);
        if (found) {
            outermost = *found;
        }
        if (propertyItem(display, *window, "WM_STATE", AnyPropertyType)) {
            return found.value_or(WindowClass{});
        }
    }
    return outermost;
}

} // namespace orlune
