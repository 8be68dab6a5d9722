#include "platform/linux/paste/DelayedKeyReleases.h"

#include <QSocketNotifier>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <utility>

namespace orlune {

std::unique_ptr<DelayedKeyReleases> DelayedKeyReleases::open(const std::string& displayName,
                                                             std::function<void()> onAllReleased) {
    auto connection = XConnection::open(displayName);
    if (!connection) {
        return nullptr;
    }
    return std::unique_ptr<DelayedKeyReleases>(
        new DelayedKeyReleases(std::move(connection), std::move(onAllReleased)));
}

DelayedKeyReleases::DelayedKeyReleases(std::unique_ptr<XConnection> connection,
                                       std::function<void()> onAllReleased)
    : connection_(std::move(connection)), onAllReleased_(std::move(onAllReleased)) {
    Display* display = connection_->display();
    markerWindow_ = XCreateWindow(display, DefaultRootWindow(display), -1, -1, 1, 1, 0, 0,
                                  InputOnly, CopyFromParent, 0, nullptr);
    connection_->roundTrip();
    notifier_ = std::make_unique<QSocketNotifier>(ConnectionNumber(display), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { readMarkers(); });
}

DelayedKeyReleases::~DelayedKeyReleases() = default;

void DelayedKeyReleases::schedule(const std::vector<Keycode>& keys) {
    Display* display = connection_->display();
    unsigned long wait = delay.count();
    for (const auto key : keys) {
        XTestFakeKeyEvent(display, key, /*is_press=*/False, wait);
        wait = 0;
    }
    XEvent marker{};
    marker.xclient.type = ClientMessage;
    marker.xclient.window = markerWindow_;
    marker.xclient.format = 32;
    XSendEvent(display, markerWindow_, /*propagate=*/False, NoEventMask, &marker);
    XFlush(display);
    ++awaitedMarkers_;
    underWay_.insert(underWay_.end(), keys.begin(), keys.end());
}

const std::vector<DelayedKeyReleases::Keycode>& DelayedKeyReleases::underWay() {
    readMarkers();
    return underWay_;
}

void DelayedKeyReleases::readMarkers() {
    Display* display = connection_->display();
    const bool wasUnderWay = awaitedMarkers_ > 0;
    while (connection_->isAlive() && XPending(display) > 0) {
        XEvent event{};
        XNextEvent(display, &event);
        if (event.type == ClientMessage && event.xclient.window == markerWindow_) {
            --awaitedMarkers_;
        }
    }
    if (!connection_->isAlive()) {
        notifier_->setEnabled(false);
        awaitedMarkers_ = 0;
    }
    if (awaitedMarkers_ <= 0) {
        awaitedMarkers_ = 0;
        underWay_.clear();
        if (wasUnderWay && onAllReleased_) {
            onAllReleased_();
        }
    }
}

} // namespace orlune
