// A snapshot of the X server's keyboard: the symbols of each key, the modifier keys, and which keys
// are down. A plain value; read anew for each use, since layouts change.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

struct _XDisplay;

namespace orlune {

class KeyboardLayout {
  public:
    using Keycode = std::uint8_t;
    using Keysym = unsigned long;

    /// None when the server does not answer. `display` belongs to an `XConnection`.
    static std::optional<KeyboardLayout> read(_XDisplay* display);

    /// The key that gives this symbol without modifiers: in the active layout, else in the first
    /// other layout that has one.
    std::optional<Keycode> keycodeOf(Keysym symbol) const;
    /// The symbol of a key without modifiers in the active layout.
    Keysym symbolOf(Keycode keycode) const;

    bool isDown(Keycode keycode) const { return keys_.at(keycode).isDown; }
    /// The modifier keys that are down. Caps Lock is not included: what it switches stays as it is.
    std::vector<Keycode> heldModifiers() const;

  private:
    struct Key {
        /// The unshifted symbol of each layout (X: group) of the key, at least one.
        std::vector<Keysym> symbols;
        bool isModifier = false;
        bool isDown = false;
    };

    Keysym symbolIn(std::size_t group, const Key& key) const;

    std::vector<Key> keys_; ///< by keycode, 256 entries
    std::size_t activeGroup_ = 0;
    std::size_t groupCount_ = 1;
};

} // namespace orlune
