#include "platform/linux/x11/DisplayFacts.h"

#include "platform/linux/x11/KeyAccess.h"
#include "platform/linux/x11/KeyboardLayout.h"
#include "platform/linux/x11/XConnection.h"

#include <X11/Xlib.h>

#include <memory>

namespace orlune {

namespace {

struct XRelease {
    void operator()(unsigned char* memory) const { XFree(memory); }
};

bool hasOwner(Display* display, const std::string& selection) {
    return XGetSelectionOwner(display, XInternAtom(display, selection.c_str(), False)) != None;
}

/// The whole property, as bytes; items of 32 bits arrive as longs, which is Xlib's format.
std::string property(Display* display, Window window, const char* name, const char* type) {
    constexpr long longest = 1024;
    Atom foundType = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* bytes = nullptr;
    const int status = XGetWindowProperty(display, window, XInternAtom(display, name, False), 0,
                                          longest, False, XInternAtom(display, type, False),
                                          &foundType, &format, &count, &left, &bytes);
    const std::unique_ptr<unsigned char, XRelease> owner(bytes);
    if (status != Success || !bytes || foundType == None) {
        return {};
    }
    const auto size = format == 32 ? sizeof(long) : static_cast<std::size_t>(format / 8);
    return {reinterpret_cast<const char*>(bytes), count * size};
}

std::string windowManagerOf(Display* display) {
    const auto check =
        property(display, DefaultRootWindow(display), "_NET_SUPPORTING_WM_CHECK", "WINDOW");
    if (check.size() < sizeof(Window)) {
        return {};
    }
    Window window = None;
    check.copy(reinterpret_cast<char*>(&window), sizeof window);
    return property(display, window, "_NET_WM_NAME", "UTF8_STRING");
}

bool hasKey(Display* display, const std::string& name) {
    const auto symbol = XStringToKeysym(name.c_str());
    const auto layout = KeyboardLayout::read(display);
    return symbol != NoSymbol && layout && layout->keycodeOf(symbol);
}

} // namespace

std::optional<DisplayFacts> DisplayFacts::read(const std::string& displayName,
                                               const std::string& functionKeyName) {
    const auto connection = XConnection::open(displayName);
    if (!connection) {
        return std::nullopt;
    }
    Display* display = connection->display();
    const auto screen = std::to_string(DefaultScreen(display));
    int ignored = 0;
    DisplayFacts facts;
    facts.whyKeysAreNotSeen = missingKeyObservation(display);
    facts.whyKeysAreNotPosted = missingKeyPosting(display);
    facts.isXwayland = XQueryExtension(display, "XWAYLAND", &ignored, &ignored, &ignored) == True;
    facts.windowManager = windowManagerOf(display);
    facts.isCompositing = hasOwner(display, "_NET_WM_CM_S" + screen);
    facts.hasClipboardManager = hasOwner(display, "CLIPBOARD_MANAGER");
    facts.hasTray = hasOwner(display, "_NET_SYSTEM_TRAY_S" + screen);
    facts.hasFunctionKey = hasKey(display, functionKeyName);
    return connection->roundTrip() ? std::optional(facts) : std::nullopt;
}

} // namespace orlune
