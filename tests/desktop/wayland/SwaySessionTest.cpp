// Dictating into a native Wayland window of a sway session: the shortcut through the compositor's
// own bindings, the text through its clipboards and a virtual keyboard.
#include "core/ActivationMode.h"
#include "core/DictationShortcut.h"
#include "platform/linux/storage/FileUserDefaults.h"
#include "platform/linux/wayland/DataControlPasteboard.h"
#include "platform/linux/wayland/VirtualKeyboard.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/memory/MemoryLog.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/RunningOrlune.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlune {
namespace {

using desktop::RunningOrlune;
using desktop::waitUntil;
using testing::HasSubstr;
using testing::IsEmpty;
using Modifiers = DictationShortcut::Modifiers;

// The kernel's codes.
namespace key {
constexpr KeyInjector::KeyCode escape = 1;
constexpr KeyInjector::KeyCode leftControl = 29;
constexpr KeyInjector::KeyCode a = 30;
constexpr KeyInjector::KeyCode leftShift = 42;
constexpr KeyInjector::KeyCode leftAlt = 56;
constexpr KeyInjector::KeyCode space = 57;
constexpr KeyInjector::KeyCode rightControl = 97;
constexpr KeyInjector::KeyCode insert = 110;
} // namespace key

/// A native terminal that writes down, byte for byte, what is typed into it.
class Foot {
  public:
    Foot()
        : program_({"foot", "--log-level=none", "--app-id=target", "sh", "-c",
                    "stty -echo -icanon -iexten -isig; exec cat > " + file().string()}) {
        EXPECT_TRUE(waitUntil([this] { return std::filesystem::exists(file()) && isFocused(); }));
    }
    std::string typed() const { return test::textOf(file()); }
    [[nodiscard]] bool receives(const std::string& text) const {
        return waitUntil([&] { return typed() == text; });
    }
    static bool isFocused() {
        const auto tree = desktop::run({"swaymsg", "-r", "-t", "get_tree"});
        const auto focused = tree.find("\"focused\": true");
        return focused != std::string::npos
               && tree.find("\"app_id\": \"target\"", focused) != std::string::npos;
    }

  private:
    std::filesystem::path file() const { return folder_.path() / "typed"; }

    test::TemporaryFolder folder_;
    desktop::Program program_;
};

class SwaySession : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(connection);
        // The one keyboard of this seat, for the whole test, as a person's is.
        hands = VirtualKeyboard::open(*connection);
        ASSERT_TRUE(hands);
    }

    void tap(const std::vector<KeyInjector::KeyCode>& keys) const {
        for (const auto code : keys) {
            hands->press(code);
        }
        for (auto code = keys.rbegin(); code != keys.rend(); ++code) {
            hands->release(*code);
        }
    }

    std::unique_ptr<WaylandConnection> connection = WaylandConnection::open();
    std::unique_ptr<VirtualKeyboard> hands;
};

TEST_F(SwaySession, BothSelectionsCarryTheWholeTextToANativeWindow) {
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
    const Foot window;
    tap({key::leftShift, key::insert});
    EXPECT_TRUE(window.receives(text)) << window.typed().size();

    // Somebody else copies: the other selection stays ours.
    desktop::run({"wl-copy", "--primary", "of another program"});
    EXPECT_TRUE(waitUntil([&] { return !pasteboard->ownsPrimarySelection(); }));
    EXPECT_TRUE(desktop::run({"wl-paste", "-n"}) == text);
    // A program that asks and goes away does no harm.
    desktop::run({"sh", "-c", "wl-paste -n | head -c 1 >/dev/null"});
    EXPECT_TRUE(pasteboard->setString("the last"));
    EXPECT_EQ(desktop::run({"wl-paste", "-n", "--primary"}), "the last");
}

class DictationInSway : public SwaySession {
  protected:
    void set(ActivationMode mode) { defaults_.set("activationMode", std::string(rawValue(mode))); }
    void set(const DictationShortcut& shortcut) {
        const auto text = shortcut.encode();
        const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
        defaults_.set("dictationShortcut", UserDefaults::Data(bytes, bytes + text.size()));
    }
    void start() {
        orlune_.start();
        awaitBinding(1);
    }
    /// Until the compositor has bound the shortcut for the given time.
    void awaitBinding(int times) {
        ASSERT_TRUE(waitUntil([&] {
            const auto log = orlune_.program().standardError();
            int count = 0;
            for (auto place = log.find(bound); place != std::string::npos;
                 place = log.find(bound, place + 1)) {
                ++count;
            }
            return count == times;
        })) << orlune_.program().standardError();
    }
    testing::AssertionResult reaches(const std::string& phase) { return orlune_.reaches(phase); }

    static constexpr auto bound = "The shortcut is bound";

    MemoryLog log_;
    RunningOrlune orlune_;
    FileUserDefaults defaults_{orlune_.settings(), log_};
};

TEST_F(DictationInSway, TapToToggleReviewsAndInserts) {
    const Foot window;
    start();
    for (int dictation = 1; dictation <= 2; ++dictation) {
        tap({key::rightControl});
        ASSERT_TRUE(reaches("listening"));
        tap({key::rightControl});
        ASSERT_TRUE(reaches("reviewing"));
        EXPECT_TRUE(Foot::isFocused());
        tap({key::rightControl});
        const std::string text = RunningOrlune::understoodWords;
        EXPECT_TRUE(window.receives(dictation == 1 ? text : text + text)) << window.typed();
        EXPECT_TRUE(reaches("idle"));
    }
}

TEST_F(DictationInSway, HoldToSpeakListensWhileTheKeyIsDown) {
    set(ActivationMode::holdToSpeak);
    set(DictationShortcut{.keyCode = 49, .modifiers = {Modifiers::control, Modifiers::option}});
    const Foot window;
    start();
    for (const auto code : {key::leftControl, key::leftAlt, key::space}) {
        hands->press(code);
    }
    ASSERT_TRUE(reaches("listening"));
    for (const auto code : {key::leftControl, key::leftAlt, key::space}) {
        hands->release(code);
    }
    ASSERT_TRUE(reaches("reviewing"));
    EXPECT_THAT(window.typed(), IsEmpty());
    // The shortcut is still held while the text is pasted.
    for (const auto code : {key::leftControl, key::leftAlt, key::space}) {
        hands->press(code);
    }
    EXPECT_TRUE(window.receives(RunningOrlune::understoodWords)) << window.typed();
}

TEST_F(DictationInSway, EscapeIsTakenOnlyDuringADictation) {
    const Foot window;
    start();
    tap({key::escape});
    EXPECT_TRUE(window.receives("\x1b"));
    tap({key::rightControl});
    ASSERT_TRUE(reaches("listening"));
    tap({key::escape});
    EXPECT_TRUE(reaches("idle"));
    tap({key::a});
    EXPECT_TRUE(window.receives("\x1b"
                                "a"))
        << window.typed();
}

TEST_F(DictationInSway, TheShortcutOutlivesAReloadAndALostRelease) {
    const Foot window;
    start();
    desktop::run({"swaymsg", "reload"});
    awaitBinding(2);
    tap({key::rightControl});
    ASSERT_TRUE(reaches("listening"));
    // Another key while the shortcut is down: sway does not report that it comes up.
    hands->press(key::rightControl);
    tap({key::a});
    hands->release(key::rightControl);
    ASSERT_TRUE(reaches("reviewing"));
    tap({key::rightControl});
    EXPECT_TRUE(waitUntil(
        [&] { return window.typed().find(RunningOrlune::understoodWords) != std::string::npos; }));
}

} // namespace
} // namespace orlune
