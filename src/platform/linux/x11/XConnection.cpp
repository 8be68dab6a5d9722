#include "platform/linux/x11/XConnection.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace orlune {

namespace {

// Xlib has one handler per process for all connections. Ours handles our connections and passes
// everything else to the previous handler, usually the toolkit's.
std::mutex registryMutex;
std::vector<Display*> ownDisplays;
XErrorHandler formerErrorHandler = nullptr;
XIOErrorHandler formerEndHandler = nullptr;

bool isOwn(Display* display) {
    const std::lock_guard lock(registryMutex);
    return std::ranges::find(ownDisplays, display) != ownDisplays.end();
}

int onError(Display* display, XErrorEvent* error) {
    if (isOwn(display) || !formerErrorHandler) {
        return 0;
    }
    return formerErrorHandler(display, error);
}

int onEnd(Display* display) {
    if (isOwn(display) || !formerEndHandler) {
        return 0;
    }
    return formerEndHandler(display);
}

/// Repeated at each connection: the toolkit may have installed its own handlers since.
void installHandlers() {
    if (const auto former = XSetErrorHandler(onError); former != onError) {
        formerErrorHandler = former;
    }
    if (const auto former = XSetIOErrorHandler(onEnd); former != onEnd) {
        formerEndHandler = former;
    }
}

} // namespace

std::unique_ptr<XConnection> XConnection::open(const std::string& displayName) {
    Display* display = XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str());
    return std::unique_ptr<XConnection>(display ? new XConnection(display) : nullptr);
}

XConnection::XConnection(Display* display) : display_(display) {
    installHandlers();
    {
        const std::lock_guard lock(registryMutex);
        ownDisplays.push_back(display);
    }
    // Without this, Xlib ends the process when the server goes away.
    XSetIOErrorExitHandler(
        display,
        [](Display*, void* connection) { static_cast<XConnection*>(connection)->isAlive_ = false; },
        this);
}

XConnection::~XConnection() {
    XCloseDisplay(display_);
    const std::lock_guard lock(registryMutex);
    std::erase(ownDisplays, display_);
}

bool XConnection::roundTrip() {
    if (isAlive_) {
        XSync(display_, /*discard=*/False);
    }
    return isAlive_;
}

} // namespace orlune
