#include "settings/ShortcutRecorderControl.h"

#include "settings/ShortcutRecorderButton.h"

#include <utility>

namespace orlune {

namespace {

constexpr QSize frame{122, 32};

} // namespace

ShortcutRecorderControl::ShortcutRecorderControl(const DictationShortcut& shortcut,
                                                 Listener listener, const Platform& platform)
    : button_(new ShortcutRecorderButton(platform.keyEventMonitors, platform.sound)) {
    button_->setParent(this);
    button_->setFixedSize(frame);
    button_->onCaptureStateChange = std::move(listener.onCaptureStateChange);
    button_->onCapture = std::move(listener.onCapture);
    button_->setShortcut(shortcut);
    setFixedSize(frame);
}

void ShortcutRecorderControl::setShortcut(const DictationShortcut& shortcut) {
    button_->setShortcut(shortcut);
}

} // namespace orlune
