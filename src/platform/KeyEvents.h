// Watching the keyboard: the keys other programs receive, and those our own windows receive. Key
// codes are virtual key codes (53 = Escape). Main actor; handlers are called there, in the order of
// the keys. Each monitor lives as long as its handle; a handle may outlive the facility. Where
// other programs' keys cannot be seen, global handlers are never called, and the reason can be
// asked for.
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
    /// Of a modifier key in `flagsChanged`.
    std::uint16_t keyCode;
    /// What is held once this event has happened.
    ModifierFlags modifierFlags;
    /// A further `keyDown` of a key that stayed down.
    bool isARepeat = false;
    /// The number by which the toolkit's own event names the same key; 0 when there is none.
    std::uint32_t nativeKeyCode = 0;

    bool operator==(const KeyEvent&) const = default;
};

/// Which types of event a monitor sees: one bit for each, at the place its number names.
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

/// What a local monitor does with an event of our own windows.
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

    /// Sees what other programs receive, and cannot keep it from them. Called while none of our own
    /// windows has the keyboard.
    [[nodiscard]] virtual KeyEventMonitor addGlobalMonitor(KeyEventMask mask,
                                                           GlobalHandler handler) = 0;
    /// Sees what our own windows are about to receive. A swallowed event reaches neither the window
    /// nor the monitors that were added later.
    [[nodiscard]] virtual KeyEventMonitor addLocalMonitor(KeyEventMask mask,
                                                          LocalHandler handler) = 0;
    /// The keys that global monitors look for. Some desktops show a program only the keys that it
    /// asks for; where every key is seen anyway, both calls change nothing.
    virtual void watch(const KeyCombination& shortcut) = 0;
    /// The same for Escape, which such a desktop keeps from other programs meanwhile.
    virtual void watchEscape(bool isWanted) = 0;
    /// Whether global monitors also see the watched keys come up.
    virtual bool reportsReleases() = 0;
    /// Why global monitors see nothing here, for a person; empty when they do.
    virtual std::string reasonForUnavailability() = 0;
    /// The key that counts as Fn, in words such as "Right Control". Empty when that is the key with
    /// Fn on it, and when no key counts as Fn.
    virtual std::string functionKeyStandIn() = 0;
};

} // namespace orlune
