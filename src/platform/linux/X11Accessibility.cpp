#include "platform/linux/X11Accessibility.h"

#include "platform/linux/XConnection.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>

#include <utility>

namespace orlune {

namespace {

constexpr auto noDisplay =
    "Orlune cannot reach an X display, so it can neither see the shortcut nor paste. Start it "
    "inside a graphical session; in a Wayland session, Xwayland has to be installed.";

constexpr auto noSyntheticKeys =
    "This display does not let Orlune press keys in other programs: its XTEST extension is missing "
    "or closed to this program. Enable the extension in the X server; over SSH, connect with "
    "ssh -Y instead of ssh -X.";

constexpr auto noRawKeys =
    "This display does not let Orlune see the shortcut while another program has the keyboard: "
    "XInput 2.2 or later is needed. Update the X server, or enable its XInputExtension.";

/// From 2.2 on, raw key events also arrive while another program holds a grab.
constexpr int inputMajor = 2;
constexpr int inputMinor = 2;

bool hasRawKeys(Display* display) {
    int ignored = 0;
    if (!XQueryExtension(display, "XInputExtension", &ignored, &ignored, &ignored)) {
        return false;
    }
    int major = inputMajor;
    int minor = inputMinor;
    return XIQueryVersion(display, &major, &minor) == Success
           && std::pair(major, minor) >= std::pair(inputMajor, inputMinor);
}

std::string missing(Display* display) {
    int ignored = 0;
    if (!XTestQueryExtension(display, &ignored, &ignored, &ignored, &ignored)) {
        return noSyntheticKeys;
    }
    return hasRawKeys(display) ? "" : noRawKeys;
}

} // namespace

X11Accessibility::X11Accessibility(Prompt prompt, std::string displayName)
    : prompt_(std::move(prompt)), displayName_(std::move(displayName)) {}

X11Accessibility::~X11Accessibility() = default;

bool X11Accessibility::isProcessTrusted() {
    return reasonForDistrust().empty();
}

bool X11Accessibility::isProcessTrustedWithOptions(bool prompt) {
    const auto reason = reasonForDistrust();
    if (prompt && !reason.empty() && prompt_) {
        prompt_(reason);
    }
    return reason.empty();
}

std::string X11Accessibility::reasonForDistrust() {
    if (!connection_ || !connection_->roundTrip()) {
        connection_ = XConnection::open(displayName_);
        reasonOfConnection_ = connection_ ? missing(connection_->display()) : noDisplay;
    }
    return reasonOfConnection_;
}

} // namespace orlune
