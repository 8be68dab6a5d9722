// The monitors of one kind, in the order they were added; implementations of `KeyEvents` keep their
// handlers here. Main actor. Handlers may add and remove monitors, including themselves.
#pragma once

#include "platform/KeyEvents.h"

#include <memory>
#include <vector>

namespace orlune {

class KeyMonitorList {
  public:
    using Handler = KeyEvents::LocalHandler;

    KeyEventMonitor add(KeyEventMask mask, Handler handler);
    /// Passes the event to one monitor after the other, until one swallows it.
    KeyEventAnswer offer(const KeyEvent& event) const;

  private:
    struct Monitor {
        KeyEventMask mask;
        Handler handler;
        bool isRemoved = false;
    };
    using Monitors = std::vector<std::shared_ptr<Monitor>>;

    std::shared_ptr<Monitors> monitors_ = std::make_shared<Monitors>();
};

} // namespace orlune
