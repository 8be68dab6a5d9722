#include "platform/linux/x11/X11Bell.h"

#include "platform/linux/x11/XConnection.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include <utility>

namespace orlune {

X11Bell::X11Bell(std::string displayName) : displayName_(std::move(displayName)) {}

X11Bell::~X11Bell() = default;

void X11Bell::beep() {
    if (!connection_ || !connection_->isAlive()) {
        connection_ = XConnection::open(displayName_);
    }
    if (connection_) {
        constexpr int usualVolume = 0; // percent above or below the user's setting
        XkbBell(connection_->display(), None, usualVolume, None);
        XFlush(connection_->display());
    }
}

} // namespace orlune
