// What can be configured about this desktop: "platform.json" in the program's configuration folder,
// each entry overridden by an environment variable. Read once at start. A bad value is ignored and
// reported as a text for the log; nothing here fails.
//   {"endpoint": "wss://host:port", "fnKey": "Control_R", "terminals": ["window class", …],
//    "reduceMotion": true, "pasteKeys": "control-v"}
#pragma once

#include "platform/linux/storage/ConfigurationFolder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {

struct PlatformConfiguration {
    static constexpr auto fileName = "platform.json";

    /// Scheme, host and optional port of the transcription service: "wss", or "ws" to a loopback
    /// address. ORLUNE_ENDPOINT.
    std::string endpoint = "wss://api.deepgram.com";
    /// The name of the key symbol that stands in for Fn; the key watcher checks whether it exists.
    /// ORLUNE_FN_KEY.
    std::string fnKey = "Control_R";
    /// Additional window classes in which Shift-Insert pastes, compared exactly. ORLUNE_TERMINALS,
    /// separated by commas.
    std::vector<std::string> terminals;
    /// Whether movement is left out; if not set, the desktop's own settings decide.
    /// ORLUNE_REDUCE_MOTION, 1 or 0.
    std::optional<bool> reduceMotion;
    /// Only in Wayland sessions: "control-v" pastes with Control-V, for programs that do not paste
    /// with the default "shift-insert". ORLUNE_PASTE_KEYS.
    bool pastesWithControlV = false;

    /// The ignored entries and why, in order.
    std::vector<std::string> problems;

    /// `text` is the file's; none when there is no file. Pure.
    static PlatformConfiguration parse(std::optional<std::string_view> text,
                                       const Environment& environment);
    static PlatformConfiguration load(const std::filesystem::path& folder,
                                      const Environment& environment);
};

} // namespace orlune
