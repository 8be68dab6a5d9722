// The entry among GNOME's custom shortcuts. The settings are in memory, with the schema next to
// this file.
#include "platform/linux/shortcuts/GnomeCustomShortcut.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <gio/gio.h>
#include <string>
#include <vector>

namespace orlune {
namespace {

/// Before the first use of GSettings.
[[maybe_unused]] const bool isInMemory = [] {
    ::setenv("GSETTINGS_BACKEND", "memory", /*replace=*/1);
    ::setenv("GSETTINGS_SCHEMA_DIR", ORLUNE_SCHEMAS, /*replace=*/1);
    return true;
}();

const std::string folder = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/";
constexpr KeyCombination f9{.virtualKey = 101, .modifiers = ModifierFlags::none};

class GnomeCustomShortcutTest : public testing::Test {
  protected:
    void list(const std::vector<const char*>& names) {
        std::vector<std::string> paths;
        std::vector<const char*> pointers;
        for (const auto* name : names) {
            paths.push_back(folder + name + '/');
        }
        for (const auto& path : paths) {
            pointers.push_back(path.c_str());
        }
        pointers.push_back(nullptr);
        g_settings_set_strv(all_, "custom-keybindings", pointers.data());
    }
    std::string listed() const {
        char** const paths = g_settings_get_strv(all_, "custom-keybindings");
        std::string names;
        for (char** path = paths; *path; ++path) {
            names += std::string(*path).substr(folder.size());
        }
        g_strfreev(paths);
        return names;
    }
    static GSettings* entry(const std::string& name) {
        return g_settings_new_with_path(
            "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding",
            (folder + name + '/').c_str());
    }
    static std::string value(const std::string& name, const char* key) {
        auto* const settings = entry(name);
        char* const text = g_settings_get_string(settings, key);
        std::string copy = text;
        g_free(text);
        g_object_unref(settings);
        return copy;
    }
    static void set(const std::string& name, const char* key, const char* text) {
        auto* const settings = entry(name);
        g_settings_set_string(settings, key, text);
        g_object_unref(settings);
    }

    ~GnomeCustomShortcutTest() override { g_object_unref(all_); }

    GSettings* all_ = g_settings_new("org.gnome.settings-daemon.plugins.media-keys");
};

TEST_F(GnomeCustomShortcutTest, isAddedWithConsentAndThenFollowsTheShortcut) {
    list({"custom0"});
    {
        const auto source = GnomeCustomShortcut::openSettings("Control_R");
        ASSERT_TRUE(source);
        source->watch(f9);
        EXPECT_NE(source->reasonForUnavailability(), "");
        EXPECT_EQ(listed(), "custom0/") << "nothing is written without consent";
        source->requestAccess();
        EXPECT_EQ(source->reasonForUnavailability(), "");
        EXPECT_EQ(listed(), "custom0/orlune/") << "the user's own stay";
        EXPECT_EQ(value("orlune", "binding"), "F9");
        EXPECT_EQ(value("orlune", "command"), "orlune press");
        source->watch({.virtualKey = 49, .modifiers = ModifierFlags::control});
        EXPECT_EQ(value("orlune", "binding"), "<Control>space");
        source->requestAccess();
        EXPECT_EQ(listed(), "custom0/orlune/") << "not twice";
    }
    const auto next = GnomeCustomShortcut::openSettings("Control_R");
    next->watch(f9);
    EXPECT_EQ(next->reasonForUnavailability(), "");
    EXPECT_EQ(value("orlune", "binding"), "F9");
    next->watch({.virtualKey = {}, .modifiers = ModifierFlags::control | ModifierFlags::shift});
    EXPECT_NE(next->reasonForUnavailability(), "");
}

TEST_F(GnomeCustomShortcutTest, isNotNeededWhereTheUserHasBoundACommand) {
    list({"mine"});
    set("mine", "command", "/usr/local/bin/orlune toggle");
    const auto source = GnomeCustomShortcut::openSettings("Control_R");
    source->watch(f9);
    EXPECT_EQ(source->reasonForUnavailability(), "");
    EXPECT_EQ(listed(), "mine/");
}

} // namespace
} // namespace orlune
