// The requests to a running Orlune. They have the same names on the command line, as actions of the
// desktop file and, capitalised, as methods on D-Bus. Plain values.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace orlune {

enum class RemoteRequest {
    toggle,
    press,
    start,
    stop,
    confirm,
    cancel,
    recover,
    show,
    settings,
    quit
};

struct RemoteRequestText {
    RemoteRequest request;
    const char* name;
    const char* description; ///< one line of help
};

inline constexpr std::array remoteRequests{
    RemoteRequestText{RemoteRequest::toggle, "toggle",
                      "start a dictation, finish it, confirm it: whatever comes next"},
    RemoteRequestText{RemoteRequest::press, "press",
                      "the same for a key of the desktop, whose repeats do not count"},
    RemoteRequestText{RemoteRequest::start, "start", "start a dictation, or confirm a review"},
    RemoteRequestText{RemoteRequest::stop, "stop", "stop listening and take what was said"},
    RemoteRequestText{RemoteRequest::confirm, "confirm", "insert the prompt under review"},
    RemoteRequestText{RemoteRequest::cancel, "cancel", "abandon the dictation"},
    RemoteRequestText{RemoteRequest::recover, "recover",
                      "put words that were not inserted on the clipboard"},
    RemoteRequestText{RemoteRequest::show, "show", "open the main window"},
    RemoteRequestText{RemoteRequest::settings, "settings", "open the settings"},
    RemoteRequestText{RemoteRequest::quit, "quit", "end the program"},
};

std::optional<RemoteRequest> remoteRequestNamed(std::string_view name);
/// "Toggle" for `toggle`.
std::string busMethod(RemoteRequest request);
/// The request with this method name.
std::optional<RemoteRequest> remoteRequestOfMethod(std::string_view method);

// The address of a running instance on the session bus.
inline constexpr auto busName = "app.orlune.Orlune";
inline constexpr auto busPath = "/app/orlune/Orlune";
inline constexpr auto busInterface = "app.orlune.Orlune1";
/// The name of the error for refused requests, which has a text for the user.
inline constexpr auto refusalError = "app.orlune.Orlune1.Error.Refused";
/// Not a user's request: the key in the keyring was set or removed. The key is not passed.
inline constexpr auto keyChangedMethod = "KeyChanged";
/// The interface by which desktops start and reach programs.
inline constexpr auto applicationInterface = "org.freedesktop.Application";

} // namespace orlune
