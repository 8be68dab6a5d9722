#include "platform/linux/keys/KeyEdges.h"

namespace orlune {

namespace {

constexpr int missesOfARelease = 2;

} // namespace

ModifierFlags KeyEdges::flags() const {
    auto flags = ModifierFlags::none;
    for (const auto& [keycode, held] : held_) {
        flags |= held.role.flag;
    }
    return flags;
}

std::optional<KeyEvent> KeyEdges::press(Keycode keycode) {
    const auto role = roles_.roleOf(keycode);
    const auto virtualKey = roles_.virtualKeyOf(keycode);
    if (!virtualKey) {
        return std::nullopt; // a key that no keyboard of a Mac has
    }
    const auto [position, isNew] =
        held_.try_emplace(keycode, Held{.role = role, .virtualKey = *virtualKey});
    const auto& held = position->second;
    if (held.role.isModifier && !isNew) {
        return std::nullopt;
    }
    return KeyEvent{.type = held.role.isModifier ? KeyEvent::Type::flagsChanged
                                                 : KeyEvent::Type::keyDown,
                    .keyCode = held.virtualKey,
                    .modifierFlags = flags(),
                    .isARepeat = !isNew,
                    .nativeKeyCode = keycode};
}

std::optional<KeyEvent> KeyEdges::release(Keycode keycode) {
    const auto released = held_.extract(keycode);
    if (released.empty()) {
        return std::nullopt;
    }
    const auto& held = released.mapped();
    return KeyEvent{.type =
                        held.role.isModifier ? KeyEvent::Type::flagsChanged : KeyEvent::Type::keyUp,
                    .keyCode = held.virtualKey,
                    .modifierFlags = flags(),
                    .nativeKeyCode = keycode};
}

std::vector<KeyEdges::Edge> KeyEdges::releaseAll() {
    std::vector<Edge> edges;
    while (!held_.empty()) {
        const auto keycode = held_.begin()->first;
        edges.push_back({.keycode = keycode, .event = *release(keycode)});
    }
    return edges;
}

std::vector<KeyEdges::Edge> KeyEdges::releaseMissing(const KeysDown& keysDown) {
    std::vector<Keycode> missing;
    for (auto& [keycode, held] : held_) {
        held.misses = keysDown.test(keycode) ? 0 : held.misses + 1;
        if (held.misses >= missesOfARelease) {
            missing.push_back(keycode);
        }
    }
    std::vector<Edge> edges;
    for (const auto keycode : missing) {
        edges.push_back({.keycode = keycode, .event = *release(keycode)});
    }
    return edges;
}

} // namespace orlune
