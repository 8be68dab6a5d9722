#include "platform/memory/MemoryKeyEvents.h"

#include <cstdint>
#include <memory>

namespace orlune {

KeyEventMonitor MemoryKeyEvents::addGlobalMonitor(KeyEventMask mask, GlobalHandler handler) {
    return add(global_, "global", mask, [handler = std::move(handler)](const KeyEvent& event) {
        handler(event);
        return KeyEventAnswer::passOn;
    });
}

KeyEventMonitor MemoryKeyEvents::addLocalMonitor(KeyEventMask mask, LocalHandler handler) {
    return add(local_, "local", mask, std::move(handler));
}

KeyEventMonitor MemoryKeyEvents::add(KeyMonitorList& list, std::string_view kind, KeyEventMask mask,
                                     LocalHandler handler) {
    const auto name =
        "watch " + std::string(kind) + " " + std::to_string(static_cast<std::uint64_t>(mask));
    log_->push_back(name);
    auto monitor = std::make_shared<KeyEventMonitor>(list.add(mask, std::move(handler)));
    return KeyEventMonitor([monitor, name, log = log_] {
        monitor->remove();
        log->push_back("un" + name);
    });
}

void MemoryKeyEvents::sendElsewhere(const KeyEvent& event) const {
    if (reason.empty()) {
        global_.offer(event);
    }
}

} // namespace orlune
