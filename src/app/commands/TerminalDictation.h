// Runs one dictation of the shared state from a terminal: displays what the state publishes, and
// turns lines of input and interrupts into its operations. Main actor; `run` runs Qt's loop until
// the dictation is over.
#pragma once

#include "app/commands/TerminalView.h"
#include "app/desktop/TerminationSignals.h"
#include "dictation/AppState.h"
#include "platform/concurrency/MainActor.h"

#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <memory>

namespace orlune {

class TerminalDictation {
  public:
    struct Options {
        /// Lines on this descriptor end the recording and confirm the check; -1 for none.
        int input = -1;
        bool inputIsTerminal = false;
        bool confirmsAtOnce = false;
        /// How long the transcript must be unchanged before a requested end takes effect. A
        /// recording that is fed faster than it was spoken is still being recognised when it ends.
        std::chrono::milliseconds quietBeforeEnd{0};
        /// Waits until the state is idle again, so that the program that pastes can fetch the text.
        bool staysUntilIdle = false;
    };

    /// Each of the signals cancels.
    TerminalDictation(std::shared_ptr<AppState> state, MainActor& mainActor, TerminalView& view,
                      const TerminationSignals& signals, const Options& options);

    /// Returns the exit code.
    int run();

    /// Ends the recording as soon as it runs. Only on the main actor.
    void requestEnd();

  private:
    void endWhenQuiet();
    void scheduleRefresh();
    void refresh();
    void enter(AppState::Phase::Case phase);
    void review();
    void readInput();
    void cancel();
    void quit(int exitCode);

    const std::shared_ptr<AppState> state_;
    MainActor& mainActor_;
    TerminalView& view_;
    const Options options_;

    AppState::Phase::Case lastPhase_ = AppState::Phase::Case::idle;
    bool endRequested_ = false;
    bool refreshScheduled_ = false;
    int exitCode_;
    bool isOver_ = false;

    QTimer meterTimer_;
    QTimer quietTimer_;
    std::unique_ptr<QSocketNotifier> inputNotifier_;
    QSocketNotifier signalNotifier_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    Subscription stateSubscription_;
    Subscription levelSubscription_;
    Subscription transcriptSubscription_;
};

} // namespace orlune
