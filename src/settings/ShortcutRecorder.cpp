#include "settings/ShortcutRecorder.h"

#include "platform/VirtualKey.h"

#include <utility>

namespace orlune {

namespace {} // namespace

void ShortcutRecorder::begin() {
    isRecording_ = true;
    pendingFunctionKey_ = false;
}

bool ShortcutRecorder::cancel() {
    pendingFunctionKey_ = false;
    return std::exchange(isRecording_, false);
}

ShortcutRecorder::Answer ShortcutRecorder::receive(const KeyEvent& event) {
    using Type = KeyEvent::Type;
    if (!isRecording_) {
        return Answer::ignored;
    }
    switch (event.type) {
    case Type::keyDown:
        return receiveKeyDown(event);
    case Type::flagsChanged:
        return event.keyCode == virtual_key::function
                   ? receiveFunctionKey(contains(event.modifierFlags, ModifierFlags::function))
                   : Answer::ignored;
    case Type::keyUp:
        break;
    }
    return Answer::ignored;
}

ShortcutRecorder::Answer ShortcutRecorder::receiveKeyDown(const KeyEvent& event) {
    if (event.keyCode == virtual_key::escape) {
        cancel();
        return Answer::cancelled;
    }
    const auto modifiers = DictationShortcut::Modifiers::from(event.modifierFlags);
    if (modifiers.isEmpty()) {
        return event.isARepeat ? Answer::waiting : Answer::refused; // one refusal is enough
    }
    return capture({.keyCode = event.keyCode, .modifiers = modifiers});
}

ShortcutRecorder::Answer ShortcutRecorder::receiveFunctionKey(bool isDown) {
    if (isDown) {
        pendingFunctionKey_ = true;
        return Answer::waiting;
    }
    return pendingFunctionKey_ ? capture({.keyCode = std::nullopt,
                                          .modifiers = DictationShortcut::Modifiers::function})
                               : Answer::waiting;
}

ShortcutRecorder::Answer ShortcutRecorder::capture(const DictationShortcut& shortcut) {
    cancel();
    shortcut_ = shortcut;
    return Answer::captured;
}

} // namespace orlune
