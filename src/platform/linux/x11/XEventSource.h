// Reports the events of our own X connection as they arrive. Main thread, with Qt's loop running;
// handlers are called there and may call this object, but not destroy it.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <functional>
#include <memory>
#include <string>

class QSocketNotifier;
union _XEvent;

namespace orlune {

class XEventSource {
  public:
    using OnEvent = std::function<void(_XEvent& event)>;

    /// None when no server answers. An empty name means the DISPLAY of the environment. Events wait
    /// until `start`.
    static std::unique_ptr<XEventSource> open(const std::string& displayName);
    ~XEventSource();

    /// Reports each event from now on, including those that have already arrived. `onLoss` is
    /// called once, when the server is found to be gone.
    void start(OnEvent onEvent, std::function<void()> onLoss = {});
    /// Reports the events that have arrived. Must be called after every request that waited for its
    /// answer: events that came with the answer are already in memory, and the socket does not
    /// signal them.
    void readPending();
    /// Waits until the server has processed everything sent before, and reports the events.
    void catchUp();

    XConnection& connection() { return *connection_; }
    _XDisplay* display() const { return connection_->display(); }
    bool isAlive() const { return connection_->isAlive(); }

  private:
    explicit XEventSource(std::unique_ptr<XConnection> connection);

    std::unique_ptr<XConnection> connection_;
    OnEvent onEvent_;
    std::function<void()> onLoss_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace orlune
