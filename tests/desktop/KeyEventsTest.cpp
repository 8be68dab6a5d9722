#include "platform/linux/keys/DesktopKeyEvents.h"
#include "platform/linux/paste/XTestKeyPoster.h"
#include "platform/memory/MemoryLog.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/OtherClient.h"
#include "tests/support/KeyEventWords.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWindow>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace orlune {
namespace {

using desktop::Keyboard;
using desktop::KeyRecorder;
using desktop::OtherClient;
using desktop::Program;
using desktop::waitUntil;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace keycode = desktop::keycode;

constexpr auto everything =
    KeyEventMask::flagsChanged | KeyEventMask::keyDown | KeyEventMask::keyUp;

class KeyEventsDesktopTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(keyEvents.reasonForUnavailability(), "");
        monitors.push_back(keyEvents.addGlobalMonitor(
            everything, [this](const KeyEvent& event) { seen.push_back(describe(event)); }));
    }

    void tap(Keyboard::Keycode key) {
        keyboard.press(key);
        keyboard.release(key);
    }
    /// All events so far; waits until the server has processed everything sent.
    const std::vector<std::string>& seenSoFar() {
        keyEvents.willPost();
        keyEvents.didPost();
        return seen;
    }
    bool waitFor(const std::string& event) {
        return waitUntil([&] { return std::ranges::find(seen, event) != seen.end(); });
    }

    Keyboard keyboard;
    MemoryLog log;
    DesktopKeyEvents keyEvents{
        {.functionKeyName = "Control_R",
         .ownWindowHasKeyboard = [] { return QGuiApplication::focusWindow() != nullptr; }},
        log};
    std::vector<std::string> seen;
    std::vector<KeyEventMonitor> monitors;
};

TEST_F(KeyEventsDesktopTest, ArriveByThemselvesWhileAnotherProgramHasTheKeyboard) {
    KeyRecorder program("Editor");
    keyboard.press(keycode::rightControl);
    keyboard.press(keycode::shift);
    keyboard.release(keycode::shift);
    keyboard.release(keycode::rightControl);
    EXPECT_TRUE(waitFor("flags 63"));
    EXPECT_THAT(seen, ElementsAre("flags 63 fn", "flags 56 shift+fn", "flags 56 fn", "flags 63"));
    EXPECT_EQ(program.keys().size(), 4U) << "the other program gets its keys all the same";
}

TEST_F(KeyEventsDesktopTest, KeepTheOrderOfTheKeysWhenModifiersAreReleasedFirst) {
    keyboard.press(keycode::control);
    keyboard.press(keycode::alt);
    keyboard.press(keycode::space);
    keyboard.release(keycode::alt);
    keyboard.release(keycode::control);
    keyboard.release(keycode::space);
    EXPECT_THAT(seenSoFar(),
                ElementsAre("flags 59 control", "flags 58 control+option", "down 49 control+option",
                            "flags 58 control", "flags 59", "up 49"));
}

TEST_F(KeyEventsDesktopTest, AHeldKeyIsOnePress) {
    desktop::run({"xset", "r", "rate", "50", "50"});
    KeyRecorder program("Editor");
    keyboard.press(keycode::space);
    EXPECT_TRUE(waitUntil([&] { return program.keys().size() > 3; })) << "the server repeats";
    EXPECT_THAT(seenSoFar(), ElementsAre("down 49"));
    OtherClient().type(keycode::space, /*isDown=*/true); // as servers of remote desktops repeat
    EXPECT_THAT(seenSoFar(), ElementsAre("down 49", "again 49"));
    desktop::run({"xset", "r", "rate"});
}

TEST_F(KeyEventsDesktopTest, ArriveDuringAnotherClientsGrab) {
    OtherClient client;
    ASSERT_TRUE(client.grabKeyboard());
    tap(keycode::rightControl);
    EXPECT_THAT(seenSoFar(), ElementsAre("flags 63 fn", "flags 63"));
}

TEST_F(KeyEventsDesktopTest, OfOtherProgramsCountAsTheUsersAndOurOwnAreNeverSeen) {
    OtherClient().type(keycode::a, /*isDown=*/true);
    OtherClient().type(keycode::a, /*isDown=*/false);
    EXPECT_THAT(seenSoFar(), ElementsAre("down 0", "up 0"));
    seen.clear();

    bool isPosted = false;
    XTestKeyPoster poster(
        {}, {.willPost = [this] { keyEvents.willPost(); },
             .didPost =
                 [&] {
                     keyEvents.didPost();
                     isPosted = true;
                 },
             .onModifiersReleased = [this](const auto& keys) { keyEvents.countAsReleased(keys); }});
    keyboard.press(keycode::rightControl);
    for (const bool isDown : {true, false}) {
        poster.post(EventTapLocation::hidEventTap,
                    {.virtualKey = 9, .isKeyDown = isDown, .flags = ModifierFlags::command});
    }
    tap(keycode::escape); // the user's keys in between are seen
    EXPECT_TRUE(waitUntil([&] { return isPosted; }));
    keyboard.release(keycode::rightControl);
    EXPECT_THAT(seenSoFar(), ElementsAre("flags 63 fn", "flags 63", "down 53", "up 53"));
    tap(keycode::rightControl);
    EXPECT_THAT(seenSoFar(), Contains("flags 63 fn").Times(2)) << "the next press is a press";
}

TEST_F(KeyEventsDesktopTest, AMissedReleaseIsDetected) {
    OtherClient client;
    client.type(keycode::rightControl, /*isDown=*/true);
    EXPECT_THAT(seenSoFar(), ElementsAre("flags 63 fn"));
    keyEvents.willPost();
    client.type(keycode::rightControl, /*isDown=*/false); // no longer observed
    keyEvents.didPost();
    EXPECT_THAT(seen, ElementsAre("flags 63 fn"));
    EXPECT_TRUE(waitFor("flags 63"));
}

TEST_F(KeyEventsDesktopTest, TheStandInMovesWithItsSymbolAndStaysWhenNoKeyHasIt) {
    const auto tapUntil = [this](Keyboard::Keycode key, const std::string& event) {
        return waitUntil([&] {
            tap(key);
            return testing::Value(seenSoFar(), Contains(event));
        });
    };
    keyboard.useLayout({"us,ru", "-option", "ctrl:swap_rwin_rctl"}, /*active=*/1);
    EXPECT_TRUE(tapUntil(keycode::rightSuper, "flags 63 fn"));
    EXPECT_TRUE(tapUntil(keycode::rightControl, "flags 62 command"));

    keyboard.useLayout({"us", "-option", "", "-option", "compose:rctrl"});
    EXPECT_TRUE(tapUntil(keycode::rightControl, "down 62")) << "it now composes accents";
    seen.clear();
    tap(keycode::rightSuper);
    EXPECT_THAT(seenSoFar(), ElementsAre("flags 63 fn", "flags 63"));
}

TEST_F(KeyEventsDesktopTest, EscapeIsTheKeyWithItsSymbol) {
    const auto tapUntil = [this](Keyboard::Keycode key, const std::string& event) {
        return waitUntil([&] {
            tap(key);
            return testing::Value(seenSoFar(), Contains(event));
        });
    };
    const auto isEscape = [this](Keyboard::Keycode key) {
        seen.clear();
        tap(key);
        return seenSoFar() == std::vector<std::string>{"down 53", "up 53"};
    };
    keyboard.useLayout({"us,ru", "-option", "caps:swapescape"}, /*active=*/1);
    EXPECT_TRUE(tapUntil(keycode::capsLock, "down 53"));
    seen.clear();
    tap(keycode::escape);
    EXPECT_THAT(seenSoFar(), ElementsAre("flags 57", "flags 57"));

    keyboard.useLayout({"us", "-option", "", "-option", "caps:escape"});
    EXPECT_TRUE(tapUntil(keycode::escape, "down 53"));
    EXPECT_TRUE(isEscape(keycode::capsLock)) << "both are";

    keyboard.useLayout({"us", "-option", ""});
    EXPECT_TRUE(tapUntil(keycode::capsLock, "flags 57"));
    EXPECT_TRUE(isEscape(keycode::escape));
}

TEST_F(KeyEventsDesktopTest, AKeyboardThatIsPluggedInAgainIsSeen) {
    OtherClient client;
    client.unplugKeyboard();
    tap(keycode::a);
    EXPECT_THAT(seenSoFar(), IsEmpty());
    client.plugKeyboardIn();
    tap(keycode::rightControl);
    EXPECT_THAT(seenSoFar(), ElementsAre("flags 63 fn", "flags 63"));
}

TEST_F(KeyEventsDesktopTest, ALockReleasesAllKeysAndReportsNone) {
    keyboard.press(keycode::rightControl);
    keyEvents.setLocked(true);
    EXPECT_THAT(seen, ElementsAre("flags 63 fn", "flags 63"));
    tap(keycode::a);
    keyboard.press(keycode::shift);
    EXPECT_EQ(seenSoFar().size(), 2U) << "a password is nobody's business";
    keyEvents.setLocked(false);
    keyboard.release(keycode::shift);
    keyboard.release(keycode::rightControl);
    EXPECT_EQ(seenSoFar().size(), 2U);
    tap(keycode::a);
    EXPECT_THAT(seenSoFar(), ElementsAre("flags 63 fn", "flags 63", "down 0", "up 0"));
}

TEST_F(KeyEventsDesktopTest, EndWithTheirHandle) {
    monitors.clear();
    tap(keycode::a);
    EXPECT_THAT(seenSoFar(), IsEmpty());
}

/// One of our own windows, with the keyboard focus.
class OwnWindow final : public QWindow {
  public:
    OwnWindow() {
        resize(200, 100);
        show();
        requestActivate();
        EXPECT_TRUE(waitUntil([this] { return QGuiApplication::focusWindow() == this; }));
    }
    std::vector<std::string> received;

  protected:
    void keyPressEvent(QKeyEvent* event) override { write("down ", event); }
    void keyReleaseEvent(QKeyEvent* event) override { write("up ", event); }

  private:
    void write(const std::string& what, const QKeyEvent* event) {
        received.push_back(what + std::to_string(event->nativeScanCode()));
    }
};

TEST_F(KeyEventsDesktopTest, InOurWindowsGoOnlyToLocalMonitorsWhichMaySwallowThem) {
    desktop::run({"xset", "r", "rate", "50", "50"});
    std::vector<std::string> local;
    monitors.push_back(keyEvents.addLocalMonitor(everything, [&](const KeyEvent& event) {
        local.push_back(describe(event));
        return event.keyCode == 53 ? KeyEventAnswer::swallow : KeyEventAnswer::passOn;
    }));
    OwnWindow window;
    keyboard.press(keycode::escape);
    EXPECT_TRUE(waitUntil([&] { return local.size() > 3; })) << "repeats are told here";
    keyboard.release(keycode::escape);
    tap(keycode::rightControl);
    tap(keycode::a);
    EXPECT_TRUE(waitUntil([&] { return window.received.size() == 4; }));
    EXPECT_THAT(window.received, ElementsAre("down 105", "up 105", "down 38", "up 38"));
    EXPECT_THAT(seen, IsEmpty());
    EXPECT_EQ(local.front(), "down 53");
    EXPECT_THAT(local, Contains("again 53"));
    EXPECT_THAT(local, Contains("up 53").Times(1));
    EXPECT_THAT(local, Contains("flags 63 fn").Times(1));
    EXPECT_THAT(local, Contains("down 0").Times(1));
    desktop::run({"xset", "r", "rate"});
}

TEST_F(KeyEventsDesktopTest, AKeyHeldWhileTheFocusLeavesOurWindowIsReleasedElsewhere) {
    std::vector<std::string> local;
    monitors.push_back(keyEvents.addLocalMonitor(everything, [&](const KeyEvent& event) {
        local.push_back(describe(event));
        return KeyEventAnswer::passOn;
    }));
    {
        OwnWindow window;
        keyboard.press(keycode::rightControl);
        EXPECT_TRUE(waitUntil([&] { return !local.empty(); }));
    }
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::focusWindow() == nullptr; }));
    keyboard.release(keycode::rightControl);
    EXPECT_TRUE(waitFor("flags 63"));
    EXPECT_THAT(local, ElementsAre("flags 63 fn"));
}

TEST(KeyEventsAvailabilityTest, IsDeniedWithAReasonWhereNobodyMayTypeAndWhereNoDisplayIs) {
    Program server({"Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-extension", "XTEST"});
    MemoryLog log;
    const auto reasonOn = [&](const std::string& name) {
        DesktopKeyEvents keyEvents({.functionKeyName = "Control_R",
                                    .ownWindowHasKeyboard = [] { return false; },
                                    .displayName = name},
                                   log);
        const auto monitor = keyEvents.addGlobalMonitor(everything, [](const KeyEvent&) {});
        return keyEvents.reasonForUnavailability();
    };
    const auto name = ":" + server.firstLine();
    EXPECT_THAT(reasonOn(name), HasSubstr("XTEST"));
    server.kill();
    EXPECT_THAT(reasonOn(name), HasSubstr("cannot reach an X display"));
}

TEST(FunctionKeyTest, AnUnknownNameIsReportedOnceAndLeavesEveryKeyWhatItIs) {
    Keyboard keyboard;
    MemoryLog log;
    DesktopKeyEvents keyEvents(
        {.functionKeyName = "Contrl_R", .ownWindowHasKeyboard = [] { return false; }}, log);
    std::vector<std::string> seen;
    const auto monitor = keyEvents.addGlobalMonitor(
        everything, [&](const KeyEvent& event) { seen.push_back(describe(event)); });
    keyboard.press(keycode::rightControl);
    EXPECT_TRUE(waitUntil([&] { return !seen.empty(); }));
    EXPECT_THAT(seen, ElementsAre("flags 62 control"));
    ASSERT_EQ(log.entries().size(), 1U);
}

} // namespace
} // namespace orlune
