// A shortcut in the form of sway's configuration. Pure functions, usable on any thread.
#pragma once

#include "platform/KeyCombination.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::sway {

/// One trigger of a binding: "bindsym Control_R", "bindcode Ctrl+Mod1+65".
struct Trigger {
    bool isCode = false; ///< a key by its position, as X numbers it; else by its symbol
    std::string keys;

    bool operator==(const Trigger&) const = default;
};

/// The triggers to bind for this shortcut; several where left and right keys do the same.
/// `functionKey` is the symbol of the key that stands in for Fn, such as "Control_R". Empty when
/// sway cannot bind it: two modifiers without another key, or a key without a known position.
std::vector<Trigger> triggersFor(const KeyCombination& shortcut, std::string_view functionKey);

/// The line of a configuration file that binds the same keys, if there is one. `set` variables are
/// replaced; included files are not searched, because sway does not return them.
std::optional<std::string> lineThatBinds(std::string_view configuration, const Trigger& trigger);

} // namespace orlune::sway
