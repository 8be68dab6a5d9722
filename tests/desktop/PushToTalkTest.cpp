// The program as it runs all day: a key pressed while another program has the keyboard, the panel
// above it, and the text in it. Run once with and once without a compositing manager.

#include "core/ActivationMode.h"
#include "core/DictationShortcut.h"
#include "platform/linux/FileUserDefaults.h"
#include "platform/memory/MemoryLog.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/OtherClient.h"
#include "tests/desktop/OverlayWindow.h"
#include "tests/desktop/OwnProgram.h"
#include "tests/support/TemporaryFolder.h"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace orlune {
namespace {

using desktop::Keyboard;
using desktop::OtherClient;
using desktop::overlayWindow;
using desktop::OwnProgram;
using desktop::Program;
using desktop::waitUntil;
using test::TemporaryFolder;
using test::textOf;
using testing::HasSubstr;
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

/// The service answers at once, with the same words each time.
class ScriptedService {
  public:
    explicit ScriptedService(const std::string& words) {
        const auto script = folder_.path() / "script.json";
        test::write(script, R"({"steps": [{"waitForText": "CloseStream"}, {"final": ")" + words
                                + R"("}, {"metadata": 1}, {"close": 1000}]})");
        program_.emplace(std::vector<std::string>{ORLUNE_LOCAL_SERVICE, "--exit-with-parent",
                                                  "--script", script.string()});
        EXPECT_TRUE(waitUntil([&] { return program_->standardOutput().ends_with('\n'); }));
        address_ = program_->standardOutput();
        address_.pop_back();
    }

    const std::string& address() const { return address_; }
    std::string log() { return program_->standardError(); }

  private:
    TemporaryFolder folder_;
    std::optional<OwnProgram> program_;
    std::string address_;
};

/// A terminal that has the keyboard and keeps what is typed.
class Terminal {
  public:
    explicit Terminal(const std::vector<std::string>& options = {}) {
        std::vector<std::string> command{"xterm"};
        command.insert(command.end(), options.begin(), options.end());
        for (const auto& word : {std::string("-e"), std::string("sh"), std::string("-c"),
                                 "stty -icanon -echo; exec cat > " + file().string()}) {
            command.push_back(word);
        }
        program_.emplace(command);
        EXPECT_TRUE(waitUntil([this] { return std::filesystem::exists(file()) && isFocused(); }));
    }

    static bool isFocused() { return desktop::focusedClass() == "XTerm"; }
    std::string typed() const { return textOf(file()); }

  private:
    std::filesystem::path file() const { return folder_.path() / "typed"; }

    TemporaryFolder folder_;
    std::optional<Program> program_;
};

class PushToTalk : public testing::Test {
  protected:
    PushToTalk() {
        OwnProgram setting({ORLUNE_PROGRAM, "key", "set"});
        setting.type("any-key\n");
        EXPECT_EQ(setting.exitCode(), 0) << setting.standardError();
        desktop::movePointer({10, 10});
    }

    void set(ActivationMode mode) { defaults_.set("activationMode", std::string(rawValue(mode))); }
    void set(const DictationShortcut& shortcut) {
        const auto text = shortcut.encode();
        const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
        defaults_.set("dictationShortcut", UserDefaults::Data(bytes, bytes + text.size()));
    }

    void start() {
        program_.emplace(std::vector<std::string>{ORLUNE_PROGRAM, "--background"},
                         OwnProgram::Environment{{"XDG_CONFIG_HOME", configuration_.path()},
                                                 {"ORLUNE_ENDPOINT", service_.address()}});
        ASSERT_TRUE(reaches("idle")) << program_->standardError();
    }

    std::string phase() {
        OwnProgram asking({ORLUNE_PROGRAM, "status", "--json"});
        if (asking.exitCode() != 0) {
            return "none: " + asking.standardError();
        }
        return boost::json::parse(asking.standardOutput()).at("phase").as_string().c_str();
    }
    testing::AssertionResult reaches(const std::string& wanted) {
        if (waitUntil([&] { return phase() == wanted; })) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "it is " << desktop::run({ORLUNE_PROGRAM, "status"})
                                           << program_->standardError() << service_.log();
    }
    bool rests(const QRect& place) {
        return waitUntil([&] {
            const auto panel = overlayWindow();
            return panel && panel->geometry == place;
        });
    }
    bool isHidden() {
        return waitUntil([] { return !overlayWindow(); });
    }

    void tap(Keyboard::Keycode key) {
        keyboard_.press(key);
        keyboard_.release(key);
    }

    const TemporaryFolder configuration_;
    MemoryLog log_;
    FileUserDefaults defaults_{configuration_.path() / "app.orlune.Orlune", log_};
    ScriptedService service_{"Rename the button."};
    Keyboard keyboard_;
    std::optional<OwnProgram> program_;
};

TEST_F(PushToTalk, TapToToggleReviewsAndInserts) {
    const Terminal terminal;
    start();
    tap(keycode::fn);
    ASSERT_TRUE(reaches("listening"));
    EXPECT_TRUE(rests(atRest(capsule)));
    EXPECT_TRUE(Terminal::isFocused());
    tap(keycode::fn);
    ASSERT_TRUE(reaches("reviewing"));
    EXPECT_TRUE(rests(atRest(card)));
    EXPECT_TRUE(overlayWindow()->isOnTop);
    EXPECT_TRUE(Terminal::isFocused());
    EXPECT_THAT(terminal.typed(), IsEmpty());
    tap(keycode::fn);
    EXPECT_TRUE(waitUntil([&] { return terminal.typed() == "Rename the button."; }))
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
    tap(keycode::shift);
    EXPECT_EQ(phase(), "listening") << "Shift changes nothing";
    keyboard_.release(keycode::fn);
    ASSERT_TRUE(reaches("reviewing"));

    // The shortcut, Shift and Alt are still held while the text is pasted.
    keyboard_.press(keycode::shift);
    keyboard_.press(keycode::alt);
    keyboard_.press(keycode::fn);
    EXPECT_TRUE(waitUntil([&] { return terminal.typed() == "Rename the button."; }))
        << terminal.typed();
}

TEST_F(PushToTalk, EscapeAbandonsInEveryPhase) {
    const Terminal terminal;
    start();
    for (const std::string phase : {"listening", "reviewing"}) {
        tap(keycode::fn);
        ASSERT_TRUE(reaches("listening"));
        if (phase == "reviewing") {
            tap(keycode::fn);
            ASSERT_TRUE(reaches("reviewing"));
        }
        tap(keycode::escape);
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

TEST_F(PushToTalk, IsHeardWhileAnotherProgramHasGrabbedTheKeyboard) {
    const Terminal terminal;
    start();
    OtherClient client;
    ASSERT_TRUE(client.grabKeyboard());
    tap(keycode::fn);
    EXPECT_TRUE(reaches("listening"));
}

TEST_F(PushToTalk, ClicksOnThePanelReachTheWindowBelow) {
    const Terminal terminal;
    start();
    tap(keycode::fn);
    ASSERT_TRUE(rests(atRest(capsule)));
    desktop::ClickRecorder below(atRest(capsule));
    desktop::movePointer(atRest(capsule).center());
    desktop::click();
    EXPECT_TRUE(waitUntil([&] { return below.clicks() == 1; }));
}

TEST_F(PushToTalk, LiesAboveAFullScreenWindowThatComesLater) {
    start();
    tap(keycode::fn);
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
    tap(keycode::fn);
    EXPECT_TRUE(rests(atRest(capsule, right)));
    ASSERT_TRUE(reaches("listening")) << "before that a press does nothing";
    desktop::movePointer(left.center());
    tap(keycode::fn);
    ASSERT_TRUE(reaches("reviewing"));
    EXPECT_TRUE(rests(atRest(card, left)));
    desktop::run({"xrandr", "--delmonitor", "right"});
    desktop::run({"xrandr", "--delmonitor", "left"});
}

} // namespace
} // namespace orlune
