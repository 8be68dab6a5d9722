// How the shortcut runs a dictation, with the texts that present the choice. Plain values, usable
// on any thread.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string_view>

namespace orlune {

enum class ActivationMode {
    /// The first press starts a dictation, the next press ends it.
    tapToToggle,
    /// The dictation runs while the shortcut is held.
    holdToSpeak,
};

/// In the order in which the settings page lists them.
inline constexpr std::array allActivationModes{ActivationMode::tapToToggle,
                                               ActivationMode::holdToSpeak};

/// The stored form, which is also the mode's identity in lists. Settings files contain it, so it
/// never changes.
std::string_view rawValue(ActivationMode mode);

/// Absent for every text that is not exactly one of the raw values.
std::optional<ActivationMode> activationModeFromRawValue(std::string_view rawValue);

std::string_view title(ActivationMode mode);
std::string_view description(ActivationMode mode);
/// The name of the mode's symbol.
std::string_view glyph(ActivationMode mode);

} // namespace orlune

template <>
struct std::hash<orlune::ActivationMode> {
    std::size_t operator()(orlune::ActivationMode mode) const noexcept {
        return std::hash<std::string_view>{}(orlune::rawValue(mode));
    }
};
