// A shortcut as portals write it: "CTRL+ALT+space", "F9", "Control_R". A pure function, usable on
// any thread.
#pragma once

#include "platform/KeyCombination.h"

#include <optional>
#include <string>

namespace orlune {

struct PortalTrigger {
    std::string text;
    /// Desktops never report the release of such a trigger, or report the press only then.
    bool isModifierOnly = false;
};

/// `functionKey` is the symbol of the key that stands in for Fn, such as "Control_R". None for
/// shortcuts that cannot be written: two modifiers without another key, or a key that no keyboard
/// has.
std::optional<PortalTrigger> portalTriggerFor(const KeyCombination& shortcut,
                                              const std::string& functionKey);

} // namespace orlune
