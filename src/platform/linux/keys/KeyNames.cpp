#include "platform/linux/keys/KeyNames.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orlune {

namespace {

/// What is printed on keys whose names differ from it.
constexpr auto printed = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"ISO_Level3_Shift", "AltGr"},
    {"Mode_switch", "AltGr"},
    {"Multi_key", "Compose"},
    {"Print", "Print Screen"},
    {"Prior", "Page Up"},
    {"Next", "Page Down"},
    {"space", "Space"},
});

} // namespace

bool isFunctionKey(std::string_view name) {
    return name == "XF86Fn" || name == "XF86WakeUp"; // older ThinkPads report Fn as the latter
}

std::string keyInWords(std::string_view name) {
    if (const auto* found =
            std::ranges::find(printed, name, [](const auto& row) { return row.first; });
        found != printed.end()) {
        return std::string(found->second);
    }
    std::string words;
    if (name.ends_with("_L")) {
        words = "Left ";
        name.remove_suffix(2);
    } else if (name.ends_with("_R")) {
        words = "Right ";
        name.remove_suffix(2);
    }
    words += name;
    std::ranges::replace(words, '_', ' ');
    return words;
}

} // namespace orlune
