#include "platform/linux/windows/X11WindowFacilities.h"

#include "platform/linux/x11/QtConnection.h"
#include "platform/linux/x11/WindowProperty.h"
#include "platform/linux/x11/XEventSource.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xfixes.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <xcb/xcb.h>

namespace orlune {

namespace {

constexpr auto activeWindowName = "_NET_ACTIVE_WINDOW";
constexpr auto compositorName = "_NET_WM_CM_S"; // followed by the number of the screen
constexpr auto blurName = "_KDE_NET_WM_BLUR_BEHIND_REGION";

/// Origin and size of each rectangle. Rectangles without pixels are left out.
std::vector<std::uint32_t> devicePixels(const std::vector<Rect>& region, double scale) {
    std::vector<std::uint32_t> numbers;
    numbers.reserve(4 * region.size());
    const auto pixel = [scale](double edge) { return std::lround(std::max(edge, 0.0) * scale); };
    for (const auto& rect : region) {
        // The edges are rounded, not the sizes, so that neighbours neither overlap nor leave a gap.
        const auto x = pixel(rect.x);
        const auto y = pixel(rect.y);
        const auto right = pixel(rect.x + rect.width);
        const auto bottom = pixel(rect.y + rect.height);
        if (right > x && bottom > y) {
            for (const auto number : {x, y, right - x, bottom - y}) {
                numbers.push_back(static_cast<std::uint32_t>(number));
            }
        }
    }
    return numbers;
}

} // namespace

/// The connection, and the state that it follows.
class X11WindowFacilities::Watch : public ObservableObject {
  public:
    explicit Watch(const std::string& displayName);

    Published<bool> isCompositing{*this, false};
    Signal<void()> activeWindowDidChange;

  private:
    void read(const XEvent& event);
    bool hasCompositor() const;
    Window activeWindow() const;

    std::unique_ptr<XEventSource> events_;
    Window root_ = None;
    Atom compositor_ = None;
    Atom active_ = None;
    Window lastActive_ = None;
    int fixesEvent_ = -1;
};

X11WindowFacilities::Watch::Watch(const std::string& displayName)
    : events_(XEventSource::open(displayName)) {
    if (!events_) {
        return;
    }
    Display* display = events_->display();
    root_ = DefaultRootWindow(display);
    active_ = XInternAtom(display, activeWindowName, /*only_if_exists=*/False);
    compositor_ =
        XInternAtom(display, (compositorName + std::to_string(DefaultScreen(display))).c_str(),
                    /*only_if_exists=*/False);
    int firstError = 0;
    if (XFixesQueryExtension(display, &fixesEvent_, &firstError)) {
        XFixesSelectSelectionInput(display, root_, compositor_,
                                   XFixesSetSelectionOwnerNotifyMask
                                       | XFixesSelectionWindowDestroyNotifyMask
                                       | XFixesSelectionClientCloseNotifyMask);
    }
    XSelectInput(display, root_, PropertyChangeMask);
    // Checked after selecting the events, so that no change is missed in between.
    isCompositing.set(hasCompositor());
    lastActive_ = activeWindow();
    events_->start([this](const XEvent& event) { read(event); });
}

void X11WindowFacilities::Watch::read(const XEvent& event) {
    if (event.type == fixesEvent_ + XFixesSelectionNotify) {
        if (const bool isOn = hasCompositor(); isOn != isCompositing) {
            isCompositing.set(isOn);
        }
    } else if (event.type == PropertyNotify && event.xproperty.atom == active_) {
        const Window active = activeWindow();
        if (std::exchange(lastActive_, active) != active && active != None) {
            activeWindowDidChange();
        }
    }
}

bool X11WindowFacilities::Watch::hasCompositor() const {
    return XGetSelectionOwner(events_->display(), compositor_) != None;
}

Window X11WindowFacilities::Watch::activeWindow() const {
    return propertyItem(events_->display(), root_, activeWindowName, XA_WINDOW).value_or(None);
}

X11WindowFacilities::X11WindowFacilities(std::string displayName)
    : displayName_(std::move(displayName)) {}

X11WindowFacilities::~X11WindowFacilities() = default;

const Published<bool>& X11WindowFacilities::isCompositing() const {
    return watch().isCompositing;
}

Signal<void()>& X11WindowFacilities::activeWindowDidChange() {
    return watch().activeWindowDidChange;
}

void X11WindowFacilities::setBlurBehind(WindowID window, const std::vector<Rect>& region,
                                        double scale) {
    // On Qt's connection, because on ours the request could overtake the creation of the window.
    auto* connection = qtConnection();
    if (!connection) {
        return;
    }
    const auto property = atomNamed(connection, blurName, /*onlyIfExists=*/false);
    const auto id = static_cast<xcb_window_t>(window);
    const auto numbers = devicePixels(region, scale);
    if (numbers.empty()) {
        xcb_delete_property(connection, id, property);
    } else {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, property, XCB_ATOM_CARDINAL, 32,
                            static_cast<std::uint32_t>(numbers.size()), numbers.data());
    }
    xcb_flush(connection);
}

void X11WindowFacilities::activate(WindowID window) {
    // On Qt's connection, after its request to show the window.
    auto* connection = qtConnection();
    if (!connection) {
        return;
    }
    // As a pager's request. A program's own request would be compared with the user's last key
    // press in that program, and be refused when another program was used since.
    constexpr std::uint32_t fromUser = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window);
    message.type = atomNamed(connection, activeWindowName, /*onlyIfExists=*/false);
    message.data.data32[0] = fromUser;
    message.data.data32[1] = XCB_CURRENT_TIME;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, /*propagate=*/0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection);
}

X11WindowFacilities::Watch& X11WindowFacilities::watch() const {
    if (!watch_) {
        watch_ = std::make_unique<Watch>(displayName_);
    }
    return *watch_;
}

} // namespace orlune
