// What an X display tells about the desktop on it, read once for a person to judge. No loop and no
// toolkit is needed, and nothing on the display is changed. From any one thread.
#pragma once

#include <optional>
#include <string>

namespace orlune {

struct DisplayFacts {
    bool isXwayland = false;
    std::string windowManager; ///< its own name; empty when none tells
    bool isCompositing = false;
    bool hasClipboardManager = false; ///< keeps a text after the program that copied it has ended
    bool hasTray = false;             ///< of the old kind, into which windows are embedded
    bool hasFunctionKey = false;
    /// For a person; empty when there is access.
    std::string whyKeysAreNotSeen;
    std::string whyKeysAreNotPosted;

    /// None when no server answers. An empty display name means the DISPLAY of the environment.
    static std::optional<DisplayFacts> read(const std::string& displayName,
                                            const std::string& functionKeyName);
};

} // namespace orlune
