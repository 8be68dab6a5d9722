// Somebody at the settings of a running Orlune, with hands on the keyboard and on the pointer.
#pragma once

#include "tests/desktop/Desktop.h"
#include "tests/desktop/RunningOrlune.h"
#include "tests/desktop/ScreenReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orlune::desktop {

namespace keycode {
inline constexpr Keyboard::Keycode escape = 9;
inline constexpr Keyboard::Keycode tab = 23;
inline constexpr Keyboard::Keycode a = 38;
inline constexpr Keyboard::Keycode k = 45;
inline constexpr Keyboard::Keycode shift = 50;
inline constexpr Keyboard::Keycode space = 65;
inline constexpr Keyboard::Keycode fn = 105; // right Control stands in for it
inline constexpr Keyboard::Keycode left = 113;
inline constexpr Keyboard::Keycode right = 114;
inline constexpr Keyboard::Keycode super = 133;
} // namespace keycode

class SettingsUser : public testing::Test {
  protected:
    using Keys = std::vector<Keyboard::Keycode>;

    SettingsUser() { openSettings(); }

    void openSettings() {
        EXPECT_TRUE(orlune.does("settings"));
        EXPECT_TRUE(waitUntil([] { return activeWindowTitle() == "Orlune Settings"; }));
        EXPECT_TRUE(reader.shows("Intent Check"));
    }

    /// One after the other, and up again in the opposite order.
    void press(const Keys& keys) {
        for (const auto key : keys) {
            keyboard.press(key);
        }
        for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
            keyboard.release(*key);
        }
    }

    std::string focusedName() {
        const auto element = reader.focused();
        return element ? element->name : "";
    }
    /// Presses Tab, and waits until it has had its effect. Whatever was pressed before had its own.
    void moveOn() {
        const auto before = focusedName();
        press({keycode::tab});
        ASSERT_TRUE(waitUntil([&] { return focusedName() != before; })) << before;
    }
    void moveTo(const std::string& name) {
        for (int count = 0; focusedName() != name; ++count) {
            ASSERT_LT(count, 20) << name << " is not reached, but " << focusedName();
            ASSERT_NO_FATAL_FAILURE(moveOn());
        }
    }

    /// Speaks, and ends.
    void dictate(const Keys& shortcut = {keycode::fn}) {
        press(shortcut);
        ASSERT_TRUE(orlune.reaches("listening"));
        press(shortcut);
    }
    void abandon() {
        press({keycode::escape});
        ASSERT_TRUE(orlune.reaches("idle"));
    }
    void expectNothingFrom(const Keys& shortcut) {
        press(shortcut);
        moveOn();
        EXPECT_EQ(orlune.phase(), "idle");
    }

    const ScreenReader reader; // before the program: it looks for one when it starts
    Keyboard keyboard;
    RunningOrlune orlune;
};

} // namespace orlune::desktop
