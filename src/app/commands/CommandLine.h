// The command line as values. Nothing is started or printed here.
#pragma once

#include "app/remote/RemoteRequest.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orlune {

// Exit codes of the program.
inline constexpr int exitDone = 0;
inline constexpr int exitFailed = 1;
inline constexpr int exitUsage = 2;
inline constexpr int exitCancelled = 130; ///< what a shell reports after Ctrl-C

/// `orlune` without a command: starts the program.
struct LaunchOptions {
    bool isInBackground = false; ///< without a window, as at login

    bool operator==(const LaunchOptions&) const = default;
};

/// `orlune toggle` and similar: a request to the running program.
struct RemoteOptions {
    RemoteRequest request = RemoteRequest::toggle;

    bool operator==(const RemoteOptions&) const = default;
};

/// `orlune status`: reports what the running program is doing.
struct StatusOptions {
    bool isJson = false;

    bool operator==(const StatusOptions&) const = default;
};

/// `orlune doctor`: checks everything a dictation needs.
struct DoctorOptions {
    bool isJson = false;

    bool operator==(const DoctorOptions&) const = default;
};

/// `orlune dictate`: one dictation in the terminal.
struct DictateOptions {
    std::optional<std::string> input; ///< an audio file instead of the microphone
    bool isFast = false;              ///< feeds the file without waiting
    bool isLocal = false;             ///< starts the local service and uses it
    bool insertsText = false;         ///< pastes into the focused window
    bool checksIntent = true;
    bool confirmsAtOnce = false; ///< does not wait for Enter after the intent check

    bool operator==(const DictateOptions&) const = default;
};

/// `orlune intent`: the check of a text from standard input.
struct IntentOptions {
    bool isJson = false;

    bool operator==(const IntentOptions&) const = default;
};

/// `orlune key set | remove | status`.
struct KeyOptions {
    enum class Action { set, remove, status };
    Action action = Action::status;

    bool operator==(const KeyOptions&) const = default;
};

/// `orlune autostart on | off | status`.
struct AutostartOptions {
    enum class Action { on, off, status };
    Action action = Action::status;

    bool operator==(const AutostartOptions&) const = default;
};

/// Text for standard output, without further work.
struct Answer {
    std::string text;

    bool operator==(const Answer&) const = default;
};

/// An invalid command line: text for standard error, exit code 2.
struct UsageError {
    std::string text;

    bool operator==(const UsageError&) const = default;
};

using Command =
    std::variant<LaunchOptions, RemoteOptions, StatusOptions, DoctorOptions, DictateOptions,
                 IntentOptions, KeyOptions, AutostartOptions, Answer, UsageError>;

/// `arguments` without the program's own name, in UTF-8.
Command parseCommandLine(const std::vector<std::string>& arguments);

} // namespace orlune
