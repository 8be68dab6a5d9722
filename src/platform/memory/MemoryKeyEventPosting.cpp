#include "platform/memory/MemoryKeyEventPosting.h"

#include <string>

namespace orlune {

std::optional<EventSource> MemoryKeyEventPosting::createSource(EventSourceState state) {
    if (refusesSource) {
        return std::nullopt;
    }
    return EventSource{.state = state};
}

std::optional<KeyboardEvent> MemoryKeyEventPosting::createKeyboardEvent(const EventSource&,
                                                                        std::uint16_t virtualKey,
                                                                        bool isKeyDown) {
    if (isKeyDown ? refusesKeyDown : refusesKeyUp) {
        return std::nullopt;
    }
    return KeyboardEvent{
        .virtualKey = virtualKey, .isKeyDown = isKeyDown, .flags = ModifierFlags::none};
}

bool MemoryKeyEventPosting::post(EventTapLocation location, const KeyboardEvent& event) {
    if (refusesPosting) {
        return false;
    }
    posted_.push_back({.location = location, .event = event});
    log_->push_back((event.isKeyDown ? "down " : "up ") + std::to_string(event.virtualKey));
    return true;
}

} // namespace orlune
