#include "services/TextInsertionService.h"

#include "platform/VirtualKey.h"

namespace orlune {

namespace {

/// The key by its position; the platform finds it in the user's layout.
constexpr auto pasteKey = virtual_key::v;

} // namespace

const char* TextInsertionService::InsertionError::what() const noexcept {
    switch (errorCase_) {
    case Case::accessibilityPermission:
        return "Allow Accessibility access, then try again";
    case Case::eventCreation:
        break;
    }
    return "Couldn't paste into the active application";
}

void TextInsertionService::insert(const std::string& text) const {
    using Case = InsertionError::Case;
    if (!accessibility_->isProcessTrusted()) {
        accessibility_->isProcessTrustedWithOptions(/*prompt=*/true);
        throw InsertionError(Case::accessibilityPermission);
    }
    pasteboard_->clearContents();
    if (!pasteboard_->setString(text)) {
        // The key press would paste another program's text.
        throw InsertionError(Case::eventCreation);
    }
    const auto source = keyEvents_->createSource(EventSourceState::hidSystemState);
    if (!source) {
        throw InsertionError(Case::eventCreation);
    }
    auto keyDown = keyEvents_->createKeyboardEvent(*source, pasteKey, /*isKeyDown=*/true);
    auto keyUp = keyEvents_->createKeyboardEvent(*source, pasteKey, /*isKeyDown=*/false);
    if (!keyDown || !keyUp) {
        throw InsertionError(Case::eventCreation);
    }
    // Only Command, whatever keys the user still holds.
    keyDown->flags = ModifierFlags::command;
    keyUp->flags = ModifierFlags::command;
    const bool isDown = keyEvents_->post(EventTapLocation::hidEventTap, *keyDown);
    const bool isUp = keyEvents_->post(EventTapLocation::hidEventTap, *keyUp);
    if (!isDown || !isUp) {
        throw InsertionError(Case::eventCreation);
    }
}

} // namespace orlune
