#include "dictation/FnPushToTalkMonitor.h"

#include "tests/support/DictationHarness.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace orlune {
namespace {

using Modifiers = DictationShortcut::Modifiers;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint16_t spaceKey = 49;
constexpr std::uint16_t escapeKey = 53;
constexpr std::uint16_t otherKey = 0;

constexpr auto none = ModifierFlags::none;
constexpr auto fn = ModifierFlags::function;
constexpr auto shift = ModifierFlags::shift;
constexpr auto controlOption = ModifierFlags::control | ModifierFlags::option;
/// Caps Lock, the numeric pad and a device-specific bit.
constexpr auto noise = static_cast<ModifierFlags>((1ULL << 16) | (1ULL << 21) | 1ULL);

KeyEvent flags(ModifierFlags now) {
    return {.type = KeyEvent::Type::flagsChanged, .keyCode = 63, .modifierFlags = now};
}
KeyEvent down(std::uint16_t key, ModifierFlags held = none, bool isARepeat = false) {
    return {KeyEvent::Type::keyDown, key, held, isARepeat};
}
KeyEvent repeat(std::uint16_t key, ModifierFlags held = none) {
    return down(key, held, /*isARepeat=*/true);
}
KeyEvent up(std::uint16_t key, ModifierFlags held = none) {
    return {.type = KeyEvent::Type::keyUp, .keyCode = key, .modifierFlags = held};
}

const DictationShortcut fnAlone;
const DictationShortcut controlOptionSpace{spaceKey, {Modifiers::control, Modifiers::option}};

/// The controller with its monitor; the service never answers on its own.
class Watched : public DictationHarness {
  public:
    explicit Watched(const DictationShortcut& shortcut = fnAlone,
                     ActivationMode mode = ActivationMode::tapToToggle) {
        state().setShortcut(shortcut);
        state().setActivationMode(mode);
        monitor->start();
    }

    /// The phase after another program received the event.
    std::string elsewhere(const KeyEvent& event) {
        platform.keyEventMonitors.sendElsewhere(event);
        platform.runUntilIdle();
        return kind();
    }
    /// The phase just before one of our windows would receive the event, and whether it is
    /// swallowed.
    std::string here(const KeyEvent& event) {
        const auto answer = platform.keyEventMonitors.sendToOwnWindow(event);
        const auto now = kind() + (answer == KeyEventAnswer::swallow ? ", swallowed" : "");
        platform.runUntilIdle();
        return now;
    }
    std::string kind() { return phase().substr(0, phase().find(' ')); }

    void reach(const std::string& wanted) {
        if (wanted == "reviewing") {
            dictate("please write a test");
        } else if (wanted == "success") {
            reach("reviewing");
            confirm();
        } else if (wanted == "failure") {
            begin();
            cancel();
        } else if (wanted != "idle") {
            begin();
        }
        if (wanted == "processing") {
            end();
        }
        ASSERT_EQ(kind(), wanted);
    }

    std::shared_ptr<FnPushToTalkMonitor> monitor = FnPushToTalkMonitor::make(
        state().shared_from_this(), platform.keyEventMonitors, platform.queue);
};

struct Step {
    KeyEvent event;
    std::string phase;
};
struct Story {
    std::string name;
    DictationShortcut shortcut;
    ActivationMode mode;
    std::vector<Step> steps;
};
constexpr auto hold = ActivationMode::holdToSpeak;
constexpr auto tap = ActivationMode::tapToToggle;

class StoryTest : public testing::TestWithParam<Story> {};

TEST_P(StoryTest, HasThesePhasesWhereverTheKeysGo) {
    const auto& story = GetParam();
    for (const bool isElsewhere : {true, false}) {
        Watched watched(story.shortcut, story.mode);
        for (std::size_t index = 0; index < story.steps.size(); ++index) {
            const auto& [event, phase] = story.steps[index];
            if (!isElsewhere) {
                watched.here(event);
            }
            EXPECT_EQ(isElsewhere ? watched.elsewhere(event) : watched.kind(), phase)
                << "step " << index << (isElsewhere ? " elsewhere" : " here");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    , StoryTest,
    testing::Values(
        Story{"holdingFnSpeaksAndOtherModifiersDoNotMatter",
              fnAlone,
              hold,
              {{flags(fn), "listening"},
               {flags(fn | shift), "listening"},
               {flags(fn | noise), "listening"},
               {flags(shift), "processing"},
               {flags(none), "processing"}}},
        Story{"aShiftHeldBeforeFnDoesNotMatterEither",
              fnAlone,
              hold,
              {{flags(shift), "idle"}, {flags(shift | fn), "listening"}, {flags(fn), "listening"}}},
        Story{"tappingFnTogglesAndDoesNothingWhileProcessing",
              fnAlone,
              tap,
              {{flags(fn), "listening"},
               {flags(none), "listening"},
               {flags(fn), "processing"},
               {flags(none), "processing"},
               {flags(fn), "processing"}}},
        Story{"keysDoNotDisturbAModifierShortcut",
              fnAlone,
              hold,
              {{flags(fn), "listening"},
               {down(otherKey, fn), "listening"},
               {up(otherKey, fn), "listening"}}},
        Story{"severalModifiersAreHeldTogether",
              {std::nullopt, {Modifiers::control, Modifiers::option}},
              hold,
              {{flags(ModifierFlags::control), "idle"},
               {flags(controlOption), "listening"},
               {flags(ModifierFlags::option), "processing"}}},
        Story{"aKeyWithExactlyItsModifiersSpeaksOnceWhileItRepeats",
              controlOptionSpace,
              hold,
              {{flags(controlOption), "idle"},
               {down(spaceKey, controlOption | noise), "listening"},
               {repeat(spaceKey, controlOption), "listening"},
               {flags(none), "listening"},
               {up(spaceKey), "processing"}}},
        Story{"furtherModifiersKeepAKeyFromMatching",
              controlOptionSpace,
              hold,
              {{down(spaceKey, controlOption | shift), "idle"},
               {up(spaceKey, controlOption), "idle"},
               {down(spaceKey, ModifierFlags::control), "idle"}}},
        Story{"aRepeatIsNoPress",
              controlOptionSpace,
              tap,
              {{repeat(spaceKey, controlOption), "idle"}}},
        Story{"tappingAKeyTogglesAndItsReleaseDoesNothing",
              controlOptionSpace,
              tap,
              {{down(spaceKey, controlOption), "listening"},
               {up(spaceKey), "listening"},
               {up(otherKey), "listening"},
               {down(spaceKey, controlOption), "processing"}}},
        Story{"theKeyOfTheCodeZeroIsAKey",
              {otherKey, {}},
              hold,
              {{flags(none), "idle"}, {down(otherKey), "listening"}, {up(otherKey), "processing"}}},
        Story{"escapeCancelsHoweverItIsPressed",
              fnAlone,
              hold,
              {{down(escapeKey), "idle"},
               {flags(fn), "listening"},
               {repeat(escapeKey, fn | shift), "failure"},
               {flags(none), "failure"}}}),
    [](const auto& row) { return row.param.name; });

TEST(FnPushToTalkMonitorTest, holdingBecomesTappingWhereNoReleaseIsReported) {
    Watched dictation(fnAlone, hold);
    dictation.platform.keyEventMonitors.hasReleases = false;
    EXPECT_EQ(dictation.elsewhere(flags(fn)), "listening");
    EXPECT_EQ(dictation.elsewhere(flags(none)), "listening");
    EXPECT_EQ(dictation.elsewhere(flags(fn)), "processing");
}

struct Press {
    ActivationMode mode;
    std::string phase;
    std::string next;
};

class PressTest : public testing::TestWithParam<Press> {};

TEST_P(PressTest, ActsOnThePhase) {
    Watched watched(fnAlone, GetParam().mode);
    watched.reach(GetParam().phase);
    EXPECT_EQ(watched.elsewhere(flags(fn)), GetParam().next);
}

INSTANTIATE_TEST_SUITE_P(
    , PressTest,
    testing::Values(Press{tap, "idle", "listening"}, Press{tap, "listening", "processing"},
                    Press{tap, "processing", "processing"}, Press{tap, "reviewing", "success"},
                    Press{tap, "success", "listening"}, Press{tap, "failure", "listening"},
                    Press{hold, "idle", "listening"}, Press{hold, "listening", "listening"},
                    Press{hold, "processing", "processing"}, Press{hold, "reviewing", "success"},
                    Press{hold, "success", "listening"}, Press{hold, "failure", "listening"}),
    [](const auto& row) {
        return std::string(row.param.mode == tap ? "tapWhile_" : "holdWhile_") + row.param.phase;
    });

TEST(FnPushToTalkMonitorTest, SwallowsItsOwnKeysInOurWindowsAndNoOthers) {
    Watched watched(controlOptionSpace);
    EXPECT_EQ(watched.here(down(escapeKey)), "idle, swallowed");
    EXPECT_EQ(watched.here(up(escapeKey)), "idle, swallowed");
    EXPECT_EQ(watched.here(down(spaceKey)), "idle, swallowed");
    EXPECT_EQ(watched.here(repeat(spaceKey, shift)), "idle, swallowed");
    EXPECT_EQ(watched.here(up(spaceKey)), "idle, swallowed");
    EXPECT_EQ(watched.here(down(otherKey, controlOption)), "idle");
    EXPECT_EQ(watched.here(flags(controlOption)), "idle");
    EXPECT_EQ(watched.here(down(spaceKey, controlOption)), "processing, swallowed")
        << "in our own windows the key acts at once";

    watched.state().setShortcut(fnAlone);
    EXPECT_EQ(watched.here(down(spaceKey)), "listening") << "read anew at each event";
}

TEST(FnPushToTalkMonitorTest, NothingHappensWhileAShortcutIsRecordedAndWhatIsHeldIsForgotten) {
    for (const auto& shortcut : {fnAlone, controlOptionSpace}) {
        Watched watched(shortcut, hold);
        const auto press = shortcut.keyCode ? down(spaceKey, controlOption) : flags(fn);
        const auto release = shortcut.keyCode ? up(spaceKey) : flags(none);
        EXPECT_EQ(watched.elsewhere(press), "listening");
        watched.state().setCapturingShortcut(true);
        EXPECT_EQ(watched.here(up(spaceKey)), "listening") << "a key-up changes nothing";
        EXPECT_EQ(watched.here(down(escapeKey)), "listening");
        EXPECT_EQ(watched.here(shortcut.keyCode ? repeat(spaceKey) : flags(fn)), "listening");
        watched.state().setCapturingShortcut(false);
        EXPECT_EQ(watched.elsewhere(release), "listening");
    }
}

TEST(FnPushToTalkMonitorTest, AKeyUpWhileRecordingDoesNotForgetTheShortcut) {
    Watched watched(controlOptionSpace, hold);
    watched.elsewhere(down(spaceKey, controlOption));
    watched.state().setCapturingShortcut(true);
    watched.elsewhere(up(spaceKey));
    watched.state().setCapturingShortcut(false);
    EXPECT_EQ(watched.elsewhere(up(spaceKey)), "processing");
}

TEST(FnPushToTalkMonitorTest, AChangedModeActsAtTheNextEvent) {
    Watched watched(fnAlone, tap);
    watched.elsewhere(flags(fn));
    watched.state().setActivationMode(hold);
    EXPECT_EQ(watched.elsewhere(flags(none)), "processing");
}

TEST(FnPushToTalkMonitorTest, OtherProgramsKeysAreHandledInALaterTurn) {
    Watched watched;
    watched.platform.keyEventMonitors.sendElsewhere(flags(fn));
    EXPECT_EQ(watched.kind(), "idle");
    watched.platform.runUntilIdle();
    EXPECT_EQ(watched.kind(), "listening");
}

TEST(FnPushToTalkMonitorTest, WatchesFromTheStartToItsEndInOrder) {
    DictationHarness harness;
    auto monitor =
        FnPushToTalkMonitor::make(harness.state().shared_from_this(),
                                  harness.platform.keyEventMonitors, harness.platform.queue);
    EXPECT_THAT(harness.takeEvents(), IsEmpty());
    monitor->start();
    monitor->start();
    EXPECT_THAT(harness.takeEvents(),
                ElementsAre("watch global 4096", "watch local 4096", "watch global 1024",
                            "watch local 1024", "watch global 2048", "watch local 2048"));
    harness.platform.keyEventMonitors.sendElsewhere(flags(fn));
    monitor.reset();
    harness.platform.runUntilIdle();
    EXPECT_EQ(harness.phase(), "idle") << "an event outlived the monitor";
    EXPECT_THAT(harness.takeEvents(),
                ElementsAre("unwatch global 4096", "unwatch local 4096", "unwatch global 1024",
                            "unwatch local 1024", "unwatch global 2048", "unwatch local 2048"));
}

TEST(FnPushToTalkMonitorTest, LetsEverythingThroughOnceTheStateIsGone) {
    MemoryPlatform platform;
    auto state = AppState::make(platform.bundle());
    const auto monitor =
        FnPushToTalkMonitor::make(state, platform.keyEventMonitors, platform.queue);
    monitor->start();
    const std::weak_ptr weakState = state;
    state.reset();
    EXPECT_TRUE(weakState.expired()) << "the monitor keeps the state alive";
    EXPECT_EQ(platform.keyEventMonitors.sendToOwnWindow(down(escapeKey)), KeyEventAnswer::passOn);
    EXPECT_EQ(platform.keyEventMonitors.sendToOwnWindow(flags(fn)), KeyEventAnswer::passOn);
}

} // namespace
} // namespace orlune
