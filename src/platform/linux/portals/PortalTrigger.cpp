#include "platform/linux/portals/PortalTrigger.h"

#include "platform/linux/keys/PlaceSymbols.h"
#include "platform/linux/keys/VirtualKeyCodes.h"
#include "platform/linux/x11/ModifierSymbols.h"

#include <array>
#include <xkbcommon/xkbcommon.h>

namespace orlune {

namespace {

struct Modifier {
    ModifierFlags flag;
    const char* name;
    const char* key; ///< pressed by itself; a trigger names one of the two keys
};

constexpr std::array modifiers{
    Modifier{ModifierFlags::control, "CTRL", "Control_L"},
    Modifier{ModifierFlags::option, "ALT", "Alt_L"},
    Modifier{ModifierFlags::shift, "SHIFT", "Shift_L"},
    Modifier{ModifierFlags::command, "LOGO", "Super_L"},
};

std::optional<ModifierFlags> flagOf(const std::string& symbol) {
    return modifierFlagOf(xkb_keysym_from_name(symbol.c_str(), XKB_KEYSYM_NO_FLAGS));
}

} // namespace

std::optional<PortalTrigger> portalTriggerFor(const KeyCombination& shortcut,
                                              const std::string& functionKey) {
    const bool hasFunction = contains(shortcut.modifiers, ModifierFlags::function);
    const auto standIn = hasFunction ? flagOf(functionKey) : std::nullopt;
    if (!shortcut.virtualKey) {
        if (shortcut.modifiers == ModifierFlags::function && !functionKey.empty()) {
            return PortalTrigger{.text = functionKey, .isModifierOnly = standIn.has_value()};
        }
        for (const auto& [flag, name, key] : modifiers) {
            if (shortcut.modifiers == flag) {
                return PortalTrigger{.text = key, .isModifierOnly = true};
            }
        }
        return std::nullopt;
    }
    const auto keycode = keycodeForVirtualKey(*shortcut.virtualKey);
    const auto symbol = keycode ? symbolInPlace(*keycode) : std::string();
    const bool lacksStandIn =
        hasFunction && standIn.value_or(ModifierFlags::none) == ModifierFlags::none;
    if (symbol.empty() || lacksStandIn) {
        return std::nullopt;
    }
    std::string text;
    for (const auto& [flag, name, key] : modifiers) {
        if (contains(shortcut.modifiers, flag) || standIn == flag) {
            text += name;
            text += '+';
        }
    }
    return PortalTrigger{.text = text + symbol};
}

} // namespace orlune
