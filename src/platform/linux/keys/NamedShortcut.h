// A shortcut by the symbols of its keys, for desktops that bind symbols. A pure function, usable on
// any thread.
#pragma once

#include "platform/KeyCombination.h"

#include <optional>
#include <string>

namespace orlune {

struct NamedShortcut {
    ModifierFlags modifiers = ModifierFlags::none; ///< without Fn, whose stand-in is among them
    std::string key; ///< the symbol's name: "space", "F9", "Control_R"
    /// Desktops never report the release of such a shortcut, or report the press only then.
    bool isModifierOnly = false;
};

/// `functionKey` is the symbol of the key that stands in for Fn, such as "Control_R". None for
/// shortcuts that cannot be written: two modifiers without another key, or a key that no keyboard
/// has.
std::optional<NamedShortcut> namedShortcutFor(const KeyCombination& shortcut,
                                              const std::string& functionKey);

/// As portals write it: "CTRL+ALT+space".
std::string portalTrigger(const NamedShortcut& shortcut);
/// As GNOME's settings write it: "<Control><Alt>space".
std::string gnomeAccelerator(const NamedShortcut& shortcut);

} // namespace orlune
