// The settings of the running program: a choice in the window, with the pointer or the keyboard,
// applies to the next press of the shortcut and is still there after a restart.
#include "tests/desktop/SettingsUser.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gmock/gmock.h>

namespace orlune {
namespace {

namespace keycode = desktop::keycode;
using desktop::RunningOrlune;
using desktop::waitUntil;
using testing::HasSubstr;

constexpr auto tapToToggle = "Tap to toggle. Press once to start, once to finish";
constexpr auto holdToSpeak = "Hold to speak. Hold while speaking, release to finish";
constexpr auto enabled = "Enable Orlune";
constexpr auto intentCheck = "Intent Check";

class Settings : public desktop::SettingsUser {
  protected:
    enum class Way { pointer, keyboard };

    bool becomes(const std::string& name, bool isChecked) {
        return waitUntil([&] { return reader.await(name).isChecked == isChecked; });
    }
    void choose(const std::string& card, Way way) {
        if (way == Way::pointer) {
            click(reader, card);
        } else {
            moveTo(card == holdToSpeak ? tapToToggle : holdToSpeak);
            keyboard.tap({card == holdToSpeak ? keycode::right : keycode::left});
        }
        ASSERT_TRUE(becomes(card, true));
    }
    void flip(const std::string& toggle, Way way) {
        const bool wasChecked = reader.await(toggle).isChecked;
        if (way == Way::pointer) {
            click(reader, toggle);
        } else {
            moveTo(toggle);
            keyboard.tap({keycode::space});
        }
        ASSERT_TRUE(becomes(toggle, !wasChecked));
    }

    void expectHolding() {
        keyboard.press(keycode::fn);
        ASSERT_TRUE(orlune.reaches("listening"));
        keyboard.release(keycode::fn);
        ASSERT_TRUE(orlune.reaches("reviewing"));
        abandon();
    }
    void expectReview() {
        dictate();
        ASSERT_TRUE(orlune.reaches("reviewing"));
        abandon();
    }
    void expectInsertionAtOnce() {
        auto* const clipboard = QGuiApplication::clipboard();
        clipboard->setText(QStringLiteral("not dictated"));
        dictate();
        EXPECT_TRUE(waitUntil([&] { return clipboard->text() == RunningOrlune::understoodWords; }));
        ASSERT_TRUE(orlune.reaches("idle"));
    }
};

TEST_F(Settings, ChooseHowTheShortcutWorks) {
    for (const auto way : {Way::pointer, Way::keyboard}) {
        choose(holdToSpeak, way);
        EXPECT_TRUE(reader.shows("Hold fn to speak"));
        expectHolding();
        choose(tapToToggle, way);
        expectReview();
    }
    choose(holdToSpeak, Way::pointer);
    orlune.restart();
    expectHolding();
    openSettings();
    EXPECT_TRUE(becomes(holdToSpeak, true));
    EXPECT_FALSE(reader.await(tapToToggle).isChecked);
}

TEST_F(Settings, SkipTheIntentCheck) {
    for (const auto way : {Way::pointer, Way::keyboard}) {
        flip(intentCheck, way);
        expectInsertionAtOnce();
        flip(intentCheck, way);
        expectReview();
    }
    flip(intentCheck, Way::keyboard);
    orlune.restart();
    expectInsertionAtOnce();
    openSettings();
    EXPECT_TRUE(becomes(intentCheck, false));
}

TEST_F(Settings, SwitchDictationOffUntilTheNextStart) {
    for (const auto way : {Way::pointer, Way::keyboard}) {
        flip(enabled, way);
        expectNothingFrom({keycode::fn});
        flip(enabled, way);
        expectReview();
    }
    flip(enabled, Way::pointer);
    EXPECT_EQ(orlune.status("enabled"), "false");
    orlune.restart();
    expectReview();
    openSettings();
    EXPECT_TRUE(becomes(enabled, true));
}

TEST_F(Settings, HaveAWindowOfFixedSize) {
    const auto facts =
        desktop::run({"sh", "-c",
                      "window=$(xdotool getactivewindow) && xdotool getwindowgeometry $window && "
                      "xprop -id $window WM_NORMAL_HINTS _NET_WM_ALLOWED_ACTIONS"});
    EXPECT_THAT(facts, HasSubstr("Geometry: 550x640\n"));
    EXPECT_THAT(facts, HasSubstr("minimum size: 550 by 640"));
    EXPECT_THAT(facts, HasSubstr("maximum size: 550 by 640"));
    EXPECT_THAT(facts, HasSubstr("_NET_WM_ACTION_MOVE"));
    EXPECT_THAT(facts, testing::Not(HasSubstr("_NET_WM_ACTION_RESIZE")));
}

} // namespace
} // namespace orlune
