// The shortcut recorder as a part of a page: its size, the displayed shortcut, and the callbacks.
// Main thread.
#pragma once

#include "core/DictationShortcut.h"
#include "platform/Platform.h"

#include <QWidget>

#include <functional>

namespace orlune {

class ShortcutRecorderButton;

class ShortcutRecorderControl final : public QWidget {
  public:
    struct Listener {
        /// True when recording starts, false when it ends.
        std::function<void(bool)> onCaptureStateChange;
        std::function<void(const DictationShortcut&)> onCapture;
    };

    ShortcutRecorderControl(const DictationShortcut& shortcut, Listener listener,
                            const Platform& platform);

    /// Shown at once, or when the recording has ended.
    void setShortcut(const DictationShortcut& shortcut);

  private:
    ShortcutRecorderButton* button_;
};

} // namespace orlune
