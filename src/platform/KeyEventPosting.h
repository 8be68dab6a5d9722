// Posts synthetic key presses to the program that has the keyboard focus. Key codes are virtual key
// codes (9 = V). Main actor; posting returns at once, keeps the order, and never waits for the
// target.
#pragma once

#include "platform/ModifierFlags.h"

#include <cstdint>
#include <optional>

namespace orlune {

enum class EventSourceState { hidSystemState = 1 };
enum class EventTapLocation { hidEventTap = 0 };

/// The source of posted events. Obtained from `KeyEventPosting::createSource`.
struct EventSource {
    EventSourceState state;
};

struct KeyboardEvent {
    std::uint16_t virtualKey;
    bool isKeyDown;
    /// Replaces the modifiers that the user holds.
    ModifierFlags flags;
};

class KeyEventPosting {
  public:
    virtual ~KeyEventPosting() = default;

    /// To be called when a dictation begins, whose text will be pasted. Some desktops need a
    /// session for posting keys, which they show to the user until `rest`.
    virtual void prepare() = 0;
    /// To be called when the dictation is over. Keys that were posted before still arrive.
    virtual void rest() = 0;

    /// None when keys cannot be posted at all.
    virtual std::optional<EventSource> createSource(EventSourceState state) = 0;
    /// None when this key cannot be posted. The event carries no flags.
    virtual std::optional<KeyboardEvent>
    createKeyboardEvent(const EventSource& source, std::uint16_t virtualKey, bool isKeyDown) = 0;
    /// Command-V posts the paste keys of the focused window, whichever these are. False when no key
    /// was posted: the layout lacks these keys, or the window would paste another program's text.
    virtual bool post(EventTapLocation location, const KeyboardEvent& event) = 0;
};

} // namespace orlune
