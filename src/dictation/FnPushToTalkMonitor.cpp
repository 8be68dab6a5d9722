#include "dictation/FnPushToTalkMonitor.h"

#include "dictation/AppState.h"
#include "platform/VirtualKey.h"
#include "platform/concurrency/Task.h"

namespace orlune {

void toggleDictation(AppState& state) {
    using Case = AppState::Phase::Case;
    switch (state.phase().get().kind()) {
    case Case::reviewing:
        state.confirmIntent();
        break;
    case Case::listening:
        state.endDictation();
        break;
    case Case::processing:
        break;
    case Case::idle:
    case Case::success:
    case Case::failure:
        state.beginDictation();
        break;
    }
}

std::shared_ptr<FnPushToTalkMonitor>
FnPushToTalkMonitor::make(const std::shared_ptr<AppState>& state, KeyEvents& keyEvents,
                          const MainActor& mainActor) {
    return std::shared_ptr<FnPushToTalkMonitor>(
        new FnPushToTalkMonitor(state, keyEvents, mainActor));
}

FnPushToTalkMonitor::FnPushToTalkMonitor(const std::shared_ptr<AppState>& state,
                                         KeyEvents& keyEvents, const MainActor& mainActor)
    : keyEvents_(keyEvents), mainActor_(mainActor), state_(state) {}

FnPushToTalkMonitor::~FnPushToTalkMonitor() {
    for (auto* monitor : {&globalFlagsMonitor_, &localFlagsMonitor_, &globalKeyMonitor_,
                          &localKeyMonitor_, &globalKeyUpMonitor_, &localKeyUpMonitor_}) {
        monitor->remove();
    }
}

void FnPushToTalkMonitor::start() {
    mainActor_.assertCurrent();
    if (std::exchange(isStarted_, true)) {
        return;
    }
    // Events of our own windows need an answer, so they are handled synchronously. Each step locks
    // the monitor again, because handling may have destroyed it.
    const auto handleAndAnswer = [](const std::weak_ptr<FnPushToTalkMonitor>& weakSelf,
                                    Handling handle, const KeyEvent& event) {
        if (const auto self = weakSelf.lock()) {
            (*self.*handle)(event);
        }
        const auto self = weakSelf.lock();
        return self && self->consumes(event) ? KeyEventAnswer::swallow : KeyEventAnswer::passOn;
    };
    globalFlagsMonitor_ =
        watchGlobally(KeyEventMask::flagsChanged, &FnPushToTalkMonitor::handleFlags);
    localFlagsMonitor_ = keyEvents_.addLocalMonitor(
        KeyEventMask::flagsChanged, [weakSelf = weak_from_this()](const auto& event) {
            if (const auto self = weakSelf.lock()) {
                self->handleFlags(event);
            }
            return KeyEventAnswer::passOn;
        });
    globalKeyMonitor_ = watchGlobally(KeyEventMask::keyDown, &FnPushToTalkMonitor::handleKeyDown);
    localKeyMonitor_ = keyEvents_.addLocalMonitor(
        KeyEventMask::keyDown, [=, weakSelf = weak_from_this()](const auto& event) {
            return handleAndAnswer(weakSelf, &FnPushToTalkMonitor::handleKeyDown, event);
        });
    globalKeyUpMonitor_ = watchGlobally(KeyEventMask::keyUp, &FnPushToTalkMonitor::handleKeyUp);
    localKeyUpMonitor_ = keyEvents_.addLocalMonitor(
        KeyEventMask::keyUp, [=, weakSelf = weak_from_this()](const auto& event) {
            return handleAndAnswer(weakSelf, &FnPushToTalkMonitor::handleKeyUp, event);
        });
}

KeyEventMonitor FnPushToTalkMonitor::watchGlobally(KeyEventMask mask, Handling handle) {
    return keyEvents_.addGlobalMonitor(mask, [executor = mainActor_.executor(), handle,
                                              weakSelf = weak_from_this()](const KeyEvent& event) {
        Task::start(executor, [weakSelf, handle, event]() -> Awaitable<void> {
            if (const auto self = weakSelf.lock()) {
                (*self.*handle)(event);
            }
            co_return;
        });
    });
}

void FnPushToTalkMonitor::handleFlags(const KeyEvent& event) {
    const auto state = state_.lock();
    if (!state) {
        return;
    }
    if (state->isCapturingShortcut()) {
        shortcutIsDown_ = false;
        return;
    }
    const auto& shortcut = state->shortcut().get();
    if (shortcut.keyCode) {
        return;
    }
    const auto current = DictationShortcut::Modifiers::from(event.modifierFlags);
    transition(shortcut.modifiers.isSubset(current), *state);
}

void FnPushToTalkMonitor::handleKeyDown(const KeyEvent& event) {
    const auto state = state_.lock();
    if (!state) {
        return;
    }
    if (state->isCapturingShortcut()) {
        shortcutIsDown_ = false;
        return;
    }
    if (event.keyCode == virtual_key::escape) {
        state->cancelDictation();
        return;
    }
    if (event.isARepeat) {
        return;
    }
    if (matches(event, *state)) {
        transition(/*held=*/true, *state);
    }
}

/// Modifiers are ignored: they may have been released first.
void FnPushToTalkMonitor::handleKeyUp(const KeyEvent& event) {
    const auto state = state_.lock();
    if (!state || state->isCapturingShortcut()) {
        return;
    }
    if (state->shortcut().get().keyCode != event.keyCode || !shortcutIsDown_) {
        return;
    }
    shortcutIsDown_ = false;
    if (listensWhileHeld(*state)) {
        state->endDictation();
    }
}

bool FnPushToTalkMonitor::consumes(const KeyEvent& event) const {
    const auto state = state_.lock();
    if (!state || state->isCapturingShortcut()) {
        return false;
    }
    return event.keyCode == virtual_key::escape || state->shortcut().get().keyCode == event.keyCode;
}

bool FnPushToTalkMonitor::matches(const KeyEvent& event, const AppState& state) {
    const auto& shortcut = state.shortcut().get();
    return shortcut.keyCode == event.keyCode
           && DictationShortcut::Modifiers::from(event.modifierFlags) == shortcut.modifiers;
}

/// Where the desktop does not report the release, a press would never end: it toggles there.
bool FnPushToTalkMonitor::listensWhileHeld(const AppState& state) const {
    return state.activationMode() == ActivationMode::holdToSpeak && keyEvents_.reportsReleases();
}

void FnPushToTalkMonitor::transition(bool held, AppState& state) {
    if (held == shortcutIsDown_) {
        return;
    }
    shortcutIsDown_ = held;
    if (listensWhileHeld(state)) {
        if (held) {
            state.beginDictation();
        } else {
            state.endDictation();
        }
        return;
    }
    if (!held) {
        return;
    }
    toggleDictation(state);
}

} // namespace orlune
