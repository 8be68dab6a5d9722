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

    /// Scheme, host and perhaps port of the transcription service: "wss", or "ws" to a loopback
    /// address. ORLUNE_ENDPOINT.
    std::string endpoint = "wss://api.deepgram.com";
    /// The name of the key symbol that stands in for Fn; whether there is such a symbol is for the
    /// key watcher to find out. ORLUNE_FN_KEY.
    std::string fnKey = "Control_R";
    /// Classes of further windows in which Shift-Insert pastes, compared exactly. ORLUNE_TERMINALS,
    /// separated by commas.
    std::vector<std::string> terminals;
    /// Whether movement is left out; what the desktop's own settings say where this says nothing.
    /// ORLUNE_REDUCE_MOTION, 1 or 0.
    std::optional<bool> reduceMotion;
    /// Wayland sessions only: Control-V pastes, "control-v", for users whose programs do not paste
    /// with Shift-Insert, "shift-insert". ORLUNE_PASTE_KEYS.
    bool pastesWithControlV = false;

    /// What was ignored and why, in order.
    std::vector<std::string> problems;

    /// `text` is the file's, none when there is no file. Pure.
    static PlatformConfiguration parse(std::optional<std::string_view> text,
                                       const Environment& environment);
    static PlatformConfiguration load(const std::filesystem::path& folder,
                                      const Environment& environment);
};

} // namespace orlune
