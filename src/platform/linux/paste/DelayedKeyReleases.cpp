#include "platform/linux/paste/DelayedKeyReleases.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <algorithm>
#include <utility>

namespace orlune {

std::unique_ptr<DelayedKeyReleases> DelayedKeyReleases::open(const std::string& displayName,
                                                             std::function<void()> onAllReleased) {
    auto events = XEventSource::open(displayName);
    return std::unique_ptr<DelayedKeyReleases>(
        events ? new DelayedKeyReleases(std::move(events), std::move(onAllReleased)) : nullptr);
}

DelayedKeyReleases::DelayedKeyReleases(std::unique_ptr<XEventSource> events,
                                       std::function<void()> onAllReleased)
    : events_(std::move(events)), onAllReleased_(std::move(onAllReleased)) {
    Display* display = events_->display();
    markerWindow_ = XCreateWindow(display, DefaultRootWindow(display), -1, -1, 1, 1, 0, 0,
                                  InputOnly, CopyFromParent, 0, nullptr);
    connection().roundTrip();
    events_->start(
        [this](const XEvent& event) {
            if (event.type == ClientMessage && event.xclient.window == markerWindow_) {
                awaitMarkers(awaitedMarkers_ - 1);
            }
        },
        [this] { awaitMarkers(0); });
}

DelayedKeyReleases::~DelayedKeyReleases() = default;

void DelayedKeyReleases::outliveProcess() {
    keeper_.keep(ConnectionNumber(events_->display()));
}

void DelayedKeyReleases::schedule(const std::vector<Keycode>& keys) {
    Display* display = events_->display();
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
    events_->readPending();
    return underWay_;
}

void DelayedKeyReleases::awaitMarkers(int count) {
    const bool wasUnderWay = awaitedMarkers_ > 0;
    awaitedMarkers_ = std::max(count, 0);
    if (awaitedMarkers_ == 0) {
        underWay_.clear();
        if (wasUnderWay && onAllReleased_) {
            onAllReleased_();
        }
    }
}

} // namespace orlune
