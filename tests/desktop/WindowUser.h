// A user of Orlune's windows, with a screen reader, a keyboard and a pointer.
#pragma once

#include "tests/desktop/Commands.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/OwnProgram.h"
#include "tests/desktop/ScreenReader.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orlune::desktop {

class WindowUser : public testing::Test {
  protected:
    /// Ends the program and releases all keys while the environment still exists.
    void TearDown() override {
        if (program) {
            EXPECT_TRUE(does({"quit"}));
            expectEnd();
        }
        EXPECT_TRUE(does({"key", "remove"}));
    }

    void finishOnboarding() const {
        const auto folder = configuration.path() / "app.orlune.Orlune";
        std::filesystem::create_directory(folder);
        test::write(folder / "defaults.json", R"({"hasCompletedOnboarding": true})");
    }
    void launch() {
        program.emplace(std::vector<std::string>{ORLUNE_PROGRAM}, environment);
        ASSERT_TRUE(waitUntil([this] { return reader.activeWindow() == "Orlune"; }))
            << program->standardError();
    }
    void expectEnd() {
        EXPECT_EQ(program->exitCode(), 0);
        // Newer versions of Qt warn about what they do not implement.
        EXPECT_THAT(program->standardError(),
                    testing::MatchesRegex("(orlune.Latency.: [a-z_]+=[0-9]+\n"
                                          "|qt.accessibility.atspi: [^\n]*\n)*"));
        program.reset();
    }
    /// Whether `orlune` with these arguments succeeds.
    [[nodiscard]] testing::AssertionResult does(std::vector<std::string> arguments,
                                                std::string_view input = {}) const {
        const auto seen = outcome(std::move(arguments), environment, input);
        return (seen.exitCode == 0 ? testing::AssertionSuccess() : testing::AssertionFailure())
               << seen.error;
    }
    /// The key that the desktop's own tool finds.
    std::string storedKey() const {
        OwnProgram tool({"secret-tool", "lookup", "account", "deepgramAPIKey"}, environment);
        EXPECT_TRUE(tool.exitCode());
        return tool.standardOutput();
    }

    static void type(const std::string& text) { run({"xdotool", "type", text}); }

    /// Whether an element gets this name after the last one that was heard, even briefly.
    [[nodiscard]] testing::AssertionResult hears(std::string_view name) {
        const auto first = heardNames_;
        const auto& names = heard.names();
        const bool isHeard = waitUntil([&] {
            while (heardNames_ < names.size()) {
                if (names[heardNames_++] == name) {
                    return true;
                }
            }
            return false;
        });
        if (isHeard) {
            return testing::AssertionSuccess();
        }
        const std::vector<std::string> others(names.begin() + static_cast<std::ptrdiff_t>(first),
                                              names.end());
        return testing::AssertionFailure() << "but " << testing::PrintToString(others);
    }

    bool isFocused(std::string_view name) const {
        const auto element = reader.focused();
        return element && element->name == name;
    }
    [[nodiscard]] testing::AssertionResult getsFocus(std::string_view name) const {
        if (waitUntil([&] { return isFocused(name); })) {
            return testing::AssertionSuccess();
        }
        const auto element = reader.focused();
        return testing::AssertionFailure()
               << (element ? element->role + ' ' + element->name : "nothing") << " has it";
    }
    /// Presses Tab, and waits until the screen reader reports the new focus.
    void moveOn() {
        const auto count = heard.focused().size();
        keyboard.tap({keycode::tab});
        ASSERT_TRUE(waitUntil([&] { return heard.focused().size() > count; }));
    }
    void moveTo(const std::string& name) {
        for (int count = 0; !isFocused(name); ++count) {
            ASSERT_LT(count, 20) << name << " is not reached";
            ASSERT_NO_FATAL_FAILURE(moveOn());
        }
    }

    const std::string key = "0f1e2d3c4b5a69788796a5b4c3d2e1f0deadbeef";
    const test::TemporaryFolder configuration;
    OwnProgram::Environment environment{{"XDG_CONFIG_HOME", configuration.path()}};
    const ScreenReader reader; // before the program, which checks for one when it starts
    const Announcements heard;
    Keyboard keyboard;
    std::optional<OwnProgram> program;

  private:
    std::size_t heardNames_ = 0;
};

} // namespace orlune::desktop
