// Displays a dictation as lines of text on standard error: one line redrawn in place on a terminal,
// plain lines elsewhere. Safe from any thread. Its text is a pure function of the state.
#pragma once

#include "dictation/AppState.h"

#include <mutex>
#include <string>
#include <string_view>

namespace orlune {

/// The part of the state that the view displays.
struct TerminalFrame {
    AppState::Phase::Case phase = AppState::Phase::Case::idle;
    std::string status;
    double level = 0; ///< 0 to 1
    std::string transcript;
};

/// The one line for a terminal of `columns` columns. A transcript that is too long is shortened to
/// its end, which was spoken last.
std::string terminalLine(const TerminalFrame& frame, int columns);

/// The check as readable text, ending in a line break.
std::string readable(const IntentCheck& check);

class TerminalView {
  public:
    /// `redraws`: the output is a terminal, and `columns` its width.
    TerminalView(int fileDescriptor, bool redraws, int columns);

    void show(const TerminalFrame& frame);
    /// Prints whole lines above the redrawn one.
    void print(std::string_view lines);
    /// Ends the redrawn line, so that later output starts on its own line.
    void finish();

  private:
    void write(std::string_view text) const;

    mutable std::mutex mutex_;
    const int fileDescriptor_;
    const bool redraws_;
    const int columns_;
    std::string shown_;
    std::string plainStatus_;
    std::string plainTranscript_;
};

} // namespace orlune
