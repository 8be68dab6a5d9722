#include "core/DictationShortcut.h"

#include "core/ActivationMode.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace orlune {

// How a failed expectation prints the values.
void PrintTo(const DictationShortcut& shortcut, std::ostream* out) {
    *out << shortcut.encode();
}

namespace {

using Modifiers = DictationShortcut::Modifiers;

constexpr std::uint64_t everyBit = ~std::uint64_t{0};

TEST(DictationShortcut, IsShownAndStored) {
    struct Row {
        const char* name;
        DictationShortcut shortcut;
        std::string displayName;
        std::string json;
    };
    const Row rows[] = {
        {"the default is the Fn key", {}, "fn", R"({"modifiers":16})"},
        {"glyphs stand side by side",
         {49, {Modifiers::option, Modifiers::control}},
         "⌃⌥Space",
         R"({"keyCode":49,"modifiers":6})"},
        {"Shift comes before Command",
         {40, {Modifiers::command, Modifiers::shift}},
         "⇧⌘K",
         R"({"keyCode":40,"modifiers":9})"},
        {"fn needs spaces",
         {2, {Modifiers::control, Modifiers::function}},
         "⌃ fn D",
         R"({"keyCode":2,"modifiers":20})"},
        {"fn and a key", {49, Modifiers::function}, "fn Space", R"({"keyCode":49,"modifiers":16})"},
        {"Command and a key",
         {49, Modifiers::command},
         "⌘Space",
         R"({"keyCode":49,"modifiers":1})"},
        {"all glyphs in order", {std::nullopt, Modifiers(31)}, "⌃ ⌥ ⇧ ⌘ fn", R"({"modifiers":31})"},
        {"nothing", {std::nullopt, {}}, "", R"({"modifiers":0})"},
        {"key 0 is the A key", {0, Modifiers::option}, "⌥A", R"({"keyCode":0,"modifiers":2})"},
        {"the largest values",
         {65535, Modifiers(everyBit)},
         "⌃ ⌥ ⇧ ⌘ fn Key 65535",
         R"({"keyCode":65535,"modifiers":18446744073709551615})"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.shortcut.displayName(), row.displayName);
        EXPECT_EQ(row.shortcut.encode(), row.json);
        EXPECT_EQ(DictationShortcut::decode(row.json), row.shortcut);
    }
}

TEST(DictationShortcut, NamesThirtyKeys) {
    std::string letters;
    std::vector<std::string> words;
    for (std::uint16_t code = 0; code < 200; ++code) {
        const std::string name = DictationShortcut{code, {}}.displayName();
        if (name.size() == 1) {
            letters += name;
        } else if (!name.starts_with("Key ")) {
            words.push_back(name);
        } else {
            EXPECT_EQ(name, "Key " + std::to_string(code));
        }
    }
    EXPECT_EQ(letters, "ASDFHGZXCVBQWERYTOUIPLJKNM");
    EXPECT_EQ(words, (std::vector<std::string>{"Return", "Tab", "Space", "Delete"}));
    EXPECT_EQ((DictationShortcut{10, {}}.displayName()), "Key 10");
    EXPECT_EQ((DictationShortcut{46, {}}.displayName()), "M");
}

TEST(DictationShortcut, ReadsWhateverMeansTheSame) {
    const DictationShortcut key{40, Modifiers(9)};
    const DictationShortcut keyless{std::nullopt, Modifiers(9)};
    const std::pair<std::string, DictationShortcut> rows[] = {
        {R"( {"modifiers" : 9 , "keyCode" : 40} )", key},
        {R"({"keyCode":40.0,"modifiers":0.9e1})", key},
        {R"({"keyCode":4e1,"modifiers":9})", key},
        {R"({"keyCode":null,"modifiers":9})", keyless},
        {R"({"modifiers":9,"title":{"a":[true,"é"]},"keycode":"x"})", keyless},
        {R"({"keyCode":7,"modifiers":1,"keyCode":40,"modifiers":9})", key},
        {R"({"modifiers":9,"deep":)" + std::string(500, '[') + std::string(500, ']') + "}",
         keyless},
        {R"({"keyCode":-0,"modifiers":1e19})", {0, Modifiers(10'000'000'000'000'000'000U)}},
    };
    for (const auto& [json, shortcut] : rows) {
        EXPECT_EQ(DictationShortcut::decode(json), shortcut) << json;
    }
}

TEST(DictationShortcut, RefusesEverythingElse) {
    const std::string rows[] = {"",
                                "null",
                                "[]",
                                "16",
                                R"({"keyCode": 40})",
                                R"({"modifiers":null})",
                                R"({"modifiers":"16"})",
                                R"({"modifiers":true})",
                                R"({"modifiers":-1})",
                                R"({"modifiers":16.5})",
                                R"({"modifiers":18446744073709551616})",
                                R"({"modifiers":18446744073709551615.0})",
                                R"({"modifiers":1e400})",
                                R"({"modifiers":{"rawValue":16}})",
                                R"({"keyCode":65536,"modifiers":16})",
                                R"({"keyCode":65536.0,"modifiers":16})",
                                R"({"keyCode":-1,"modifiers":16})",
                                R"({"keyCode":-0.5,"modifiers":16})",
                                R"({"keyCode":40.5,"modifiers":16})",
                                R"({"keyCode":"40","modifiers":16})",
                                R"({"keyCode":false,"modifiers":16})",
                                R"({"keyCode":[],"modifiers":16})",
                                R"({"modifiers":16}x)",
                                R"({"modifiers":16)",
                                R"({'modifiers':16})",
                                "{\"modifiers\":16,\"\xFF\":0}",
                                std::string(100'000, '[')};
    for (const std::string& json : rows) {
        EXPECT_EQ(DictationShortcut::decode(json), std::nullopt) << json.substr(0, 80);
    }
}

TEST(DictationShortcut, ComparesByValue) {
    const DictationShortcut shortcut{0, Modifiers::command};
    EXPECT_NE(shortcut, (DictationShortcut{std::nullopt, Modifiers::command}));
    EXPECT_NE(shortcut, (DictationShortcut{1, Modifiers::command}));
    EXPECT_NE(shortcut, (DictationShortcut{0, Modifiers(std::uint64_t{1} | 32)}));
}

TEST(Modifiers, AreTakenFromTheFlagsOfAnEvent) {
    constexpr auto bit = [](int index) {
        return static_cast<ModifierFlags>(std::uint64_t{1} << index);
    };
    EXPECT_EQ(Modifiers::from(bit(17)), Modifiers::shift);
    EXPECT_EQ(Modifiers::from(bit(18)), Modifiers::control);
    EXPECT_EQ(Modifiers::from(bit(19)), Modifiers::option);
    EXPECT_EQ(Modifiers::from(bit(20)), Modifiers::command);
    EXPECT_EQ(Modifiers::from(bit(23)), Modifiers::function);
    EXPECT_EQ(Modifiers::from(static_cast<ModifierFlags>(everyBit)), Modifiers(31));
    for (const int other : {0, 1, 3, 5, 16, 21, 22, 24, 63}) {
        EXPECT_TRUE(Modifiers::from(bit(other)).isEmpty()) << other;
    }
}

TEST(Modifiers, AreASet) {
    constexpr Modifiers pair{Modifiers::command, Modifiers::shift};
    static_assert(pair.rawValue() == 9);
    EXPECT_TRUE(pair.contains(Modifiers::shift));
    EXPECT_FALSE(pair.contains(Modifiers::option));
    EXPECT_FALSE(pair.contains({Modifiers::shift, Modifiers::option}));
    EXPECT_TRUE(Modifiers::shift.isSubset(pair));
    EXPECT_TRUE(pair.isSuperset(Modifiers::shift));
    EXPECT_FALSE(Modifiers::shift.isSuperset(pair));
    EXPECT_TRUE(pair.isSubset(pair));
    EXPECT_EQ(pair.united(Modifiers::option), Modifiers(11));
    EXPECT_EQ(pair.intersection({Modifiers::shift, Modifiers::option}), Modifiers::shift);
    EXPECT_EQ(pair.subtracting({Modifiers::shift, Modifiers::option}), Modifiers::command);
    EXPECT_EQ(pair.symmetricDifference({Modifiers::shift, Modifiers::option}), Modifiers(3));
    EXPECT_TRUE(Modifiers{}.isEmpty());
    EXPECT_TRUE(pair.contains({}));
}

TEST(ActivationMode, HasStoredAndShownTexts) {
    std::string texts;
    for (const ActivationMode mode : allActivationModes) {
        for (const auto text : {rawValue(mode), title(mode), description(mode), glyph(mode)}) {
            texts.append(text).append("\n");
        }
    }
    EXPECT_EQ(texts, "tapToToggle\nTap to toggle\nPress once to start, once to finish\n"
                     "cursorarrow.click\n"
                     "holdToSpeak\nHold to speak\nHold while speaking, release to finish\n"
                     "hand.tap\n");
    for (const ActivationMode mode : allActivationModes) {
        EXPECT_EQ(activationModeFromRawValue(rawValue(mode)), mode);
        EXPECT_EQ(std::hash<ActivationMode>{}(mode), std::hash<std::string_view>{}(rawValue(mode)));
    }
    EXPECT_EQ(activationModeFromRawValue("HoldToSpeak"), std::nullopt);
    EXPECT_EQ(activationModeFromRawValue(""), std::nullopt);
}

} // namespace
} // namespace orlune
