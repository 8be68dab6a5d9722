#include "tests/desktop/OtherClient.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace orlune::desktop {

OtherClient::OtherClient() : display_(XOpenDisplay(nullptr)) {
    if (!display_) {
        throw std::runtime_error("no X display");
    }
}

OtherClient::~OtherClient() {
    plugKeyboardIn();
    XCloseDisplay(display_);
}

bool OtherClient::grabKeyboard() {
    return XGrabKeyboard(display_, DefaultRootWindow(display_), /*owner_events=*/False,
                         GrabModeAsync, GrabModeAsync, CurrentTime)
           == GrabSuccess;
}

void OtherClient::type(Keyboard::Keycode key, bool isDown) {
    XTestFakeKeyEvent(display_, key, isDown ? True : False, CurrentTime);
    XSync(display_, False);
}

void OtherClient::unplugKeyboard() {
    unplugged_ = findDevice(XISlaveKeyboard);
    XIAnyHierarchyChangeInfo change{};
    change.detach = {.type = XIDetachSlave, .deviceid = unplugged_};
    XIChangeHierarchy(display_, &change, 1);
    XSync(display_, False);
}

void OtherClient::plugKeyboardIn() {
    if (const int device = std::exchange(unplugged_, 0)) {
        XIAnyHierarchyChangeInfo change{};
        change.attach = {
            .type = XIAttachSlave, .deviceid = device, .new_master = findDevice(XIMasterKeyboard)};
        XIChangeHierarchy(display_, &change, 1);
        XSync(display_, False);
    }
}

int OtherClient::findDevice(int use) const {
    int count = 0;
    int found = 0;
    XIDeviceInfo* const devices = XIQueryDevice(display_, XIAllDevices, &count);
    for (int index = 0; index < count; ++index) {
        const std::string name = devices[index].name;
        if (devices[index].use == use && name.find("XTEST") == name.npos) {
            found = devices[index].deviceid;
        }
    }
    XIFreeDeviceInfo(devices);
    return found;
}

} // namespace orlune::desktop
