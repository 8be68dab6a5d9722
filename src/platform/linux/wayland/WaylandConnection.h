// Our own connection to the Wayland compositor, separate from the toolkit's. Main thread, with Qt's
// loop running; events are handled there as they arrive. When the compositor ends, or ends the
// connection, it stays dead: later requests have no effect.
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

/// The interface of Hyprland's own shortcuts, which its portal reports.
inline constexpr auto hyprlandShortcuts = "hyprland_global_shortcuts_manager_v1";

class WaylandConnection {
  public:
    /// Null when no compositor answers within two seconds. An empty name means the WAYLAND_DISPLAY
    /// of the environment.
    static std::unique_ptr<WaylandConnection> open(const std::string& displayName = {});
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    /// Whether the compositor has this global, in this version or a later one.
    bool offers(const std::string& interface, std::uint32_t version = 1) const;
    /// The global, bound in `version`; null when it is not offered in this version. The caller owns
    /// the proxy and must destroy it before the connection.
    void* bind(const wl_interface& interface, std::uint32_t version);
    /// The first seat; null when there is none.
    wl_seat* seat();

    /// Sends the queued requests. Never waits.
    void flush();
    /// Sends the queued requests, and waits until the compositor has processed them, at most two
    /// seconds. False when it has not.
    bool roundTrip();
    bool isAlive() const { return isAlive_; }
    /// `observer` is called once, when the connection is found dead, but not from within the
    /// destructor. Any number may be added; they exist as long as the connection.
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
    std::unique_ptr<QSocketNotifier> writable_; ///< enabled while requests are left to send
};

} // namespace orlune
