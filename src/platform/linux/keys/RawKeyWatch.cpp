#include "platform/linux/keys/RawKeyWatch.h"

#include "platform/linux/x11/KeyAccess.h"
#include "platform/linux/x11/XEventSource.h"
#include "platform/linux/x11/XHandles.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <array>
#include <utility>

namespace orlune {

namespace {

struct DeviceInfoDeleter {
    void operator()(XIDeviceInfo* devices) const { XIFreeDeviceInfo(devices); }
};

/// The server marks its own synthetic devices, whatever they are called.
bool isSyntheticDevice(Display* display, int device) {
    const Atom mark = XInternAtom(display, "XTEST Device", /*only_if_exists=*/True);
    if (mark == None) {
        return false;
    }
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    const auto status = XIGetProperty(display, device, mark, 0, 1, /*delete_property=*/False,
                                      AnyPropertyType, &type, &format, &count, &rest, &data);
    const XOwned<unsigned char> owner(data);
    return status == Success && format == 8 && count == 1 && data[0] != 0;
}

} // namespace

std::unique_ptr<RawKeyWatch> RawKeyWatch::open(const std::string& displayName, Observer observer) {
    auto events = XEventSource::open(displayName);
    return std::unique_ptr<RawKeyWatch>(
        events ? new RawKeyWatch(std::move(events), std::move(observer)) : nullptr);
}

RawKeyWatch::RawKeyWatch(std::unique_ptr<XEventSource> events, Observer observer)
    : events_(std::move(events)), observer_(std::move(observer)),
      // Before anything else, or keys would not come during another client's grab.
      reason_(missingKeyAccess(events_->display())) {
    select();
    events_->start([this](XEvent& event) { read(event); });
}

RawKeyWatch::~RawKeyWatch() = default;

std::string RawKeyWatch::reasonForUnavailability() const {
    return events_->isAlive() ? reason_ : noDisplayReason;
}

void RawKeyWatch::select() {
    Display* display = events_->display();
    int ignored = 0;
    if (reason_.empty()
        && XQueryExtension(display, "XInputExtension", &inputOpcode_, &ignored, &ignored)) {
        // From the masters alone: each key of a device comes once more from its master. The
        // selection holds for keyboards that are plugged in later.
        std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> keys{};
        XISetMask(keys.data(), XI_RawKeyPress);
        XISetMask(keys.data(), XI_RawKeyRelease);
        std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> devices{};
        XISetMask(devices.data(), XI_HierarchyChanged);
        std::array masks{
            XIEventMask{XIAllMasterDevices, static_cast<int>(keys.size()), keys.data()},
            XIEventMask{XIAllDevices, static_cast<int>(devices.size()), devices.data()},
        };
        for (int screen = 0; screen < ScreenCount(display); ++screen) {
            XISelectEvents(display, RootWindow(display, screen), masks.data(),
                           static_cast<int>(masks.size()));
        }
        findSyntheticKeyboards();
    }
    if (XkbQueryExtension(display, &ignored, &xkbEvent_, &ignored, nullptr, nullptr)) {
        constexpr unsigned int changes = XkbMapNotifyMask | XkbNewKeyboardNotifyMask;
        XkbSelectEvents(display, XkbUseCoreKbd, changes, changes);
        XkbSelectEventDetails(display, XkbUseCoreKbd, XkbStateNotify, XkbGroupStateMask,
                              XkbGroupStateMask);
    }
    events_->connection().roundTrip();
}

void RawKeyWatch::findSyntheticKeyboards() {
    Display* display = events_->display();
    int count = 0;
    const std::unique_ptr<XIDeviceInfo, DeviceInfoDeleter> devices(
        XIQueryDevice(display, XIAllDevices, &count));
    syntheticKeyboards_.clear();
    for (int index = 0; devices && index < count; ++index) {
        const auto& device = devices.get()[index];
        if (device.use == XISlaveKeyboard && isSyntheticDevice(display, device.deviceid)) {
            syntheticKeyboards_.push_back(device.deviceid);
        }
    }
}

void RawKeyWatch::catchUp() {
    events_->catchUp();
}

void RawKeyWatch::read(XEvent& event) {
    if (event.type == GenericEvent && event.xcookie.extension == inputOpcode_) {
        readInput(event);
    } else if (event.type == xkbEvent_ && observer_.onLayoutChange) {
        observer_.onLayoutChange();
    }
}

void RawKeyWatch::readInput(XEvent& event) {
    Display* display = events_->display();
    if (!XGetEventData(display, &event.xcookie)) {
        return;
    }
    const int type = event.xcookie.evtype;
    std::optional<Key> key;
    if (type == XI_RawKeyPress || type == XI_RawKeyRelease) {
        const auto& raw = *static_cast<const XIRawEvent*>(event.xcookie.data);
        key = Key{.keycode = static_cast<Keycode>(raw.detail),
                  .isDown = type == XI_RawKeyPress,
                  .isSynthetic = std::ranges::find(syntheticKeyboards_, raw.sourceid)
                                 != syntheticKeyboards_.end()};
    }
    XFreeEventData(display, &event.xcookie);
    if (key && observer_.onKey) {
        observer_.onKey(*key);
    } else if (type == XI_HierarchyChanged) {
        findSyntheticKeyboards();
        if (observer_.onLayoutChange) {
            observer_.onLayoutChange();
        }
    }
}

std::optional<KeyboardLayout> RawKeyWatch::layout() {
    auto layout = events_->isAlive() ? KeyboardLayout::read(events_->display()) : std::nullopt;
    events_->readPending();
    return layout;
}

std::optional<std::bitset<256>> RawKeyWatch::keysDown() {
    std::array<char, 32> bits{};
    if (!events_->connection().roundTrip() || !XQueryKeymap(events_->display(), bits.data())) {
        return std::nullopt;
    }
    events_->readPending();
    std::bitset<256> keys;
    for (std::size_t key = 0; key < keys.size(); ++key) {
        keys.set(key, ((static_cast<unsigned char>(bits.at(key / 8)) >> (key % 8)) & 1U) != 0);
    }
    return keys;
}

} // namespace orlune
