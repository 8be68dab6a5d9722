// The key, the modifier keys, or both that start and end a dictation. A plain value, usable on any
// thread; the default value is the Fn key by itself. Text that does not decode gives no value, and
// the caller falls back to the default.
#pragma once

#include "platform/KeyCombination.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace orlune {

struct DictationShortcut {
    /// A set of modifier keys. Settings files contain the raw values of the members, which never
    /// change. Bits that no member names are kept and take part in every operation.
    class Modifiers {
      public:
        static const Modifiers command;
        static const Modifiers option;
        static const Modifiers control;
        static const Modifiers shift;
        static const Modifiers function;

        constexpr Modifiers() = default;
        explicit constexpr Modifiers(std::uint64_t rawValue) : rawValue_(rawValue) {}
        constexpr Modifiers(std::initializer_list<Modifiers> members) {
            for (const Modifiers member : members) {
                rawValue_ |= member.rawValue_;
            }
        }

        /// The five modifier keys among the flags of a keyboard event; all other flags are ignored.
        static Modifiers from(ModifierFlags flags);
        ModifierFlags flags() const;

        constexpr std::uint64_t rawValue() const { return rawValue_; }
        constexpr bool isEmpty() const { return rawValue_ == 0; }
        /// Whether this set contains all of `members`.
        constexpr bool contains(Modifiers members) const { return members.isSubset(*this); }
        constexpr bool isSubset(Modifiers other) const { return subtracting(other).isEmpty(); }
        constexpr bool isSuperset(Modifiers other) const { return other.isSubset(*this); }

        constexpr Modifiers united(Modifiers other) const {
            return Modifiers(rawValue_ | other.rawValue_);
        }
        constexpr Modifiers intersection(Modifiers other) const {
            return Modifiers(rawValue_ & other.rawValue_);
        }
        constexpr Modifiers subtracting(Modifiers other) const {
            return Modifiers(rawValue_ & ~other.rawValue_);
        }
        constexpr Modifiers symmetricDifference(Modifiers other) const {
            return Modifiers(rawValue_ ^ other.rawValue_);
        }

        constexpr bool operator==(const Modifiers&) const = default;

      private:
        std::uint64_t rawValue_ = 0;
    };

    /// The Mac's virtual key code of the main key, 0 (the A key) to 65535; absent for a shortcut
    /// that has only modifier keys.
    std::optional<std::uint16_t> keyCode;
    /// The modifier keys that must be held.
    Modifiers modifiers = Modifiers::function;

    /// The shortcut as shown to the user, such as "⇧⌘K" or "fn Space"; empty for an empty shortcut.
    std::string displayName() const;
    /// The same keys as the platform names them.
    KeyCombination keyCombination() const {
        return {.virtualKey = keyCode, .modifiers = modifiers.flags()};
    }
    /// Where Fn is on a keyboard on which `standIn` counts as Fn, such as "Right Control on this
    /// keyboard"; empty for a shortcut without Fn, and when no key stands in for Fn.
    std::string functionKeyHint(std::string_view standIn) const;

    /// A JSON object with the members "keyCode" (left out when absent) and "modifiers".
    std::string encode() const;

    /// Reads what `encode` writes. "keyCode" may be missing or null, "modifiers" is required. Both
    /// must be numbers whose value is an integer in the field's range, however it is written: 40,
    /// 40.0 and 4e1 are the same number. Of a repeated member the last one counts; members with
    /// other names are ignored. Anything else gives no value.
    static std::optional<DictationShortcut> decode(std::string_view json);

    bool operator==(const DictationShortcut&) const = default;

  private:
    static std::string keyName(std::uint16_t keyCode);
};

inline constexpr DictationShortcut::Modifiers DictationShortcut::Modifiers::command{1U};
inline constexpr DictationShortcut::Modifiers DictationShortcut::Modifiers::option{2U};
inline constexpr DictationShortcut::Modifiers DictationShortcut::Modifiers::control{4U};
inline constexpr DictationShortcut::Modifiers DictationShortcut::Modifiers::shift{8U};
inline constexpr DictationShortcut::Modifiers DictationShortcut::Modifiers::function{16U};

} // namespace orlune
