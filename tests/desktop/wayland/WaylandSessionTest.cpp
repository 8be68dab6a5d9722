// Dictating into a native window of a Wayland session, with the shortcut, the clipboards and the
// paste that the compositor offers. Runs in sway and in Plasma.
#include "core/ActivationMode.h"
#include "core/DictationShortcut.h"
#include "platform/linux/storage/FileUserDefaults.h"
#include "platform/linux/wayland/DataControlPasteboard.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/memory/MemoryLog.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/RunningOrlune.h"
#include "tests/desktop/wayland/NativeWindow.h"
#include "tests/desktop/wayland/UserKeyboard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlune {
namespace {

namespace key = desktop::key;

using desktop::RunningOrlune;
using desktop::waitUntil;
using testing::HasSubstr;
using testing::IsEmpty;
using Modifiers = DictationShortcut::Modifiers;

bool isSway() {
    return std::getenv("SWAYSOCK") != nullptr;
}

/// A native window that records what it receives: in sway a terminal, which records it byte for
/// byte, else a text field.
class Window {
  public:
    Window() : program_(command()) {
        EXPECT_TRUE(waitUntil([this] { return std::filesystem::exists(file()) && hasKeyboard(); }));
    }
    std::string text() const { return test::textOf(file()); }
    [[nodiscard]] bool receives(const std::string& text) const {
        return waitUntil([&] { return this->text() == text; });
    }

  private:
    static bool hasKeyboard() {
        return !isSway()
               || desktop::run({"sh", "-c",
                                "swaymsg -rt get_tree | grep -A50 '\"focused\": true' "
                                "| grep -c '\"app_id\": \"foot\"'"})
                      != "0\n";
    }
    std::vector<std::string> command() const {
        if (isSway()) {
            return {"foot", "--log-level=none", "sh", "-c",
                    "stty -echo -icanon -iexten -isig; exec cat > " + file().string()};
        }
        return {ORLUNE_NATIVE_ENTRY, file()};
    }
    std::filesystem::path file() const { return folder_.path() / "text"; }

    test::TemporaryFolder folder_;
    desktop::Program program_;
};

class WaylandSession : public testing::Test {
  protected:
    std::unique_ptr<desktop::UserKeyboard> hands = desktop::UserKeyboard::open();
};

TEST_F(WaylandSession, BothSelectionsCarryTheWholeTextToANativeWindow) {
    const auto ours = WaylandConnection::open();
    const auto pasteboard = DataControlPasteboard::open(*ours);
    ASSERT_TRUE(pasteboard);
    EXPECT_FALSE(pasteboard->ownsPrimarySelection());
    std::string text = "Grüße, 你好 👋 — \"quoted\"";
    while (text.size() < 1'000'000) {
        text += text;
    }
    EXPECT_TRUE(pasteboard->setString("an earlier text"));
    EXPECT_TRUE(pasteboard->setString(text));
    for (const auto* const selection : {"", "--primary"}) {
        EXPECT_TRUE(desktop::run({"sh", "-c", std::string("wl-paste -n ") + selection}) == text);
    }
    const Window window;
    hands->tap({key::leftShift, key::insert});
    EXPECT_TRUE(window.receives(text)) << window.text().size();

    // Another program copies; the other selection stays ours.
    desktop::run({"wl-copy", "--primary", "of another program"});
    EXPECT_TRUE(waitUntil([&] { return !pasteboard->ownsPrimarySelection(); }));
    EXPECT_TRUE(desktop::run({"wl-paste", "-n"}) == text);
    // A program that requests the text and ends early does no harm.
    desktop::run({"sh", "-c", "wl-paste -n | head -c 1 >/dev/null"});
    EXPECT_TRUE(pasteboard->setString("the last"));
    EXPECT_EQ(desktop::run({"wl-paste", "-n", "--primary"}), "the last");
}

class WaylandDictation : public WaylandSession {
  protected:
    void set(ActivationMode mode) { defaults_.set("activationMode", std::string(rawValue(mode))); }
    void set(const DictationShortcut& shortcut) {
        const auto text = shortcut.encode();
        const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
        defaults_.set("dictationShortcut", UserDefaults::Data(bytes, bytes + text.size()));
    }
    void start() {
        if (!isSway()) { // the user has allowed Orlune to paste before
            const std::filesystem::path state = std::getenv("XDG_STATE_HOME");
            std::filesystem::create_directories(state / "app.orlune.Orlune");
            test::write(state / "app.orlune.Orlune" / "remote-desktop-token", "consented");
        }
        orlune_.start();
        awaitLog("The shortcut is bound", 1);
        if (!isSway()) {
            awaitLog("Keys can be posted", 1);
        }
    }
    /// Waits until the program has logged this line so many times.
    void awaitLog(const std::string& line, int times) {
        ASSERT_TRUE(waitUntil([&] {
            const auto log = orlune_.program().standardError();
            int count = 0;
            for (auto place = log.find(line); place != std::string::npos;
                 place = log.find(line, place + 1)) {
                ++count;
            }
            return count == times;
        })) << orlune_.program().standardError();
    }
    testing::AssertionResult reaches(const std::string& phase) { return orlune_.reaches(phase); }

    MemoryLog log_;
    RunningOrlune orlune_;
    FileUserDefaults defaults_{orlune_.settings(), log_};
};

TEST_F(WaylandDictation, TapToToggleReviewsAndInserts) {
    const Window window;
    start();
    for (int dictation = 1; dictation <= 2; ++dictation) {
        hands->tap({key::rightControl});
        ASSERT_TRUE(reaches("listening"));
        hands->tap({key::rightControl});
        ASSERT_TRUE(reaches("reviewing"));
        hands->tap({key::rightControl});
        const std::string text = RunningOrlune::understoodWords;
        EXPECT_TRUE(window.receives(dictation == 1 ? text : text + text))
            << window.text() << orlune_.program().standardError();
        EXPECT_TRUE(reaches("idle"));
    }
}

/// Each toolkit pastes another of the two selections.
TEST_F(WaylandDictation, GoesIntoEveryKindOfWindow) {
    using Toolkit = desktop::NativeWindow::Toolkit;
    start();
    for (const auto toolkit : {Toolkit::gtk, Toolkit::qt, Toolkit::terminal}) {
        desktop::NativeWindow window(toolkit);
        hands->tap({key::rightControl});
        ASSERT_TRUE(reaches("listening"));
        hands->tap({key::rightControl});
        ASSERT_TRUE(reaches("reviewing"));
        EXPECT_TRUE(window.hasKeyboard());
        EXPECT_EQ(window.text(), "");
        hands->tap({key::rightControl});
        EXPECT_TRUE(window.receives(RunningOrlune::understoodWords)) << window.text();
        EXPECT_TRUE(window.hasKeyboard());
        EXPECT_TRUE(reaches("idle"));
    }
}

TEST_F(WaylandDictation, HoldToSpeakListensWhileTheKeyIsDown) {
    set(ActivationMode::holdToSpeak);
    set(DictationShortcut{.keyCode = 49, .modifiers = {Modifiers::control, Modifiers::option}});
    const Window window;
    start();
    for (const auto code : {key::leftControl, key::leftAlt, key::space}) {
        hands->press(code);
    }
    ASSERT_TRUE(reaches("listening"));
    for (const auto code : {key::leftControl, key::leftAlt, key::space}) {
        hands->release(code);
    }
    ASSERT_TRUE(reaches("reviewing"));
    EXPECT_THAT(window.text(), IsEmpty());
    for (const auto code : {key::leftControl, key::leftAlt, key::space}) {
        hands->press(code);
    }
    // In sway the paste has its own modifiers; elsewhere it waits until these are released.
    if (!isSway()) {
        for (const auto code : {key::leftControl, key::leftAlt, key::space}) {
            hands->release(code);
        }
    }
    EXPECT_TRUE(window.receives(RunningOrlune::understoodWords)) << window.text();
}

TEST_F(WaylandDictation, EscapeIsTakenOnlyDuringADictation) {
    const Window window;
    start();
    hands->tap({key::escape});
    // A text field does not show it.
    const std::string escape = isSway() ? "\x1b" : "";
    EXPECT_TRUE(window.receives(escape));
    hands->tap({key::rightControl});
    ASSERT_TRUE(reaches("listening"));
    hands->tap({key::escape});
    EXPECT_TRUE(reaches("idle"));
    hands->tap({key::a});
    EXPECT_TRUE(window.receives(escape + "a")) << window.text();
}

using SwayDictation = WaylandDictation;

TEST_F(SwayDictation, TheShortcutOutlivesAReloadAndALostRelease) {
    const Window window;
    start();
    desktop::run({"swaymsg", "reload"});
    awaitLog("The shortcut is bound", 2);
    hands->tap({key::rightControl});
    ASSERT_TRUE(reaches("listening"));
    // Another key while the shortcut is down: sway does not report its release.
    hands->press(key::rightControl);
    hands->tap({key::a});
    hands->release(key::rightControl);
    ASSERT_TRUE(reaches("reviewing"));
    hands->tap({key::rightControl});
    EXPECT_TRUE(waitUntil(
        [&] { return window.text().find(RunningOrlune::understoodWords) != std::string::npos; }));
}

} // namespace
} // namespace orlune
