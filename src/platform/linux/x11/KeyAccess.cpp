#include "platform/linux/x11/KeyAccess.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>

#include <utility>

namespace orlune {

const char* const noDisplayReason =
    "Orlune cannot reach an X display, so it can neither see the shortcut nor paste. Start it "
    "inside a graphical session; in a Wayland session, Xwayland has to be installed.";

namespace {

constexpr auto noSyntheticKeys =
    "This display does not let Orlune press keys in other programs: its XTEST extension is missing "
    "or closed to this program. Enable the extension in the X server; over SSH, connect with "
    "ssh -Y instead of ssh -X.";

constexpr auto noRawKeys =
    "This display does not let Orlune see the shortcut while another program has the keyboard: "
    "XInput 2.2 or later is needed. Update the X server, or enable its XInputExtension.";

/// From 2.2 on, raw key events also arrive while another client holds a grab.
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

} // namespace

std::string missingKeyObservation(Display* display) {
    return hasRawKeys(display) ? "" : noRawKeys;
}

std::string missingKeyPosting(Display* display) {
    int ignored = 0;
    return XTestQueryExtension(display, &ignored, &ignored, &ignored, &ignored) ? ""
                                                                                : noSyntheticKeys;
}

std::string missingKeyAccess(Display* display) {
    auto observation = missingKeyObservation(display);
    auto posting = missingKeyPosting(display);
    return posting.empty() ? observation : posting;
}

} // namespace orlune
