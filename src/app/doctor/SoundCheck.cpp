#include "app/doctor/SoundCheck.h"

#include <cmath>

namespace orlune {

namespace {

using State = Finding::State;

Finding microphone(const SoundFacts& facts) {
    constexpr auto name = "microphone";
    const auto& source = facts.source;
    if (source.empty()) {
        return {name, State::fail, "there is none",
                "Plug one in, or choose one in the sound settings: \"pactl list short sources\" "
                "must list one that is not a .monitor."};
    }
    if (!facts.recordingError.empty()) {
        return {name, State::fail, source + " cannot be opened: " + facts.recordingError,
                "Choose another microphone in the sound settings."};
    }
    if (!facts.hasDelivered) {
        return {name, State::fail, source + " delivers nothing",
                "Plug it in again, or choose another one in the sound settings."};
    }
    if (facts.isMuted) {
        return {name, State::warning, source + " is muted", "Unmute it in the sound settings."};
    }
    if (facts.peak <= 0) {
        return {name, State::warning, source + " delivers silence",
                "Speak while this runs. If it stays silent, it is switched off or not the one you "
                "speak into."};
    }
    const auto decibels = std::lround(20 * std::log10(facts.peak));
    return {name, State::ok, source + ", peak " + std::to_string(decibels) + " dB"};
}

} // namespace

Findings checkSound(const SoundFacts& facts) {
    constexpr auto name = "sound server";
    if (!facts.error.empty()) {
        return {{name, State::fail, "none answers: " + facts.error,
                 "Start PipeWire (with pipewire-pulse) or PulseAudio."}};
    }
    return {{name, State::ok, facts.server}, microphone(facts)};
}

} // namespace orlune
