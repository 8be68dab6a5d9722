#include "platform/linux/shortcuts/SwayKeys.h"

#include "platform/linux/keys/PlaceSymbols.h"
#include "platform/linux/keys/VirtualKeyCodes.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

namespace orlune::sway {

namespace {

struct Modifier {
    ModifierFlags flag;
    const char* name;
    const char* left;
    const char* right;
};

constexpr std::array modifiers{
    Modifier{ModifierFlags::control, "Ctrl", "Control_L", "Control_R"},
    Modifier{ModifierFlags::option, "Mod1", "Alt_L", "Alt_R"},
    Modifier{ModifierFlags::shift, "Shift", "Shift_L", "Shift_R"},
    Modifier{ModifierFlags::command, "Mod4", "Super_L", "Super_R"},
};

/// The modifier that a key with this symbol sets while held, for a shortcut of Fn and another key.
const Modifier* modifierOf(std::string_view symbol) {
    const auto* const found = std::ranges::find_if(modifiers, [&](const Modifier& modifier) {
        return symbol == modifier.left || symbol == modifier.right;
    });
    return found == modifiers.end() ? nullptr : found;
}

std::vector<Trigger> triggersForModifiers(ModifierFlags flags, std::string_view functionKey) {
    if (flags == ModifierFlags::function) {
        return {{.keys = std::string(functionKey)}};
    }
    const auto* const only = std::ranges::find(modifiers, flags, &Modifier::flag);
    if (only == modifiers.end()) {
        return {};
    }
    return {{.keys = only->left}, {.keys = only->right}};
}

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char letter) { return std::tolower(letter); });
    return text;
}

/// Other names of the same modifiers.
std::string canonical(const std::string& part) {
    static const std::map<std::string, std::string> names{
        {"control", "ctrl"}, {"alt", "mod1"}, {"super", "mod4"}, {"logo", "mod4"}};
    const auto text = lowered(part);
    const auto found = names.find(text);
    return found == names.end() ? text : found->second;
}

std::set<std::string> partsOf(const std::string& keys) {
    std::set<std::string> parts;
    std::istringstream stream(keys);
    for (std::string part; std::getline(stream, part, '+');) {
        parts.insert(canonical(part));
    }
    return parts;
}

/// The same keys by symbols, for a trigger by position.
std::set<std::string> partsBySymbol(const Trigger& trigger) {
    auto parts = partsOf(trigger.keys);
    if (trigger.isCode) {
        const auto code = trigger.keys.substr(trigger.keys.rfind('+') + 1);
        parts.erase(code);
        parts.insert(lowered(symbolInPlace(static_cast<std::uint32_t>(std::atoi(code.c_str())))));
    }
    return parts;
}

/// Replaces each variable, the longest name first, because $mod is a part of $modifier.
std::string filledIn(std::string text, const std::map<std::string, std::string>& variables) {
    for (auto variable = variables.rbegin(); variable != variables.rend(); ++variable) {
        for (auto place = text.find(variable->first); place != std::string::npos;
             place = text.find(variable->first, place + variable->second.size())) {
            text.replace(place, variable->first.size(), variable->second);
        }
    }
    return text;
}

} // namespace

std::vector<Trigger> triggersFor(const KeyCombination& shortcut, std::string_view functionKey) {
    if (!shortcut.virtualKey) {
        return triggersForModifiers(shortcut.modifiers, functionKey);
    }
    const auto keycode = keycodeForVirtualKey(*shortcut.virtualKey);
    std::string keys;
    for (const auto& modifier : modifiers) {
        const bool standsIn = contains(shortcut.modifiers, ModifierFlags::function)
                              && modifierOf(functionKey) == &modifier;
        if (standsIn || contains(shortcut.modifiers, modifier.flag)) {
            keys += modifier.name;
            keys += '+';
        }
    }
    const bool lacksFunctionKey =
        contains(shortcut.modifiers, ModifierFlags::function) && !modifierOf(functionKey);
    if (!keycode || lacksFunctionKey) {
        return {};
    }
    return {{.isCode = true, .keys = keys + std::to_string(*keycode)}};
}

std::optional<std::string> lineThatBinds(std::string_view configuration, const Trigger& trigger) {
    const auto byCode = trigger.isCode ? partsOf(trigger.keys) : std::set<std::string>();
    const auto bySymbol = partsBySymbol(trigger);
    std::map<std::string, std::string> variables;
    std::istringstream lines{std::string(configuration)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(filledIn(line, variables));
        std::string command;
        std::string keys;
        words >> command;
        while (words >> keys && keys.starts_with("--")) {
        }
        if (command == "set" && keys.starts_with('$')) {
            std::string value;
            words >> value;
            variables[keys] = value;
        } else if ((command == "bindsym" && partsOf(keys) == bySymbol)
                   || (command == "bindcode" && trigger.isCode && partsOf(keys) == byCode)) {
            return line;
        }
    }
    return std::nullopt;
}

} // namespace orlune::sway
