// The program itself: `orlune` without a command. Puts the desktop, the shared state, the delegate
// and the remote control together, runs Qt's loop, and takes everything down in the right order,
// whether it ends on request, by a signal, or with the session. Main thread.
#pragma once

#include "app/AppDelegate.h"
#include "app/AppWindows.h"
#include "app/PressCommand.h"
#include "app/commands/CommandLine.h"
#include "app/desktop/TerminationSignals.h"
#include "app/remote/RemoteControl.h"
#include "app/tray/StatusItem.h"

#include <memory>
#include <optional>
#include <string>

namespace orlune {

/// Creates the application object, so it must be called once, before anything else on the main
/// thread. Returns the exit code; throws std::exception with a text for the user. If an instance is
/// already running, brings it to the front instead.
int runOrluneApp(const LaunchOptions& options, int& argumentCount, char** arguments);

class OrluneApp {
  public:
    /// Must be created after the application object.
    OrluneApp(const LaunchOptions& options, const TerminationSignals& signals);

    /// Returns the exit code.
    int run();

    /// Abandons a running dictation, and ends the loop. Returns at once.
    void terminate();

  private:
    class TakeDown {
      public:
        explicit TakeDown(OrluneApp& app) : app_(app) {}
        ~TakeDown();
        TakeDown(const TakeDown&) = delete;
        TakeDown& operator=(const TakeDown&) = delete;

      private:
        OrluneApp& app_;
    };

    /// Why the request was refused; none when it was carried out.
    std::optional<std::string> perform(RemoteRequest request);
    void launch(const Platform& platform);

    const LaunchOptions options_;
    const TerminationSignals& signals_;
    RemoteControl remote_;
    std::shared_ptr<AppState> state_;
    PressCommand press_{[this] { toggleDictation(*state_); }};
    std::optional<AppWindows> windows_;
    std::optional<AppDelegate> delegate_;
    std::optional<StatusItem> statusItem_;
};

} // namespace orlune
