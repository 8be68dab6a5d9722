// The program in daily use: a key is pressed while another program has the focus, the panel appears
// above it, and the text arrives in it. Runs with and without a compositing manager.

#include "core/ActivationMode.h"
#include "core/DictationShortcut.h"
#include "platform/linux/storage/FileUserDefaults.h"
#include "platform/memory/MemoryLog.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/OtherClient.h"
#include "tests/desktop/OverlayWindow.h"
#include "tests/desktop/RunningOrlune.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlune {
namespace {

using desktop::Keyboard;
using desktop::OtherClient;
using desktop::overlayWindow;
using desktop::phase;
using desktop::RunningOrlune;
using desktop::Terminal;
using desktop::waitUntil;
using testing::IsEmpty;
using Modifiers = DictationShortcut::Modifiers;

namespace keycode = desktop::keycode;

constexpr QSize screen{1280, 800};
constexpr QSize capsule{262, 82};
constexpr QSize card{492, 390};

QRect atRest(QSize panel, const QRect& onScreen = {{}, screen}) {
    return {QPoint(onScreen.left() + (onScreen.width() - panel.width()) / 2,
                   onScreen.bottom() + 1 - 28 - panel.height()),
            panel};
}

class PushToTalk : public testing::Test {
  protected:
    PushToTalk() { desktop::movePointer({10, 10}); }

    void set(ActivationMode mode) { defaults_.set("activationMode", std::string(rawValue(mode))); }
    void set(const DictationShortcut& shortcut) {
        const auto text = shortcut.encode();
        const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
        defaults_.set("dictationShortcut", UserDefaults::Data(bytes, bytes + text.size()));
    }

    void start() { orlune_.start(); }
    testing::AssertionResult reaches(const std::string& phase) { return orlune_.reaches(phase); }
    bool rests(const QRect& place) {
        return waitUntil([&] {
            const auto panel = overlayWindow();
            return panel && panel->geometry == place;
        });
    }
    bool isHidden() {
        return waitUntil([] { return !overlayWindow(); });
    }

    MemoryLog log_;
    Keyboard keyboard_;
    RunningOrlune orlune_;
    FileUserDefaults defaults_{orlune_.settings(), log_};
};

TEST_F(PushToTalk, TapToToggleReviewsAndInserts) {
    const Terminal terminal;
    start();
    keyboard_.tap({keycode::fn});
    ASSERT_TRUE(reaches("listening"));
    EXPECT_TRUE(rests(atRest(capsule)));
    EXPECT_TRUE(Terminal::isFocused());
    keyboard_.tap({keycode::fn});
    ASSERT_TRUE(reaches("reviewing"));
    EXPECT_TRUE(rests(atRest(card)));
    EXPECT_TRUE(overlayWindow()->isOnTop);
    EXPECT_TRUE(Terminal::isFocused());
    EXPECT_THAT(terminal.typed(), IsEmpty());
    keyboard_.tap({keycode::fn});
    EXPECT_TRUE(waitUntil([&] { return terminal.typed() == RunningOrlune::understoodWords; }))
        << terminal.typed();
    EXPECT_TRUE(isHidden());
    EXPECT_TRUE(Terminal::isFocused());
}

TEST_F(PushToTalk, HoldToSpeakListensWhileTheKeyIsDown) {
    set(ActivationMode::holdToSpeak);
    const Terminal terminal;
    start();
    keyboard_.press(keycode::fn);
    ASSERT_TRUE(reaches("listening"));
    keyboard_.tap({keycode::shift});
    EXPECT_EQ(phase(), "listening") << "Shift changes nothing";
    keyboard_.release(keycode::fn);
    ASSERT_TRUE(reaches("reviewing"));

    // The shortcut, Shift and Alt are still held while the text is pasted.
    keyboard_.press(keycode::shift);
    keyboard_.press(keycode::alt);
    keyboard_.press(keycode::fn);
    EXPECT_TRUE(waitUntil([&] { return terminal.typed() == RunningOrlune::understoodWords; }))
        << terminal.typed();
}

TEST_F(PushToTalk, EscapeAbandonsInEveryPhase) {
    const Terminal terminal;
    start();
    for (const std::string phase : {"listening", "reviewing"}) {
        keyboard_.tap({keycode::fn});
        ASSERT_TRUE(reaches("listening"));
        if (phase == "reviewing") {
            keyboard_.tap({keycode::fn});
            ASSERT_TRUE(reaches("reviewing"));
        }
        keyboard_.tap({keycode::escape});
        EXPECT_TRUE(reaches("idle")) << phase;
        EXPECT_TRUE(isHidden()) << phase;
    }
    EXPECT_EQ(terminal.typed(), "\x1b\x1b") << "the program gets its Escape, and no text";
    EXPECT_THAT(desktop::run({"pactl", "list", "short", "source-outputs"}), IsEmpty());
}

TEST_F(PushToTalk, AKeyWithModifiersEndsWhenTheKeyComesUp) {
    set(ActivationMode::holdToSpeak);
    set(DictationShortcut{.keyCode = 49, .modifiers = {Modifiers::control, Modifiers::option}});
    desktop::run({"xset", "r", "rate", "50", "50"});
    const Terminal terminal;
    start();
    keyboard_.press(keycode::control);
    keyboard_.press(keycode::alt);
    keyboard_.press(keycode::space);
    ASSERT_TRUE(reaches("listening"));
    // In this order: Alt and the repeating space would open the window manager's menu.
    keyboard_.release(keycode::alt);
    keyboard_.release(keycode::control);
    EXPECT_TRUE(waitUntil([&] { return terminal.typed().size() > 3; })) << "the key repeats";
    EXPECT_EQ(phase(), "listening");
    keyboard_.release(keycode::space);
    EXPECT_TRUE(reaches("reviewing"));
    desktop::run({"xset", "r", "rate"});
}

TEST_F(PushToTalk, WorksWhileAnotherProgramHasGrabbedTheKeyboard) {
    const Terminal terminal;
    start();
    OtherClient client;
    ASSERT_TRUE(client.grabKeyboard());
    keyboard_.tap({keycode::fn});
    EXPECT_TRUE(reaches("listening"));
}

TEST_F(PushToTalk, ClicksOnThePanelReachTheWindowBelow) {
    const Terminal terminal;
    start();
    keyboard_.tap({keycode::fn});
    ASSERT_TRUE(rests(atRest(capsule)));
    desktop::ClickRecorder below(atRest(capsule));
    desktop::movePointer(atRest(capsule).center());
    desktop::click();
    EXPECT_TRUE(waitUntil([&] { return below.clicks() == 1; }));
}

TEST_F(PushToTalk, StaysAboveALaterFullScreenWindow) {
    start();
    keyboard_.tap({keycode::fn});
    ASSERT_TRUE(rests(atRest(capsule)));
    const Terminal terminal({"-fullscreen"});
    EXPECT_TRUE(waitUntil([] { return overlayWindow()->isOnTop; }));
}

TEST_F(PushToTalk, ShowsOnTheScreenUnderThePointer) {
    const QRect left(0, 0, 640, 800);
    const QRect right(640, 0, 640, 800);
    desktop::run({"xrandr", "--setmonitor", "left", "640/169x800/211+0+0", "screen"});
    desktop::run({"xrandr", "--setmonitor", "right", "640/169x800/211+640+0", "none"});
    const Terminal terminal;
    start();
    desktop::movePointer(right.center());
    keyboard_.tap({keycode::fn});
    EXPECT_TRUE(rests(atRest(capsule, right)));
    ASSERT_TRUE(reaches("listening")) << "before that a press does nothing";
    desktop::movePointer(left.center());
    keyboard_.tap({keycode::fn});
    ASSERT_TRUE(reaches("reviewing"));
    EXPECT_TRUE(rests(atRest(card, left)));
    desktop::run({"xrandr", "--delmonitor", "right"});
    desktop::run({"xrandr", "--delmonitor", "left"});
}

} // namespace
} // namespace orlune
