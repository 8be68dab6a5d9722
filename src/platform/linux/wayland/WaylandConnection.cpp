#include "platform/linux/wayland/WaylandConnection.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <utility>
#include <wayland-client.h>

namespace orlune {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds answerLimit{2};
constexpr std::uint32_t seatVersion = 1;

/// Whether the descriptor is ready for `events` before `end`.
bool isReady(int descriptor, short events, steady_clock::time_point end) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now());
        pollfd entry{.fd = descriptor, .events = events, .revents = 0};
        const int count = poll(&entry, 1, static_cast<int>(std::max<long>(left.count(), 0)));
        if (count > 0) {
            return true;
        }
        if (count == 0 || errno != EINTR) {
            return false;
        }
    }
}

} // namespace

std::unique_ptr<WaylandConnection> WaylandConnection::open(const std::string& displayName) {
    wl_display* display = wl_display_connect(displayName.empty() ? nullptr : displayName.c_str());
    if (!display) {
        return nullptr;
    }
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
    return connection->roundTrip() ? std::move(connection) : nullptr;
}

WaylandConnection::WaylandConnection(wl_display* display)
    : display_(display), registry_(wl_display_get_registry(display)) {
    static constexpr wl_registry_listener listener{
        .global =
            [](void* data, wl_registry*, std::uint32_t name, const char* interface,
               std::uint32_t version) {
                static_cast<WaylandConnection*>(data)->globals_.try_emplace(
                    interface, Global{.name = name, .version = version});
            },
        .global_remove =
            [](void* data, wl_registry*, std::uint32_t name) {
                std::erase_if(static_cast<WaylandConnection*>(data)->globals_,
                              [name](const auto& entry) { return entry.second.name == name; });
            },
    };
    wl_registry_add_listener(registry_, &listener, this);
    const int descriptor = wl_display_get_fd(display_);
    readable_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    writable_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
    writable_->setEnabled(false);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, readable_.get(),
                     [this] { receive(); });
    QObject::connect(writable_.get(), &QSocketNotifier::activated, writable_.get(),
                     [this] { flush(); });
}

WaylandConnection::~WaylandConnection() {
    readable_.reset(); // must go before its descriptor
    writable_.reset();
    if (seat_) {
        wl_seat_destroy(seat_);
    }
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

bool WaylandConnection::offers(const std::string& interface, std::uint32_t version) const {
    const auto global = globals_.find(interface);
    return isAlive_ && global != globals_.end() && global->second.version >= version;
}

void* WaylandConnection::bind(const wl_interface& interface, std::uint32_t version) {
    if (!offers(interface.name, version)) {
        return nullptr;
    }
    return wl_registry_bind(registry_, globals_.at(interface.name).name, &interface, version);
}

wl_seat* WaylandConnection::seat() {
    if (!seat_) {
        seat_ = static_cast<wl_seat*>(bind(wl_seat_interface, seatVersion));
    }
    return seat_;
}

void WaylandConnection::onLoss(std::function<void()> observer) {
    lossObservers_.push_back(std::move(observer));
}

void WaylandConnection::flush() {
    if (!isAlive_) {
        return;
    }
    const bool isAllSent = wl_display_flush(display_) >= 0;
    writable_->setEnabled(!isAllSent && errno == EAGAIN);
    if (!isAllSent && errno != EAGAIN) {
        lose();
    }
}

/// Called when the socket is readable: reads the data and handles the events.
void WaylandConnection::receive() {
    while (wl_display_prepare_read(display_) != 0) {
        if (!dispatch()) {
            return;
        }
    }
    if (wl_display_read_events(display_) < 0 && errno != EAGAIN) {
        lose();
        return;
    }
    if (dispatch()) {
        flush();
    }
}

bool WaylandConnection::dispatch() {
    if (wl_display_dispatch_pending(display_) < 0) {
        lose();
    }
    return isAlive_;
}

bool WaylandConnection::roundTrip() {
    bool isDone = false;
    static constexpr wl_callback_listener listener{
        .done = [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
    wl_callback* const callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &listener, &isDone);
    const auto end = steady_clock::now() + answerLimit;
    flush();
    while (isAlive_ && !isDone && isReady(wl_display_get_fd(display_), POLLIN, end)) {
        receive();
    }
    wl_callback_destroy(callback);
    return isAlive_ && isDone;
}

void WaylandConnection::lose() {
    if (std::exchange(isAlive_, false)) {
        readable_->setEnabled(false);
        writable_->setEnabled(false);
        for (const auto& observer : lossObservers_) {
            observer();
        }
    }
}

} // namespace orlune
