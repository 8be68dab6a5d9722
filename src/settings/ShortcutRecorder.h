// The rules of recording: turns keys into a new dictation shortcut, without a window. A value; main
// thread.
#pragma once

#include "core/DictationShortcut.h"
#include "platform/KeyEvents.h"

#include <optional>

namespace orlune {

class ShortcutRecorder {
  public:
    enum class Answer {
        ignored,   ///< not for the recorder; others may have it
        waiting,   ///< taken, but nothing is decided yet
        refused,   ///< a key without a modifier; the recording goes on
        cancelled, ///< the recording has ended without a shortcut
        captured,  ///< the recording has ended with `shortcut()`
    };

    bool isRecording() const { return isRecording_; }
    /// The last captured shortcut.
    const std::optional<DictationShortcut>& shortcut() const { return shortcut_; }

    /// Arms it; restarts when it is already armed.
    void begin();
    /// False when it was not recording.
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
