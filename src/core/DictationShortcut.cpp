#include "core/DictationShortcut.h"

#include <boost/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace orlune {
namespace {

constexpr std::string_view keyCodeMember = "keyCode";
constexpr std::string_view modifiersMember = "modifiers";
constexpr std::string_view functionName = "fn";

// Members that a later version may add are skipped, nested up to this depth.
constexpr std::size_t nestingLimit = 512;

struct NamedKey {
    std::uint16_t keyCode;
    std::string_view name;
};

// Letters by their position on an ANSI keyboard. Digits and punctuation deliberately have no name.
constexpr std::array<NamedKey, 30> namedKeys{{
    {0, "A"},  {1, "S"},  {2, "D"},  {3, "F"},       {4, "H"},      {5, "G"},
    {6, "Z"},  {7, "X"},  {8, "C"},  {9, "V"},       {11, "B"},     {12, "Q"},
    {13, "W"}, {14, "E"}, {15, "R"}, {16, "Y"},      {17, "T"},     {31, "O"},
    {32, "U"}, {34, "I"}, {35, "P"}, {36, "Return"}, {37, "L"},     {38, "J"},
    {40, "K"}, {45, "N"}, {46, "M"}, {48, "Tab"},    {49, "Space"}, {51, "Delete"},
}};

// The integer that a JSON number stands for, when it fits the type exactly. The number may be
// written with a fraction or an exponent, because writers differ: 40.0 is the integer 40.
template <typename Integer>
std::optional<Integer> exactInteger(const boost::json::value& value) {
    if (const std::int64_t* number = value.if_int64()) {
        return std::in_range<Integer>(*number) ? std::optional(static_cast<Integer>(*number))
                                               : std::nullopt;
    }
    if (const std::uint64_t* number = value.if_uint64()) {
        return std::in_range<Integer>(*number) ? std::optional(static_cast<Integer>(*number))
                                               : std::nullopt;
    }
    if (const double* number = value.if_double()) {
        // The first value past the range is a power of two and thus exact; the last value in it may
        // not be.
        const double end = std::ldexp(1.0, std::numeric_limits<Integer>::digits);
        const bool isExact = *number >= 0 && *number < end && std::trunc(*number) == *number;
        return isExact ? std::optional(static_cast<Integer>(*number)) : std::nullopt;
    }
    return std::nullopt;
}

using Modifiers = DictationShortcut::Modifiers;

constexpr std::array<std::pair<ModifierFlags, Modifiers>, 5> flagsOfModifiers{{
    {ModifierFlags::command, Modifiers::command},
    {ModifierFlags::option, Modifiers::option},
    {ModifierFlags::control, Modifiers::control},
    {ModifierFlags::shift, Modifiers::shift},
    {ModifierFlags::function, Modifiers::function},
}};

} // namespace

DictationShortcut::Modifiers DictationShortcut::Modifiers::from(ModifierFlags flags) {
    Modifiers modifiers;
    for (const auto& [flag, member] : flagsOfModifiers) {
        if (orlune::contains(flags, flag)) {
            modifiers = modifiers.united(member);
        }
    }
    return modifiers;
}

ModifierFlags DictationShortcut::Modifiers::flags() const {
    auto flags = ModifierFlags::none;
    for (const auto& [flag, member] : flagsOfModifiers) {
        if (contains(member)) {
            flags |= flag;
        }
    }
    return flags;
}

std::string DictationShortcut::displayName() const {
    // The order in which modifiers are written, which is not that of the raw values.
    constexpr std::array<std::pair<Modifiers, std::string_view>, 5> names{{
        {Modifiers::control, "⌃"},
        {Modifiers::option, "⌥"},
        {Modifiers::shift, "⇧"},
        {Modifiers::command, "⌘"},
        {Modifiers::function, functionName},
    }};
    std::vector<std::string> parts;
    for (const auto& [member, name] : names) {
        if (modifiers.contains(member)) {
            parts.emplace_back(name);
        }
    }
    if (keyCode) {
        parts.push_back(keyName(*keyCode));
    }
    // Glyphs need no separator; a word among them does.
    const std::string_view separator = modifiers.contains(Modifiers::function) ? " " : "";
    std::string result;
    for (const std::string& part : parts) {
        if (!result.empty()) {
            result += separator;
        }
        result += part;
    }
    return result;
}

std::string DictationShortcut::keyName(std::uint16_t keyCode) {
    const auto named = std::ranges::find(namedKeys, keyCode, &NamedKey::keyCode);
    return named != namedKeys.end() ? std::string(named->name) : "Key " + std::to_string(keyCode);
}

std::string DictationShortcut::functionKeyHint(std::string_view standIn) const {
    if (standIn.empty() || !modifiers.contains(Modifiers::function)) {
        return {};
    }
    const bool isFnAlone = !keyCode && modifiers == Modifiers::function;
    return (isFnAlone ? "" : "fn is ") + std::string(standIn) + " on this keyboard";
}

std::string DictationShortcut::encode() const {
    boost::json::object object;
    if (keyCode) {
        object.emplace(keyCodeMember, *keyCode);
    }
    object.emplace(modifiersMember, modifiers.rawValue());
    return boost::json::serialize(object);
}

std::optional<DictationShortcut> DictationShortcut::decode(std::string_view json) {
    boost::system::error_code error;
    const boost::json::value document =
        boost::json::parse(json, error, {}, {.max_depth = nestingLimit});
    const boost::json::object* const object = error ? nullptr : document.if_object();
    const boost::json::value* const modifiers =
        object != nullptr ? object->if_contains(modifiersMember) : nullptr;
    if (modifiers == nullptr) {
        return std::nullopt;
    }
    const std::optional<std::uint64_t> rawValue = exactInteger<std::uint64_t>(*modifiers);
    if (!rawValue) {
        return std::nullopt;
    }
    DictationShortcut shortcut{.keyCode = std::nullopt, .modifiers = Modifiers(*rawValue)};
    const boost::json::value* const keyCode = object->if_contains(keyCodeMember);
    if (keyCode != nullptr && !keyCode->is_null()) {
        shortcut.keyCode = exactInteger<std::uint16_t>(*keyCode);
        if (!shortcut.keyCode) {
            return std::nullopt;
        }
    }
    return shortcut;
}

} // namespace orlune
