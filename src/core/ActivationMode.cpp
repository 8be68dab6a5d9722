#include "core/ActivationMode.h"

#include <cstddef>

namespace orlune {
namespace {

struct Texts {
    std::string_view rawValue;
    std::string_view title;
    std::string_view description;
    std::string_view glyph;
};

// One row per mode, in the order of the declaration.
constexpr std::array texts{
    Texts{"tapToToggle", "Tap to toggle", "Press once to start, once to finish",
          "cursorarrow.click"},
    Texts{"holdToSpeak", "Hold to speak", "Hold while speaking, release to finish", "hand.tap"},
};
static_assert(texts.size() == allActivationModes.size());

constexpr const Texts& textsOf(ActivationMode mode) {
    return texts.at(static_cast<std::size_t>(mode));
}

} // namespace

std::string_view rawValue(ActivationMode mode) {
    return textsOf(mode).rawValue;
}

std::optional<ActivationMode> activationModeFromRawValue(std::string_view rawValue) {
    for (const ActivationMode mode : allActivationModes) {
        if (orlune::rawValue(mode) == rawValue) {
            return mode;
        }
    }
    return std::nullopt;
}

std::string_view title(ActivationMode mode) {
    return textsOf(mode).title;
}

std::string_view description(ActivationMode mode) {
    return textsOf(mode).description;
}

std::string_view glyph(ActivationMode mode) {
    return textsOf(mode).glyph;
}

} // namespace orlune
