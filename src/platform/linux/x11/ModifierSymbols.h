// Which symbols of an X keyboard are modifiers, and which ones: Super is Command, Alt is Option.
// Pure functions, usable on any thread.
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

/// Control, Option, Shift, Command: the order in which keys are pressed.
extern const std::array<ModifierSymbols, 4> modifierSymbols;

const ModifierSymbols& symbolsOf(ModifierFlags flag);

/// The flag of a key that is a modifier by its symbol, whatever the modifier map says; an empty
/// flag for AltGr and similar keys, because they write characters. None for other keys, and for
/// locks.
std::optional<ModifierFlags> modifierFlagOf(unsigned long symbol);

} // namespace orlune
