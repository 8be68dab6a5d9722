// Synthetic key presses into whatever program has the keyboard. Key codes are virtual key codes
// (9 = V). Main actor; posting returns at once, in order, and never waits for the target.
#pragma once

#include "platform/ModifierFlags.h"

#include <cstdint>
#include <optional>

namespace orlune {

enum class EventSourceState { hidSystemState = 1 };
enum class EventTapLocation { hidEventTap = 0 };

/// Where posted events come from. Obtained from `KeyEventPosting::createSource`.
struct EventSource {
    EventSourceState state;
};

struct KeyboardEvent {
    std::uint16_t virtualKey;
    bool isKeyDown;
    /// Replaces whatever modifiers the user holds.
    ModifierFlags flags;
};

class KeyEventPosting {
  public:
    virtual ~KeyEventPosting() = default;

    /// A dictation begins, whose text will be pasted. Some desktops want a session opened for it,
    /// which they show to the user until `rest`.
    virtual void prepare() = 0;
    /// The dictation is over. Keys that were posted still arrive.
    virtual void rest() = 0;

    /// None when keys cannot be posted at all.
    virtual std::optional<EventSource> createSource(EventSourceState state) = 0;
    /// None when this key cannot be posted. The event carries no flags.
    virtual std::optional<KeyboardEvent>
    createKeyboardEvent(const EventSource& source, std::uint16_t virtualKey, bool isKeyDown) = 0;
    /// Command-V is the paste chord of the focused window, whatever that is there. False when no
    /// key was posted: the layout lacks the chord, or the window would paste somebody else's text.
    virtual bool post(EventTapLocation location, const KeyboardEvent& event) = 0;
};

} // namespace orlune
