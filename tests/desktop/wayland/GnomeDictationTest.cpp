// Dictating into native windows of GNOME Shell 43: a shortcut that the user has bound in the
// desktop's settings, and the portal's permission to press keys, which this release asks for at
// each start of the program.
#include "tests/desktop/Desktop.h"
#include "tests/desktop/RunningOrlune.h"
#include "tests/desktop/wayland/NativeWindow.h"
#include "tests/desktop/wayland/Screen.h"
#include "tests/desktop/wayland/UserKeyboard.h"

#include <gtest/gtest.h>

namespace orlune::desktop {
namespace {

using Keys = std::vector<UserKeyboard::Key>;
using Toolkit = NativeWindow::Toolkit;

const std::string schema = "org.gnome.settings-daemon.plugins.media-keys";

/// As the settings do it when a person adds a shortcut. Returns its path.
std::string addShortcut(const std::string& name, const std::string& keys,
                        const std::string& command) {
    const auto path =
        "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/" + name + '/';
    const auto set = [&](const std::string& key, const std::string& value) {
        run({"gsettings", "set", schema + ".custom-keybinding:" + path, key, value});
    };
    set("name", name);
    set("binding", keys);
    set("command", command);
    return path;
}

class GnomeDictation : public testing::Test {
  protected:
    void SetUp() override {
        const auto toggle =
            addShortcut("dictate", "<Ctrl><Alt>d", std::string(ORLUNE_PROGRAM) + " press");
        const auto mark = folder_.path() / "bound";
        const auto touch = addShortcut("mark", "<Ctrl><Alt>a", "touch " + mark.string());
        run({"gsettings", "set", schema, "custom-keybindings",
             "['" + toggle + "', '" + touch + "']"});
        // On a loaded machine the time between press and release must not become repeats.
        run({"gsettings", "set", "org.gnome.desktop.peripherals.keyboard", "repeat", "false"});
        // The program has a configuration of its own, but this part of it is the desktop's.
        std::filesystem::create_directory_symlink(
            std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "dconf",
            orlune.settings().parent_path() / "dconf");
        ASSERT_TRUE(waitUntil([&] {
            hands->tap({key::leftControl, key::leftAlt, key::a});
            return std::filesystem::exists(mark);
        }));
    }

    /// The user has agreed in an earlier run, and agrees again.
    void startAndAllow() {
        const std::filesystem::path state = std::getenv("XDG_STATE_HOME");
        std::filesystem::create_directories(state / "app.orlune.Orlune");
        test::write(state / "app.orlune.Orlune" / "remote-desktop-token", "consented");
        const auto center = [] {
            const auto picture = screenshot();
            return picture.pixel(picture.rect().center());
        };
        const auto desktop = center();
        orlune.start();
        ASSERT_TRUE(waitUntil([&] { return center() != desktop; })) << "no dialog came";
        for (const auto code : Keys{key::tab, key::space, key::tab, key::tab, key::enter}) {
            hands->tap({code});
        }
        ASSERT_TRUE(waitUntil([&] {
            return orlune.program().standardError().find("Keys can be posted") != std::string::npos;
        })) << orlune.program().standardError();
    }

    void useShortcut() const { hands->tap({key::leftControl, key::leftAlt, key::d}); }

    std::unique_ptr<UserKeyboard> hands = UserKeyboard::open();
    RunningOrlune orlune;

  private:
    test::TemporaryFolder folder_;
};

TEST_F(GnomeDictation, GoesIntoEveryKindOfWindow) {
    ASSERT_NO_FATAL_FAILURE(startAndAllow());
    for (const auto toolkit : {Toolkit::gtk, Toolkit::qt, Toolkit::terminal}) {
        NativeWindow window(toolkit);
        useShortcut();
        ASSERT_TRUE(orlune.reaches("listening"));
        useShortcut();
        ASSERT_TRUE(orlune.reaches("reviewing"));
        EXPECT_TRUE(window.hasKeyboard());
        EXPECT_EQ(window.text(), "");
        useShortcut();
        EXPECT_TRUE(window.receives(RunningOrlune::understoodWords)) << window.text();
        EXPECT_TRUE(orlune.reaches("idle"));
    }
}

} // namespace
} // namespace orlune::desktop
