#include "platform/linux/keys/PlaceSymbols.h"

#include <array>
#include <memory>
#include <xkbcommon/xkbcommon.h>

namespace orlune {

std::string symbolInPlace(std::uint32_t keycode) {
    struct Unref {
        void operator()(xkb_context* context) const { xkb_context_unref(context); }
        void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    };
    static const auto keymap = [] {
        const std::unique_ptr<xkb_context, Unref> context(
            xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES));
        const xkb_rule_names names{
            .rules = "evdev", .model = "pc105", .layout = "us", .variant = "", .options = ""};
        return std::unique_ptr<xkb_keymap, Unref>(
            context ? xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS)
                    : nullptr);
    }();
    const xkb_keysym_t* symbols = nullptr;
    std::array<char, 64> name{};
    if (keymap && xkb_keymap_key_get_syms_by_level(keymap.get(), keycode, 0, 0, &symbols) > 0) {
        xkb_keysym_get_name(symbols[0], name.data(), name.size());
    }
    return name.data();
}

} // namespace orlune
