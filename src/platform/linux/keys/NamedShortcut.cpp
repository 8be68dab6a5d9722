#include "platform/linux/keys/NamedShortcut.h"

#include "platform/linux/keys/PlaceSymbols.h"
#include "platform/linux/keys/VirtualKeyCodes.h"
#include "platform/linux/x11/ModifierSymbols.h"

#include <array>
#include <xkbcommon/xkbcommon.h>

namespace orlune {

namespace {

struct Modifier {
    ModifierFlags flag;
    const char* portalName;
    const char* gnomeName;
    const char* key; ///< pressed by itself; only one of the two keys can be named
};

constexpr std::array modifiers{
    Modifier{ModifierFlags::control, "CTRL", "Control", "Control_L"},
    Modifier{ModifierFlags::option, "ALT", "Alt", "Alt_L"},
    Modifier{ModifierFlags::shift, "SHIFT", "Shift", "Shift_L"},
    Modifier{ModifierFlags::command, "LOGO", "Super", "Super_L"},
};

std::optional<ModifierFlags> flagOf(const std::string& symbol) {
    return modifierFlagOf(xkb_keysym_from_name(symbol.c_str(), XKB_KEYSYM_NO_FLAGS));
}

} // namespace

std::optional<NamedShortcut> namedShortcutFor(const KeyCombination& shortcut,
                                              const std::string& functionKey) {
    const bool hasFunction = contains(shortcut.modifiers, ModifierFlags::function);
    bool isStandInAModifier = false;
    auto standIn = ModifierFlags::none;
    if (const auto flag = flagOf(functionKey); flag && hasFunction) {
        isStandInAModifier = true;
        standIn = *flag;
    }
    if (!shortcut.virtualKey) {
        if (shortcut.modifiers == ModifierFlags::function && !functionKey.empty()) {
            return NamedShortcut{.key = functionKey, .isModifierOnly = isStandInAModifier};
        }
        for (const auto& modifier : modifiers) {
            if (shortcut.modifiers == modifier.flag) {
                return NamedShortcut{.key = modifier.key, .isModifierOnly = true};
            }
        }
        return std::nullopt;
    }
    const auto keycode = keycodeForVirtualKey(*shortcut.virtualKey);
    const auto key = keycode ? symbolInPlace(*keycode) : std::string();
    if (key.empty() || (hasFunction && standIn == ModifierFlags::none)) {
        return std::nullopt;
    }
    return NamedShortcut{.modifiers = (shortcut.modifiers & ~ModifierFlags::function) | standIn,
                         .key = key};
}

std::string portalTrigger(const NamedShortcut& shortcut) {
    std::string text;
    for (const auto& modifier : modifiers) {
        if (contains(shortcut.modifiers, modifier.flag)) {
            text += modifier.portalName;
            text += '+';
        }
    }
    return text + shortcut.key;
}

std::string gnomeAccelerator(const NamedShortcut& shortcut) {
    std::string text;
    for (const auto& modifier : modifiers) {
        if (contains(shortcut.modifiers, modifier.flag)) {
            text += '<';
            text += modifier.gnomeName;
            text += '>';
        }
    }
    return text + shortcut.key;
}

} // namespace orlune
