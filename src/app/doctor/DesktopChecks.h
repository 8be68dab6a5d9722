// Checks session, keys, clipboard and tray from the answers of the display and the session bus.
// Pure.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/linux/storage/ConfigurationFolder.h"
#include "platform/linux/wayland/WaylandFacts.h"
#include "platform/linux/x11/DisplayFacts.h"

#include <optional>

namespace orlune {

struct DesktopFacts {
    Environment environment;
    std::string functionKeyName;
    std::optional<DisplayFacts> display; ///< none when no X server answers
    std::optional<WaylandFacts> wayland; ///< none when no compositor answers
    bool hasSway = false;                ///< its socket answers
    bool hasGlobalAccel = false; ///< KGlobalAccel, with which Plasma reports press and release
    /// The desktop has bound the shortcut that the portal was asked for; none without such a
    /// portal.
    std::optional<bool> hasPortalShortcut;
    bool hasPortal = false;        ///< the desktop portal runs
    bool isPastingAllowed = false; ///< the user consented in the portal's dialog
    bool hasTrayHost = false;      ///< of the kind that is found over D-Bus
};

Findings checkDesktop(const DesktopFacts& facts);

} // namespace orlune
