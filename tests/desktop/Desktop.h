// The desktop around a test: other programs, the keyboard as hardware, and waiting. Main thread;
// waiting runs Qt's loop.
#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QProcess;
struct _XDisplay;

namespace orlune::desktop {

/// Runs the loop until the condition holds. False when it does not within 30 s, which is enough for
/// a loaded machine.
[[nodiscard]] bool waitUntil(const std::function<bool()>& condition);

/// Another program, which ends with this handle.
class Program {
  public:
    explicit Program(const std::vector<std::string>& command);
    ~Program();

    /// Waits for the end and returns what was written to standard output.
    std::string output();
    /// The first line written to standard output; waits for it.
    std::string firstLine();
    void kill();

  private:
    std::unique_ptr<QProcess> process_;
};

/// Runs a program to its end.
std::string run(const std::vector<std::string>& command);

/// The keyboard of the X server as the user presses it, and its state.
class Keyboard {
  public:
    using Keycode = std::uint8_t;

    Keyboard();
    /// Releases all keys and restores the locks and the layout.
    ~Keyboard();

    /// Through the server's keyboard device, not the one that synthetic keys come from.
    void press(Keycode key);
    void release(Keycode key);
    /// Presses the keys in order and releases them in reverse order.
    void tap(const std::vector<Keycode>& keys);

    /// Arguments of setxkbmap, and which of the layouts is active.
    void useLayout(const std::vector<std::string>& arguments, unsigned int active = 0);
    /// Caps Lock and Num Lock.
    void lock(bool caps, bool num);

    /// The keys that are down for programs, on any device.
    std::vector<Keycode> down();

  private:
    struct Devices;
    std::unique_ptr<Devices> devices_;
    std::vector<Keycode> pressed_;
};

/// The positions of keys, with the names of the US layout.
namespace keycode {
inline constexpr Keyboard::Keycode escape = 9;
inline constexpr Keyboard::Keycode tab = 23;
inline constexpr Keyboard::Keycode q = 24;
inline constexpr Keyboard::Keycode w = 25;
inline constexpr Keyboard::Keycode enter = 36;
inline constexpr Keyboard::Keycode control = 37;
inline constexpr Keyboard::Keycode a = 38;
inline constexpr Keyboard::Keycode k = 45;
inline constexpr Keyboard::Keycode shift = 50;
inline constexpr Keyboard::Keycode v = 55;
inline constexpr Keyboard::Keycode alt = 64;
inline constexpr Keyboard::Keycode space = 65;
inline constexpr Keyboard::Keycode capsLock = 66;
inline constexpr Keyboard::Keycode f4 = 70;
inline constexpr Keyboard::Keycode rightControl = 105;
inline constexpr Keyboard::Keycode fn = rightControl; // its stand-in
inline constexpr Keyboard::Keycode rightAlt = 108;
inline constexpr Keyboard::Keycode left = 113;
inline constexpr Keyboard::Keycode right = 114;
inline constexpr Keyboard::Keycode insert = 118;
inline constexpr Keyboard::Keycode super = 133;
inline constexpr Keyboard::Keycode rightSuper = 134;
} // namespace keycode

/// The class of the window that has the keyboard focus; empty when there is none.
std::string focusedClass();
/// GTK 3 and 4 differ in the spelling of their windows' class.
bool zenityHasKeyboard();
/// Claims that a window that does not exist is active, as a faulty window manager might.
void claimThatAVanishedWindowIsActive();

/// Counts how often other programs fetch text from a selection that we own. A program that has
/// received the text has it before any key that is posted later.
class FetchCounter final : public QAbstractNativeEventFilter {
  public:
    FetchCounter();
    ~FetchCounter() override;

    int count() const { return count_; }
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  private:
    int count_ = 0;
};

/// A window with the keyboard focus that records the keys it receives.
class KeyRecorder {
  public:
    explicit KeyRecorder(const std::string& className);
    ~KeyRecorder();

    struct Key {
        bool isDown;
        Keyboard::Keycode key;
        std::uint64_t milliseconds; ///< the server's time
    };
    /// All keys that the server has processed so far.
    const std::vector<Key>& keys();

  private:
    _XDisplay* display_;
    unsigned long window_;
    std::vector<Key> keys_;
};

} // namespace orlune::desktop
