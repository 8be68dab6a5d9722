// Presses keys in whatever program has the keyboard. Keys are the kernel's codes (42 = left Shift,
// 110 = Insert), so no layout matters. Main thread, with Qt's loop running; no call waits for the
// user or for the desktop.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace orlune {

class KeyInjector {
  public:
    using KeyCode = std::uint16_t;

    virtual ~KeyInjector() = default;

    /// For the log and the report of `orlune doctor`, such as "virtual keyboard".
    virtual std::string name() const = 0;
    /// Called whenever an answer of `isReady` or `reasonForUnavailability` may have changed.
    virtual void setOnChange(std::function<void()> onChange) = 0;

    /// A dictation begins, whose text will be pasted: opens what posting needs.
    virtual void prepare() = 0;
    /// The dictation is over, and nothing more is posted for it.
    virtual void rest() = 0;
    /// Opens the desktop's dialogs, if it has any.
    virtual void requestAccess() = 0;
    /// Why keys cannot be posted in this session, for a person; empty when `prepare` is all that
    /// is missing.
    virtual std::string reasonForUnavailability() const = 0;
    /// Whether a press sent now reaches a program.
    virtual bool isReady() const = 0;

    // False when the key could not be sent. Sent in order, carried out soon after the return.
    virtual bool press(KeyCode key) = 0;
    virtual bool release(KeyCode key) = 0;
};

} // namespace orlune
