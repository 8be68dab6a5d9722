// Dictating into native windows of GNOME Shell from 48 on, where the user allows it in the portals'
// dialogs. The shortcut was allowed before, as the desktop stores it. The dialog for pasting is
// answered by keys, and must not come back at the next start.
#include "core/DictationShortcut.h"
#include "platform/linux/storage/FileUserDefaults.h"
#include "platform/memory/MemoryLog.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/RunningOrlune.h"
#include "tests/desktop/wayland/NativeWindow.h"
#include "tests/desktop/wayland/UserKeyboard.h"

#include <gtest/gtest.h>

namespace orlune::desktop {
namespace {

using Toolkit = NativeWindow::Toolkit;

const std::filesystem::path state = [] {
    return std::filesystem::path(std::getenv("XDG_STATE_HOME")) / "app.orlune.Orlune";
}();

class GnomePortalDictation : public testing::Test {
  protected:
    void SetUp() override {
        // The portal only listens to programs that are installed.
        const auto applications =
            std::filesystem::path(std::getenv("XDG_DATA_HOME")) / "applications";
        std::filesystem::create_directories(applications);
        test::write(applications / "app.orlune.Orlune.desktop",
                    "[Desktop Entry]\nType=Application\nName=Orlune\nExec="
                        + std::string(ORLUNE_PROGRAM) + "\n");
        allowTheShortcut();
        const auto shortcut = DictationShortcut{.keyCode = 101, .modifiers = {}}.encode();
        const auto* bytes = reinterpret_cast<const std::byte*>(shortcut.data());
        defaults_.set("dictationShortcut", UserDefaults::Data(bytes, bytes + shortcut.size()));
    }
    static void allowTheShortcut() {
        const std::string schema = "org.gnome.settings-daemon.global-shortcuts";
        const std::string shortcuts =
            "[('dictate', {'description': <'Dictate'>, 'shortcuts': <['F9']>}), "
            "('cancel', {'description': <'Cancel the dictation'>, 'shortcuts': <['F10']>})]";
        run({"gsettings", "set", schema, "applications", "['app.orlune.Orlune']"});
        run({"gsettings", "set",
             schema + ".application:/org/gnome/settings-daemon/global-shortcuts/app.orlune.Orlune/",
             "shortcuts", shortcuts});
        std::filesystem::create_directories(state);
        test::write(state / "global-shortcuts", "GNOME F9");
    }
    void awaitLog(const std::string& line) {
        ASSERT_TRUE(waitUntil([&] {
            return orlune.program().standardError().find(line) != std::string::npos;
        })) << orlune.program().standardError();
    }
    void dictate() {
        hands->tap({key::f9});
        ASSERT_TRUE(orlune.reaches("listening")) << orlune.program().standardError();
        hands->tap({key::f9});
        ASSERT_TRUE(orlune.reaches("reviewing"));
        hands->tap({key::f9});
    }
    /// The switch, and then the button that shares.
    void allowInTheDialog() const {
        using Keys = std::vector<UserKeyboard::Key>;
        for (const auto code : Keys{key::tab, key::space, key::tab, key::tab, key::enter}) {
            hands->tap({code});
        }
    }
    void dictatesIntoEveryKindOfWindow() {
        for (const auto toolkit : {Toolkit::gtk, Toolkit::qt, Toolkit::terminal}) {
            NativeWindow window(toolkit);
            ASSERT_NO_FATAL_FAILURE(dictate());
            EXPECT_TRUE(window.receives(RunningOrlune::understoodWords)) << window.text();
            EXPECT_TRUE(window.hasKeyboard());
            EXPECT_TRUE(orlune.reaches("idle"));
        }
    }

    std::unique_ptr<UserKeyboard> hands = UserKeyboard::open();
    MemoryLog log_;
    RunningOrlune orlune;
    FileUserDefaults defaults_{orlune.settings(), log_};
};

TEST_F(GnomePortalDictation, NeedsTheUsersConsentOnce) {
    orlune.start();
    awaitLog("The shortcut is bound");
    {
        NativeWindow window(Toolkit::qt);
        ASSERT_NO_FATAL_FAILURE(dictate());
        ASSERT_TRUE(waitUntil([&] { return !window.hasKeyboard(); })) << "no dialog came";
        allowInTheDialog();
        awaitLog("Keys can be posted");
        EXPECT_EQ(window.text(), "");
        EXPECT_TRUE(orlune.reaches("idle"));
    }
    ASSERT_NO_FATAL_FAILURE(dictatesIntoEveryKindOfWindow());
    orlune.restart();
    awaitLog("The shortcut is bound");
    ASSERT_NO_FATAL_FAILURE(dictatesIntoEveryKindOfWindow());
}

TEST_F(GnomePortalDictation, ListensWhileTheKeyIsDownAndIsCancelledByItsOwnShortcut) {
    defaults_.set("activationMode", "holdToSpeak");
    orlune.start();
    awaitLog("The shortcut is bound");
    hands->press(key::f9);
    ASSERT_TRUE(orlune.reaches("listening"));
    hands->release(key::f9);
    ASSERT_TRUE(orlune.reaches("reviewing"));
    hands->tap({key::f10});
    EXPECT_TRUE(orlune.reaches("idle"));
}

} // namespace
} // namespace orlune::desktop
