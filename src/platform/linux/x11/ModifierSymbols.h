// Which symbols of an X keyboard modify others, and as what: Super is Command, Alt is Option. Pure
// functions, from any thread.
#pragma once

#include "platform/ModifierFlags.h"

#include <array>
#include <optional>

namespace orlune {

struct ModifierSymbols {
    ModifierFlags flag;
    unsigned long left;
    unsigned long right;
};

/// Control, Option, Shift, Command: the order in which a chord is pressed.
extern const std::array<ModifierSymbols, 4> modifierSymbols;

const ModifierSymbols& symbolsOf(ModifierFlags flag);

/// The flag of a key that modifies by what it is, whatever the modifier map says; no flag for AltGr
/// and its like, because they write characters. None for other keys, and for locks.
std::optional<ModifierFlags> modifierFlagOf(unsigned long symbol);

} // namespace orlune
