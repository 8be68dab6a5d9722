// The keyboard of the user of a Wayland session, by the kernel's key codes
// (linux/input-event-codes.h). Only for tests and their tools: it uses interfaces that no program
// should use. Keep one open for the whole session, because some compositors take the seat's
// keyboard away when it closes, and lose keys when it comes back. Main thread.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace orlune::desktop {

class UserKeyboard {
  public:
    using Key = std::uint16_t;

    /// Uses what this compositor offers; throws std::runtime_error when it offers nothing.
    static std::unique_ptr<UserKeyboard> open();
    /// Every key must have been released.
    virtual ~UserKeyboard() = default;

    /// The key has been sent when it returns. Throws std::runtime_error when the compositor
    /// refuses.
    void press(Key key);
    void release(Key key);
    /// Presses them in this order, and releases them in the reverse order.
    void tap(const std::vector<Key>& keys);

  protected:
    UserKeyboard() = default;
    virtual void send(Key key, bool isDown) = 0;
};

namespace key {
inline constexpr UserKeyboard::Key escape = 1;
inline constexpr UserKeyboard::Key tab = 15;
inline constexpr UserKeyboard::Key enter = 28;
inline constexpr UserKeyboard::Key leftControl = 29;
inline constexpr UserKeyboard::Key a = 30;
inline constexpr UserKeyboard::Key d = 32;
inline constexpr UserKeyboard::Key leftShift = 42;
inline constexpr UserKeyboard::Key v = 47;
inline constexpr UserKeyboard::Key leftAlt = 56;
inline constexpr UserKeyboard::Key space = 57;
inline constexpr UserKeyboard::Key f9 = 67;
inline constexpr UserKeyboard::Key f10 = 68;
inline constexpr UserKeyboard::Key rightControl = 97;
inline constexpr UserKeyboard::Key insert = 110;
} // namespace key

} // namespace orlune::desktop
