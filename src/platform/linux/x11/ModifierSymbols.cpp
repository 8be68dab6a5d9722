#include "platform/linux/x11/ModifierSymbols.h"

#include <X11/keysym.h>

#include <algorithm>

namespace orlune {

const std::array<ModifierSymbols, 4> modifierSymbols{{
    {ModifierFlags::control, XK_Control_L, XK_Control_R},
    {ModifierFlags::option, XK_Alt_L, XK_Alt_R},
    {ModifierFlags::shift, XK_Shift_L, XK_Shift_R},
    {ModifierFlags::command, XK_Super_L, XK_Super_R},
}};

const ModifierSymbols& symbolsOf(ModifierFlags flag) {
    return *std::ranges::find(modifierSymbols, flag, &ModifierSymbols::flag);
}

std::optional<ModifierFlags> modifierFlagOf(unsigned long symbol) {
    for (const auto& row : modifierSymbols) {
        if (symbol == row.left || symbol == row.right) {
            return row.flag;
        }
    }
    switch (symbol) {
    case XK_Meta_L:
    case XK_Meta_R:
        return ModifierFlags::option;
    case XK_Hyper_L:
    case XK_Hyper_R:
    case XK_ISO_Level3_Shift:
    case XK_ISO_Level5_Shift:
    case XK_Mode_switch:
        return ModifierFlags::none;
    default:
        return std::nullopt;
    }
}

} // namespace orlune
