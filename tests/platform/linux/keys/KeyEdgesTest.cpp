#include "platform/linux/keys/KeyEdges.h"

#include "tests/support/KeyEventWords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orlune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

namespace keycode {
constexpr KeyEdges::Keycode a = 38;
constexpr KeyEdges::Keycode leftControl = 37;
constexpr KeyEdges::Keycode leftShift = 50;
constexpr KeyEdges::Keycode rightShift = 62;
constexpr KeyEdges::Keycode capsLock = 66;
constexpr KeyEdges::Keycode rightControl = 105;
constexpr KeyEdges::Keycode wakeUp = 151;
constexpr KeyEdges::Keycode calculator = 148;
} // namespace keycode

/// A PC keyboard whose right Control stands in for Fn.
KeyEdges pcKeyboard() {
    KeyRoles roles;
    roles.assign(keycode::leftControl, {.isModifier = true, .flag = ModifierFlags::control});
    roles.assign(keycode::leftShift, {.isModifier = true, .flag = ModifierFlags::shift});
    roles.assign(keycode::rightShift, {.isModifier = true, .flag = ModifierFlags::shift});
    roles.assign(keycode::capsLock, {.isModifier = true});
    roles.assign(keycode::rightControl, {.isModifier = true, .flag = ModifierFlags::function});
    roles.assign(keycode::wakeUp, {.isModifier = true, .flag = ModifierFlags::function});
    KeyEdges edges;
    edges.setRoles(roles);
    return edges;
}

std::string words(const std::optional<KeyEvent>& event) {
    return event ? describe(*event) : "-";
}

struct Move {
    bool isDown;
    KeyEdges::Keycode key;
    std::string event;
};
struct Sequence {
    std::string name;
    std::vector<Move> moves;
};

class KeyEdgesTest : public testing::TestWithParam<Sequence> {};

TEST_P(KeyEdgesTest, GivesTheseEvents) {
    auto edges = pcKeyboard();
    for (const auto& [isDown, key, event] : GetParam().moves) {
        EXPECT_EQ(words(isDown ? edges.press(key) : edges.release(key)), event);
    }
}

constexpr bool down = true;
constexpr bool up = false;

INSTANTIATE_TEST_SUITE_P(
    , KeyEdgesTest,
    testing::Values(
        Sequence{"aKeyGoesDownAndUp", {{down, keycode::a, "down 0"}, {up, keycode::a, "up 0"}}},
        Sequence{"aSecondPressIsARepeat",
                 {{down, keycode::a, "down 0"},
                  {down, keycode::a, "again 0"},
                  {up, keycode::a, "up 0"},
                  {down, keycode::a, "down 0"}}},
        Sequence{"aModifierDoesNotRepeat",
                 {{down, keycode::leftShift, "flags 56 shift"}, {down, keycode::leftShift, "-"}}},
        Sequence{"aReleaseWithoutAPressIsNothing",
                 {{up, keycode::a, "-"}, {up, keycode::leftShift, "-"}}},
        Sequence{"theStandInIsFnAloneAndNeverControl",
                 {{down, keycode::rightControl, "flags 63 fn"},
                  {down, keycode::leftControl, "flags 59 control+fn"},
                  {up, keycode::rightControl, "flags 63 control"}}},
        Sequence{"aRealFnKeyCountsBesideTheStandIn",
                 {{down, keycode::wakeUp, "flags 63 fn"}, {up, keycode::wakeUp, "flags 63"}}},
        Sequence{"oneOfTwoShiftsKeepsTheFlag",
                 {{down, keycode::leftShift, "flags 56 shift"},
                  {down, keycode::rightShift, "flags 60 shift"},
                  {up, keycode::leftShift, "flags 56 shift"},
                  {up, keycode::rightShift, "flags 60"}}},
        Sequence{"aModifierWithoutAFlagChangesNone",
                 {{down, keycode::leftShift, "flags 56 shift"},
                  {down, keycode::capsLock, "flags 57 shift"}}},
        Sequence{"aKeyMayOutliveItsModifier",
                 {{down, keycode::leftShift, "flags 56 shift"},
                  {down, keycode::a, "down 0 shift"},
                  {up, keycode::leftShift, "flags 56"},
                  {up, keycode::a, "up 0"}}},
        Sequence{"aKeyWithoutACodeIsNotTold",
                 {{down, keycode::calculator, "-"}, {up, keycode::calculator, "-"}}}),
    [](const auto& row) { return row.param.name; });

std::vector<std::string> words(const std::vector<KeyEdges::Edge>& edges) {
    std::vector<std::string> texts;
    for (const auto& edge : edges) {
        texts.push_back(words(edge.event));
    }
    return texts;
}

TEST(HeldKeysTest, AKeyIsLetGoAsWhatItWasPressedEvenWhenTheLayoutChangedMeanwhile) {
    auto edges = pcKeyboard();
    edges.press(keycode::rightControl);
    edges.setRoles({});
    EXPECT_EQ(words(edges.press(keycode::a)), "down 0 fn");
    EXPECT_EQ(words(edges.release(keycode::rightControl)), "flags 63");
}

TEST(HeldKeysTest, AKeyMissedTwiceInARowHasComeUp) {
    auto edges = pcKeyboard();
    edges.press(keycode::rightControl);
    edges.press(keycode::a);
    KeyEdges::KeysDown onlyA;
    onlyA.set(keycode::a);
    auto both = onlyA;
    both.set(keycode::rightControl);

    EXPECT_THAT(words(edges.releaseMissing(onlyA)), IsEmpty());
    EXPECT_THAT(words(edges.releaseMissing(both)), IsEmpty());
    EXPECT_THAT(words(edges.releaseMissing(onlyA)), IsEmpty());
    EXPECT_THAT(words(edges.releaseMissing(onlyA)), ElementsAre("flags 63"));
    EXPECT_TRUE(edges.isDown(keycode::a));
}

TEST(HeldKeysTest, LettingGoOfAllLeavesNothingDown) {
    auto edges = pcKeyboard();
    edges.press(keycode::rightControl);
    edges.press(keycode::a);
    EXPECT_THAT(words(edges.releaseAll()), ElementsAre("up 0 fn", "flags 63"));
    EXPECT_FALSE(edges.isAnyDown());
    EXPECT_EQ(words(edges.release(keycode::a)), "-");
}

} // namespace
} // namespace orlune
