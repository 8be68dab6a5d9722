// What the session's compositor offers to a program without windows, for a report. Main thread,
// with an application object.
#pragma once

#include <optional>

namespace orlune {

struct WaylandFacts {
    bool hasVirtualKeyboard = false;
    bool hasDataControl = false;
    bool hasHyprlandShortcuts = false; ///< its portal reports shortcuts

    /// None when no compositor answers.
    static std::optional<WaylandFacts> read();
};

} // namespace orlune
