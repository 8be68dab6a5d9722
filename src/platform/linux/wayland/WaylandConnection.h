// A connection of our own to the Wayland compositor, apart from the toolkit's. Main thread, with
// Qt's loop running; events are handled there as they arrive. A compositor that ends, or that ends
// the connection, leaves it dead: requests then go nowhere, and nothing else happens.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class QSocketNotifier;
struct wl_display;
struct wl_interface;
struct wl_registry;
struct wl_seat;

namespace orlune {

class WaylandConnection {
  public:
    /// None when no compositor answers within two seconds. An empty name means the WAYLAND_DISPLAY
    /// of the environment.
    static std::unique_ptr<WaylandConnection> open(const std::string& displayName = {});
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    /// Whether the compositor has this global, in this version or a later one.
    bool offers(const std::string& interface, std::uint32_t version = 1) const;
    /// The global, bound in `version`; null when it is not offered so. The proxy is the caller's,
    /// who destroys it before the connection ends.
    void* bind(const wl_interface& interface, std::uint32_t version);
    /// The first seat; null where nobody sits.
    wl_seat* seat();

    /// Sends what was requested. Never waits.
    void flush();
    /// Sends it, and waits until the compositor has carried it out, at most two seconds. False when
    /// it did not.
    bool roundTrip();
    bool isAlive() const { return isAlive_; }
    /// `observer` is called once, when the connection is found dead; not from within the
    /// destructor. Any number may be added; they live as long as the connection.
    void onLoss(std::function<void()> observer);

  private:
    struct Global {
        std::uint32_t name;
        std::uint32_t version;
    };

    explicit WaylandConnection(wl_display* display);
    void receive();
    bool dispatch();
    void lose();

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    wl_seat* seat_ = nullptr;
    std::map<std::string, Global> globals_; ///< the first of each interface
    bool isAlive_ = true;
    std::vector<std::function<void()>> lossObservers_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_; ///< wanted while requests are left over
};

} // namespace orlune
