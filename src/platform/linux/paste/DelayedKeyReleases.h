// Lets synthetic keys go a moment after they went down, timed by the X server on a connection of
// its own, so that nobody here waits. Main thread, with Qt's loop running; `onAllReleased` is
// called there. A connection that is lost counts as having let go.
#pragma once

#include "platform/linux/paste/ConnectionKeeper.h"
#include "platform/linux/x11/XEventSource.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orlune {

class DelayedKeyReleases {
  public:
    using Keycode = std::uint8_t;

    /// Some programs miss a key that comes up at once; the address bars of browsers do.
    static constexpr auto delay = std::chrono::milliseconds(30);

    /// None when no server answers.
    static std::unique_ptr<DelayedKeyReleases> open(const std::string& displayName,
                                                    std::function<void()> onAllReleased);
    ~DelayedKeyReleases();

    /// For the next second, the server carries out what has been scheduled even if this process is
    /// killed; otherwise it would forget that and leave the keys down. Takes about a millisecond,
    /// so call it before the keys go down.
    void outliveProcess();

    /// Releases the first key after the delay, the others right after it, in order. What is sent
    /// on `connection()` afterwards is carried out after that.
    void schedule(const std::vector<Keycode>& keys);

    /// The keys the server has not let go of yet.
    const std::vector<Keycode>& underWay();

    XConnection& connection() { return events_->connection(); }

  private:
    DelayedKeyReleases(std::unique_ptr<XEventSource> events, std::function<void()> onAllReleased);
    void awaitMarkers(int count);

    std::unique_ptr<XEventSource> events_;
    std::function<void()> onAllReleased_;
    /// Never shown: receives a message from ourselves once the server has come past the releases.
    unsigned long markerWindow_;
    int awaitedMarkers_ = 0;
    std::vector<Keycode> underWay_;
    ConnectionKeeper keeper_;
};

} // namespace orlune
