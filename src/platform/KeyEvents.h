// Watches the keyboard: the keys that other programs receive, and those that our own windows
// receive. Key codes are virtual key codes (53 = Escape). Main actor; handlers are called there, in
// the order of the keys. Each monitor lives as long as its handle; a handle may outlive the
// facility. Where other programs' keys cannot be seen, global handlers are never called, and
// `reasonForUnavailability` says why.
#pragma once

#include "platform/KeyCombination.h"
#include "platform/ModifierFlags.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace orlune {

struct KeyEvent {
    enum class Type : std::uint8_t { keyDown = 10, keyUp = 11, flagsChanged = 12 };

    Type type;
    /// In `flagsChanged`, the modifier key that changed.
    std::uint16_t keyCode;
    /// The modifiers held after this event.
    ModifierFlags modifierFlags;
    /// True for a repeated `keyDown` of a key that stayed down.
    bool isARepeat = false;
    /// The toolkit's number for the same key; 0 when there is none.
    std::uint32_t nativeKeyCode = 0;

    bool operator==(const KeyEvent&) const = default;
};

/// The types of event that a monitor sees, as one bit each: bit n for the type with value n.
enum class KeyEventMask : std::uint64_t {
    keyDown = std::uint64_t{1} << 10,
    keyUp = std::uint64_t{1} << 11,
    flagsChanged = std::uint64_t{1} << 12,
};

constexpr KeyEventMask operator|(KeyEventMask left, KeyEventMask right) {
    return static_cast<KeyEventMask>(static_cast<std::uint64_t>(left)
                                     | static_cast<std::uint64_t>(right));
}

constexpr bool matches(KeyEventMask mask, KeyEvent::Type type) {
    return ((static_cast<std::uint64_t>(mask) >> static_cast<unsigned int>(type)) & 1U) != 0;
}

/// What a local monitor decides about an event of our own windows.
enum class KeyEventAnswer { passOn, swallow };

/// The handle of a monitor. Removing it, or dropping it, ends the delivery at once.
class KeyEventMonitor {
  public:
    /// No monitor.
    KeyEventMonitor() = default;
    explicit KeyEventMonitor(std::function<void()> remove) : remove_(std::move(remove)) {}
    ~KeyEventMonitor() { remove(); }
    KeyEventMonitor(KeyEventMonitor&& other) noexcept
        : remove_(std::exchange(other.remove_, nullptr)) {}
    KeyEventMonitor& operator=(KeyEventMonitor&& other) noexcept {
        if (this != &other) {
            remove();
            remove_ = std::exchange(other.remove_, nullptr);
        }
        return *this;
    }

    explicit operator bool() const { return remove_ != nullptr; }
    void remove() {
        if (const auto removal = std::exchange(remove_, nullptr)) {
            removal();
        }
    }

  private:
    std::function<void()> remove_;
};

class KeyEvents {
  public:
    using GlobalHandler = std::function<void(const KeyEvent&)>;
    using LocalHandler = std::function<KeyEventAnswer(const KeyEvent&)>;

    virtual ~KeyEvents() = default;

    /// Sees the keys that other programs receive, without being able to swallow them. Called while
    /// none of our own windows has the keyboard.
    [[nodiscard]] virtual KeyEventMonitor addGlobalMonitor(KeyEventMask mask,
                                                           GlobalHandler handler) = 0;
    /// Sees the keys that our own windows are about to receive. A swallowed event reaches neither
    /// the window nor the monitors that were added later.
    [[nodiscard]] virtual KeyEventMonitor addLocalMonitor(KeyEventMask mask,
                                                          LocalHandler handler) = 0;
    /// The keys that global monitors look for. Some desktops show a program only the keys that it
    /// asked for; where every key is seen, both calls have no effect.
    virtual void watch(const KeyCombination& shortcut) = 0;
    /// The same for Escape, which such a desktop keeps from other programs while it is wanted.
    virtual void watchEscape(bool isWanted) = 0;
    /// Whether global monitors also see the release of the watched keys.
    virtual bool reportsReleases() = 0;
    /// Why global monitors see no keys, as a text for the user; empty when they do.
    virtual std::string reasonForUnavailability() = 0;
    /// The key that counts as Fn, in words such as "Right Control". Empty when the key labelled Fn
    /// counts, and when no key counts as Fn.
    virtual std::string functionKeyStandIn() = 0;
};

} // namespace orlune
