// Keys that are pressed together. A plain value.
#pragma once

#include "platform/ModifierFlags.h"

#include <cstdint>
#include <optional>

namespace orlune {

struct KeyCombination {
    /// The virtual key code of the main key; none for modifier keys only.
    std::optional<std::uint16_t> virtualKey;
    /// The modifiers that must be held with it.
    ModifierFlags modifiers = ModifierFlags::none;

    bool operator==(const KeyCombination&) const = default;
};

} // namespace orlune
