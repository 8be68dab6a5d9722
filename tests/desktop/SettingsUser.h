// A user of the settings of a running Orlune, with keyboard and pointer.
#pragma once

#include "tests/desktop/Desktop.h"
#include "tests/desktop/RunningOrlune.h"
#include "tests/desktop/ScreenReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orlune::desktop {

class SettingsUser : public testing::Test {
  protected:
    using Keys = std::vector<Keyboard::Keycode>;

    SettingsUser() {
        orlune.start();
        openSettings();
    }

    void openSettings() {
        EXPECT_TRUE(orlune.does("settings"));
        EXPECT_TRUE(waitUntil([] { return activeWindowTitle() == "Orlune Settings"; }));
        EXPECT_TRUE(reader.shows("Intent Check"));
    }

    std::string focusedName() {
        const auto element = reader.focused();
        return element ? element->name : "";
    }
    /// Presses Tab, and waits for its effect. Earlier key presses must have had theirs.
    void moveOn() {
        const auto before = focusedName();
        keyboard.tap({keycode::tab});
        ASSERT_TRUE(waitUntil([&] { return focusedName() != before; })) << before;
    }
    void moveTo(const std::string& name) {
        for (int count = 0; focusedName() != name; ++count) {
            ASSERT_LT(count, 20) << name << " is not reached, but " << focusedName();
            ASSERT_NO_FATAL_FAILURE(moveOn());
        }
    }

    /// Speaks, and ends the recording.
    void dictate(const Keys& shortcut = {keycode::fn}) {
        keyboard.tap(shortcut);
        ASSERT_TRUE(orlune.reaches("listening"));
        keyboard.tap(shortcut);
    }
    void abandon() {
        keyboard.tap({keycode::escape});
        ASSERT_TRUE(orlune.reaches("idle"));
    }
    void expectNothingFrom(const Keys& shortcut) {
        keyboard.tap(shortcut);
        moveOn();
        EXPECT_EQ(orlune.phase(), "idle");
    }

    const ScreenReader reader; // before the program, which checks for one when it starts
    Keyboard keyboard;
    RunningOrlune orlune;
};

} // namespace orlune::desktop
