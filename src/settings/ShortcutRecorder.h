// Turns keys into a new dictation shortcut: the rules of recording, without a window. A value; main
// thread.
#pragma once

#include "core/DictationShortcut.h"
#include "platform/KeyEvents.h"

#include <optional>

namespace orlune {

class ShortcutRecorder {
  public:
    enum class Answer {
        ignored,   ///< not for the recorder: whoever else is there may have it
        waiting,   ///< taken, and nothing is decided yet
        refused,   ///< a key without a modifier; the recording goes on
        cancelled, ///< the recording has ended without a shortcut
        captured,  ///< the recording has ended with `shortcut()`
    };

    bool isRecording() const { return isRecording_; }
    /// What was captured last.
    const std::optional<DictationShortcut>& shortcut() const { return shortcut_; }

    /// Arms it; when it is armed already, it starts anew.
    void begin();
    /// False when nothing was being recorded.
    bool cancel();
    Answer receive(const KeyEvent& event);

  private:
    Answer receiveKeyDown(const KeyEvent& event);
    Answer receiveFunctionKey(bool isDown);
    Answer capture(const DictationShortcut& shortcut);

    bool isRecording_ = false;
    /// Fn went down, and no other key has been pressed since.
    bool pendingFunctionKey_ = false;
    std::optional<DictationShortcut> shortcut_;
};

} // namespace orlune
