// A shortcut as sway's configuration writes it. Pure functions, from any thread.
#pragma once

#include "platform/KeyCombination.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::sway {

/// One trigger of a binding: "bindsym Control_R", "bindcode Ctrl+Mod1+65".
struct Trigger {
    bool isCode = false; ///< a key by its place, as X numbers it; else by its symbol
    std::string keys;

    bool operator==(const Trigger&) const = default;
};

/// What to bind for this shortcut; several where left and right keys do the same. `functionKey` is
/// the symbol of the key that stands in for Fn, such as "Control_R". Empty when sway cannot be
/// asked for it: two modifiers without another key, or a key that it has no place for.
std::vector<Trigger> triggersFor(const KeyCombination& shortcut, std::string_view functionKey);

/// The line of a configuration file that binds the same keys; none when none does. `set` variables
/// are filled in; included files are not looked at, because sway does not hand them out.
std::optional<std::string> lineThatBinds(std::string_view configuration, const Trigger& trigger);

} // namespace orlune::sway
