#include "app/commands/TerminalDictation.h"

#include "app/commands/CommandLine.h"

#include <QCoreApplication>
#include <boost/asio/post.hpp>

#include <array>
#include <chrono>
#include <string_view>
#include <unistd.h>

namespace orlune {

namespace {

using namespace std::chrono_literals;
using Case = AppState::Phase::Case;

/// About ten steps a second make a meter look smooth in a terminal; each step costs a redraw.
constexpr auto meterInterval = 80ms;

} // namespace

TerminalDictation::TerminalDictation(std::shared_ptr<AppState> state, MainActor& mainActor,
                                     TerminalView& view, const TerminationSignals& signals,
                                     const Options& options)
    : state_(std::move(state)), mainActor_(mainActor), view_(view), options_(options),
      exitCode_(exitFailed), signalNotifier_(signals.descriptor(), QSocketNotifier::Read) {
    meterTimer_.setSingleShot(true);
    QObject::connect(&meterTimer_, &QTimer::timeout, [this] { refresh(); });
    quietTimer_.setSingleShot(true);
    QObject::connect(&quietTimer_, &QTimer::timeout, [this] { state_->endDictation(); });
    QObject::connect(&signalNotifier_, &QSocketNotifier::activated, [this, &signals] {
        signals.take();
        cancel();
    });
    if (options_.input >= 0) {
        inputNotifier_ = std::make_unique<QSocketNotifier>(options_.input, QSocketNotifier::Read);
        QObject::connect(inputNotifier_.get(), &QSocketNotifier::activated,
                         [this] { readInput(); });
    }
    stateSubscription_ = state_->onChange([this] { scheduleRefresh(); });
    transcriptSubscription_ = state_->interimTranscript().subscribe([this](const auto&) {
        if (quietTimer_.isActive()) {
            quietTimer_.start();
        }
    });
    levelSubscription_ = state_->waveform().frame().subscribe([this](const auto&) {
        if (!meterTimer_.isActive()) {
            meterTimer_.start(meterInterval);
        }
    });
}

int TerminalDictation::run() {
    state_->beginDictation();
    if (!isOver_) {
        QCoreApplication::exec();
    }
    view_.finish();
    return exitCode_;
}

void TerminalDictation::requestEnd() {
    endRequested_ = true;
    endWhenQuiet(); // no effect before the recording runs; `enter` repeats it then
}

void TerminalDictation::endWhenQuiet() {
    if (options_.quietBeforeEnd > 0ms) {
        quietTimer_.start(options_.quietBeforeEnd);
    } else {
        state_->endDictation();
    }
}

/// Any number of changes in one turn cause one refresh in the next, when they have been stored.
void TerminalDictation::scheduleRefresh() {
    if (std::exchange(refreshScheduled_, true)) {
        return;
    }
    boost::asio::post(mainActor_.executor(), [this, alive = std::weak_ptr(alive_)] {
        if (!alive.expired()) {
            refreshScheduled_ = false;
            refresh();
        }
    });
}

void TerminalDictation::refresh() {
    const auto phase = state_->phase().get().kind();
    TerminalFrame frame;
    frame.phase = phase;
    frame.status = state_->statusMessage().get();
    frame.level = state_->waveform().frame().get().level;
    frame.transcript = state_->interimTranscript().get();
    // The final status is a line of its own, or the text itself, and is never erased.
    const bool isUnderWay = phase == Case::listening || phase == Case::processing;
    if (isUnderWay) {
        view_.show(frame);
    }
    if (phase != std::exchange(lastPhase_, phase)) {
        enter(phase);
    }
}

void TerminalDictation::enter(AppState::Phase::Case phase) {
    switch (phase) {
    case Case::listening:
        if (endRequested_) {
            endWhenQuiet();
        }
        break;
    case Case::processing:
        break;
    case Case::reviewing:
        review();
        break;
    case Case::success:
        exitCode_ = exitDone;
        view_.print({});
        if (!options_.staysUntilIdle) {
            quit(exitDone);
        }
        break;
    case Case::failure: {
        const auto& message = *state_->phase().get().message();
        const bool wasCancelled = message == "Cancelled";
        exitCode_ = wasCancelled ? exitCancelled : exitFailed;
        view_.print(wasCancelled ? message + "\n" : "orlune: " + message + "\n");
        if (const auto& words = state_->uninsertedText(); !words.empty()) {
            view_.print("\nNot inserted\n" + words + "\n");
        }
        quit(exitCode_);
        break;
    }
    case Case::idle:
        quit(exitCode_);
        break;
    }
}

void TerminalDictation::review() {
    view_.print(readable(*state_->phase().get().intentCheck()));
    if (options_.confirmsAtOnce || !options_.inputIsTerminal) {
        state_->confirmIntent();
    } else {
        view_.print("Enter takes it, Ctrl-C cancels.\n");
    }
}

void TerminalDictation::readInput() {
    std::array<char, 256> bytes{};
    const auto count = ::read(options_.input, bytes.data(), bytes.size());
    if (count <= 0) {
        inputNotifier_->setEnabled(false); // the end of input stays readable for ever
    }
    const bool hasLine =
        count > 0
        && std::string_view(bytes.data(), static_cast<std::size_t>(count)).find('\n')
               != std::string_view::npos;
    if (count > 0 && !hasLine) {
        return;
    }
    if (state_->phase().get().is(Case::reviewing)) {
        state_->confirmIntent();
    } else {
        requestEnd();
    }
}

void TerminalDictation::cancel() {
    const auto phase = state_->phase().get().kind();
    if (phase == Case::listening || phase == Case::processing || phase == Case::reviewing) {
        state_->cancelDictation();
    } else {
        quit(exitCode_ == exitDone ? exitDone : exitCancelled);
    }
}

void TerminalDictation::quit(int exitCode) {
    exitCode_ = exitCode;
    isOver_ = true;
    QCoreApplication::quit();
}

} // namespace orlune
