// Watches the keyboard for the dictation shortcut and for Escape, and turns both into calls on the
// session controller. Its only state is whether the shortcut is held; it reads shortcut, mode and
// phase from the controller at every event, so that settings take effect at once. Main actor. One
// exists for the life of the process; neither it nor its handlers keep the controller alive.
#pragma once

#include "platform/KeyEvents.h"
#include "platform/concurrency/MainActor.h"

#include <memory>

namespace orlune {

class AppState;

/// What a press does in toggle mode: begins a dictation, ends it, or confirms it.
void toggleDictation(AppState& state);

class FnPushToTalkMonitor : public std::enable_shared_from_this<FnPushToTalkMonitor> {
  public:
    /// Does not watch anything until `start`. The facilities must outlive the monitor.
    static std::shared_ptr<FnPushToTalkMonitor>
    make(const std::shared_ptr<AppState>& state, KeyEvents& keyEvents, const MainActor& mainActor);
    ~FnPushToTalkMonitor();

    /// Installs the monitors, which stay until this object is destroyed. A second call does
    /// nothing.
    void start();

  private:
    FnPushToTalkMonitor(const std::shared_ptr<AppState>& state, KeyEvents& keyEvents,
                        const MainActor& mainActor);

    using Handling = void (FnPushToTalkMonitor::*)(const KeyEvent&);
    KeyEventMonitor watchGlobally(KeyEventMask mask, Handling handle);

    void handleFlags(const KeyEvent& event);
    void handleKeyDown(const KeyEvent& event);
    void handleKeyUp(const KeyEvent& event);
    bool consumes(const KeyEvent& event) const;
    static bool matches(const KeyEvent& event, const AppState& state);
    bool listensWhileHeld(const AppState& state) const;
    void transition(bool held, AppState& state);

    KeyEvents& keyEvents_;
    const MainActor& mainActor_;
    bool isStarted_ = false;

    std::weak_ptr<AppState> state_;
    KeyEventMonitor globalFlagsMonitor_;
    KeyEventMonitor localFlagsMonitor_;
    KeyEventMonitor globalKeyMonitor_;
    KeyEventMonitor localKeyMonitor_;
    KeyEventMonitor globalKeyUpMonitor_;
    KeyEventMonitor localKeyUpMonitor_;
    bool shortcutIsDown_ = false;
};

} // namespace orlune
