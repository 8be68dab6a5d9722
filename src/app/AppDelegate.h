// What the program does once it has been launched: the overlay, the shortcut, and bringing its
// window to the front. Owned by OrluneApp; main thread. It knows each window only by the function
// that opens it.
#pragma once

#include "dictation/AppState.h"
#include "dictation/FnPushToTalkMonitor.h"
#include "ui/Observation.h"

#include <functional>
#include <memory>

namespace orlune {

class OverlayWindowController;

class AppDelegate {
  public:
    /// Functions that open windows and bring them to the front; an empty one does nothing.
    struct Windows {
        /// Shows the main window like any new window.
        std::function<void()> showMain;
        /// Brings open windows to the front; false when none is open.
        std::function<bool()> activate;
        std::function<void()> openMain;
        std::function<void()> openSettings;
    };

    /// The facilities must outlive the delegate.
    AppDelegate(std::shared_ptr<AppState> state, const Platform& platform, Windows windows);
    ~AppDelegate();

    /// Called once, with the loop running.
    void applicationDidFinishLaunching(bool opensWindow);
    /// Called when the program is launched again while it runs: brings open windows to the front,
    /// or else opens the main window.
    void applicationShouldHandleReopen();

    void openMainWindow() const;
    void openSettings() const;

  private:
    bool activate() const;
    void tellDesktop();

    const std::shared_ptr<AppState> state_;
    const Platform& platform_;
    const Windows windows_;
    std::unique_ptr<OverlayWindowController> overlay_;
    std::shared_ptr<FnPushToTalkMonitor> hotkey_;
    bool isDictating_ = false;
    ui::Observation observation_;
};

} // namespace orlune
