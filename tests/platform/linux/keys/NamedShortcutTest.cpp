// Shortcuts as desktops write them that bind symbols.
#include "platform/linux/keys/NamedShortcut.h"

#include <gtest/gtest.h>

namespace orlune {
namespace {

TEST(NamedShortcutTest, isWrittenAsEachDesktopWantsIt) {
    constexpr std::uint16_t f9 = 101;
    constexpr std::uint16_t k = 40;
    constexpr std::uint16_t space = 49;
    constexpr auto function = ModifierFlags::function;
    const struct {
        KeyCombination shortcut;
        std::string portal; ///< empty when it cannot be written
        std::string gnome;
        bool isModifierOnly = false;
    } rows[] = {
        {{f9, ModifierFlags::none}, "F9", "F9"},
        {{space, ModifierFlags::control | ModifierFlags::option},
         "CTRL+ALT+space",
         "<Control><Alt>space"},
        {{k, ModifierFlags::shift | ModifierFlags::command}, "SHIFT+LOGO+k", "<Shift><Super>k"},
        {{space, function}, "CTRL+space", "<Control>space"},
        {{std::nullopt, function}, "Control_R", "Control_R", true},
        {{std::nullopt, ModifierFlags::option}, "Alt_L", "Alt_L", true},
        {{std::nullopt, ModifierFlags::option | ModifierFlags::shift}, "", ""},
    };
    for (const auto& [shortcut, portal, gnome, isModifierOnly] : rows) {
        const auto named = namedShortcutFor(shortcut, "Control_R");
        EXPECT_EQ(named ? portalTrigger(*named) : "", portal);
        EXPECT_EQ(named ? gnomeAccelerator(*named) : "", gnome);
        EXPECT_EQ(named && named->isModifierOnly, isModifierOnly) << portal;
    }
    EXPECT_FALSE(namedShortcutFor({std::nullopt, function}, ""));
    EXPECT_EQ(namedShortcutFor({std::nullopt, function}, "F8")->key, "F8");
}

} // namespace
} // namespace orlune
