// Records a new shortcut in the running program from real key presses.
#include "tests/desktop/BellListener.h"
#include "tests/desktop/SettingsUser.h"

#include <gmock/gmock.h>

namespace orlune {
namespace {

namespace keycode = desktop::keycode;
using desktop::Keyboard;
using desktop::waitUntil;

class Recorder : public desktop::SettingsUser {
  protected:
    testing::AssertionResult says(const std::string& title) {
        return reader.shows("Shortcut, " + title)
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "the shortcut is " << orlune.status("shortcut");
    }
    /// Arms it with the pointer.
    void arm(const std::string& shortcut) {
        click(reader, "Shortcut, " + shortcut);
        ASSERT_TRUE(says("press shortcut"));
    }
    void expectDictationBy(const Keys& shortcut) {
        keyboard.tap(shortcut);
        ASSERT_TRUE(orlune.reaches("listening"));
        abandon();
    }
};

TEST_F(Recorder, MakesTheKeysThatArePressedTheShortcut) {
    const Keys fn{keycode::fn};
    const Keys shiftSuperK{keycode::shift, keycode::super, keycode::k};
    const Keys fnSpace{keycode::fn, keycode::space};

    arm("fn");
    keyboard.tap(fn);
    ASSERT_TRUE(says("fn")) << "the one that it was";
    expectNothingFrom({});

    arm("fn");
    keyboard.tap(shiftSuperK);
    ASSERT_TRUE(says("⇧⌘k"));
    expectNothingFrom(fn);
    expectDictationBy(shiftSuperK);

    arm("⇧⌘k");
    keyboard.tap(fn);
    ASSERT_TRUE(says("fn"));
    expectNothingFrom(shiftSuperK);
    expectDictationBy(fn);

    // The recorder keeps the focus, and Space presses it.
    moveTo("Shortcut, fn");
    keyboard.tap({keycode::space});
    ASSERT_TRUE(says("press shortcut"));
    keyboard.tap(fnSpace);
    ASSERT_TRUE(says("fn space"));
    EXPECT_EQ(orlune.phase(), "idle");
    expectDictationBy(fnSpace);
    EXPECT_TRUE(says("fn space"));
    expectNothingFrom(fn);

    orlune.restart();
    expectDictationBy(fnSpace);
}

TEST_F(Recorder, RefusesAKeyWithoutAModifierWithOneBeep) {
    desktop::run({"xset", "r", "rate", "50", "50"});
    desktop::BellListener bell;
    arm("fn");
    keyboard.press(keycode::a);
    EXPECT_TRUE(waitUntil([&] { return bell.count() > 0; }));
    EXPECT_TRUE(says("press shortcut"));
    keyboard.press(keycode::shift); // the key has been repeating since its press
    EXPECT_TRUE(says("⇧a"));
    EXPECT_EQ(bell.count(), 1);
    desktop::run({"xset", "r", "rate"});
}

TEST_F(Recorder, KeepsTheShortcutWhenItIsLeft) {
    arm("fn");
    keyboard.tap({keycode::escape});
    ASSERT_TRUE(says("fn"));
    EXPECT_TRUE(reader.shows("Intent Check")) << "Escape was meant for the recorder";
    expectDictationBy({keycode::fn});

    for (const auto* elsewhere :
         {"Tap to toggle. Press once to start, once to finish", "Shortcut"}) {
        arm("fn");
        click(reader, elsewhere);
        ASSERT_TRUE(says("fn")) << elsewhere;
        expectDictationBy({keycode::fn});
    }

    arm("fn");
    const desktop::Program terminal({"xterm"});
    ASSERT_TRUE(waitUntil([] { return desktop::focusedClass() == "XTerm"; }));
    ASSERT_TRUE(says("fn"));
    expectDictationBy({keycode::fn});
}

} // namespace
} // namespace orlune
