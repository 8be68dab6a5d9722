// What an X display reports about its desktop, read once for a diagnosis. Needs no loop and no
// toolkit, and changes nothing on the display. Used on any one thread.
#pragma once

#include <optional>
#include <string>

namespace orlune {

struct DisplayFacts {
    bool isXwayland = false;
    std::string windowManager; ///< its own name; empty when unknown
    bool isCompositing = false;
    bool hasClipboardManager = false; ///< preserves a text after its program has ended
    bool hasTray = false;             ///< the older kind, which embeds windows
    bool hasFunctionKey = false;
    /// For the user; empty when there is access.
    std::string whyKeysAreNotSeen;
    std::string whyKeysAreNotPosted;

    /// None when no server answers. An empty display name means the DISPLAY of the environment.
    static std::optional<DisplayFacts> read(const std::string& displayName,
                                            const std::string& functionKeyName);
};

} // namespace orlune
