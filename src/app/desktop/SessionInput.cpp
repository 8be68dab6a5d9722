#include "app/desktop/SessionInput.h"

#include "platform/linux/keys/XInputKeyEvents.h"
#include "platform/linux/paste/QtPasteboard.h"
#include "platform/linux/paste/XTestKeyPoster.h"
#include "platform/linux/x11/X11Accessibility.h"

#include <QGuiApplication>

#include <utility>

namespace orlune {

/// In the order of their making; the last made ends first.
struct SessionInput::Parts {
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<QtPasteboard> clipboard;
    std::unique_ptr<XInputKeyEvents> keys; // before what posts, which reports to it
    std::unique_ptr<KeyEventPosting> posting;
};

SessionInput::SessionInput(const PlatformConfiguration& configuration, TrustPrompt trustPrompt,
                           Log& log)
    : parts_(std::make_unique<Parts>()) {
    auto& parts = *parts_;
    parts.accessibility = std::make_unique<X11Accessibility>(std::move(trustPrompt));
    parts.clipboard = std::make_unique<QtPasteboard>();
    parts.keys = std::make_unique<XInputKeyEvents>(
        XInputKeyEvents::Surroundings{
            .functionKeyName = configuration.fnKey,
            .ownWindowHasKeyboard = [] { return QGuiApplication::focusWindow() != nullptr; }},
        log);
    XTestKeyPoster::Hooks hooks;
    hooks.ownPrimarySelection = [&parts] { return parts.clipboard->ownPrimarySelection(); };
    hooks.willPost = [&parts] { parts.keys->willPost(); };
    hooks.didPost = [&parts] { parts.keys->didPost(); };
    hooks.onModifiersReleased = [&parts](const auto& keys) { parts.keys->countAsReleased(keys); };
    parts.posting = std::make_unique<XTestKeyPoster>(configuration.terminals, std::move(hooks));
}

SessionInput::~SessionInput() = default;

KeyEvents& SessionInput::keyEvents() {
    return *parts_->keys;
}

KeyEventPosting& SessionInput::keyEventPosting() {
    return *parts_->posting;
}

Pasteboard& SessionInput::pasteboard() {
    return *parts_->clipboard;
}

Accessibility& SessionInput::accessibility() {
    return *parts_->accessibility;
}

void SessionInput::setLocked(bool isLocked) {
    parts_->keys->setLocked(isLocked);
}

} // namespace orlune
