// What the program does once it has been launched: the overlay, the shortcut, and bringing its
// window to the front. Owned by OrluneApp; main thread. Windows are known here by how they are
// opened alone.
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
    /// How windows are opened and come to the front; an empty one does nothing.
    struct Windows {
        /// Lets the main window appear, as any new window does.
        std::function<void()> showMain;
        /// Brings forward what is open; false when nothing is.
        std::function<bool()> activate;
        std::function<void()> openMain;
        std::function<void()> openSettings;
    };

    /// The facilities outlive the delegate.
    AppDelegate(std::shared_ptr<AppState> state, const Platform& platform, Windows windows);
    ~AppDelegate();

    /// Called once, with the loop running.
    void applicationDidFinishLaunching(bool opensWindow);
    /// The program was launched once more while it runs: what is open comes forward, else the main
    /// window opens.
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
