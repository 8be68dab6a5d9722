// Owners of memory and handles from Xlib.
#pragma once

#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include <memory>

namespace orlune {

struct XDeleter {
    void operator()(void* memory) const { XFree(memory); }
    void operator()(XkbDescPtr keyboard) const {
        XkbFreeKeyboard(keyboard, /*which=*/0, /*freeDesc=*/True);
    }
};

template <typename Value>
using XOwned = std::unique_ptr<Value, XDeleter>;

} // namespace orlune
