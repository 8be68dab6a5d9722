// Shows the dictation shortcut and records a new one: a click arms it, and the next key with a
// modifier, or Fn by itself, becomes the shortcut. Escape, a click elsewhere and the loss of the
// focus leave the shortcut unchanged. Main thread. While it is armed a local monitor reports the
// pressed keys; those that the desktop takes for itself, for example to switch windows, do not
// count.
#pragma once

#include "platform/KeyEvents.h"
#include "platform/Sound.h"
#include "settings/ShortcutRecorder.h"
#include "ui/Button.h"

#include <deque>
#include <functional>
#include <optional>

namespace orlune {

class ShortcutRecorderButton final : public ui::Button {
  public:
    ShortcutRecorderButton(KeyEvents& keyEvents, Sound& sound);
    ~ShortcutRecorderButton() override;

    /// Called with true when a recording starts, and with false once when it ends in any way.
    std::function<void(bool)> onCaptureStateChange;
    std::function<void(const DictationShortcut&)> onCapture;

    bool isRecording() const { return recorder_.isRecording(); }
    /// The shortcut that is shown while it does not record.
    void setShortcut(const DictationShortcut& shortcut);

    bool eventFilter(QObject* receiver, QEvent* event) override;

  protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void beginRecording();
    void receiveWatched(const QKeyEvent& received);
    void receive(const KeyEvent& event);
    void cancel();
    void finish(const std::optional<DictationShortcut>& shortcut);
    void updateTitle();

    KeyEvents& keyEvents_;
    Sound& sound_;
    ShortcutRecorder recorder_;
    DictationShortcut shortcut_;
    /// Pressed keys that may be on their way to this button, in order.
    std::deque<KeyEvent> watched_;
    bool hadFocus_ = false; ///< before the recording
    KeyEventMonitor monitor_;
};

} // namespace orlune
