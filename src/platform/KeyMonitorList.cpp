#include "platform/KeyMonitorList.h"

namespace orlune {

KeyEventMonitor KeyMonitorList::add(KeyEventMask mask, Handler handler) {
    auto monitor = std::make_shared<Monitor>(Monitor{.mask = mask, .handler = std::move(handler)});
    monitors_->push_back(monitor);
    return KeyEventMonitor([monitor, weakMonitors = std::weak_ptr(monitors_)] {
        monitor->isRemoved = true;
        if (const auto monitors = weakMonitors.lock()) {
            std::erase(*monitors, monitor);
        }
    });
}

KeyEventAnswer KeyMonitorList::offer(const KeyEvent& event) const {
    for (const auto& monitor : Monitors(*monitors_)) {
        if (!monitor->isRemoved && matches(monitor->mask, event.type)
            && monitor->handler(event) == KeyEventAnswer::swallow) {
            return KeyEventAnswer::swallow;
        }
    }
    return KeyEventAnswer::passOn;
}

} // namespace orlune
