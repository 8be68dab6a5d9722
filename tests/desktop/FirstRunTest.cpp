// A stranger's first minutes: from nothing to the home page, over a real keyring, by the keyboard
// alone and by the pointer alone.
#include "tests/desktop/Desktop.h"
#include "tests/desktop/OwnProgram.h"
#include "tests/desktop/ScreenReader.h"
#include "tests/desktop/SpeechService.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlune {
namespace {

using desktop::click;
using desktop::Keyboard;
using desktop::OwnProgram;
using desktop::ScreenReader;
using desktop::waitUntil;

constexpr Keyboard::Keycode returnKey = 36;

std::string storedKey() {
    return desktop::run({"secret-tool", "lookup", "account", "deepgramAPIKey"});
}

class FirstRun : public testing::Test {
  protected:
    ~FirstRun() override {
        EXPECT_EQ(OwnProgram({ORLUNE_PROGRAM, "quit"}).exitCode(), 0);
        EXPECT_EQ(program.exitCode(), 0);
        EXPECT_EQ(OwnProgram({ORLUNE_PROGRAM, "key", "remove"}).exitCode(), 0);
    }

    void tap(Keyboard::Keycode code) {
        keyboard.press(code);
        keyboard.release(code);
    }

    const std::string key = "0f1e2d3c4b5a69788796a5b4c3d2e1f0deadbeef";
    test::TemporaryFolder configuration;
    ScreenReader reader;
    Keyboard keyboard;
    desktop::SpeechService service{key};
    OwnProgram program{{ORLUNE_PROGRAM}, [this] {
                           auto environment = service.clientEnvironment();
                           environment["XDG_CONFIG_HOME"] = configuration.path();
                           return environment;
                       }()};
};

TEST_F(FirstRun, ByTheKeyboardAlone) {
    ASSERT_TRUE(reader.shows("Speak. Structure. Ship.")) << program.standardError();
    tap(returnKey);
    ASSERT_TRUE(reader.shows("Connect Deepgram."));
    desktop::run({"xdotool", "type", key});
    tap(returnKey);
    EXPECT_TRUE(reader.shows("Deepgram key saved securely"));
    EXPECT_EQ(storedKey(), key);
}

TEST_F(FirstRun, ByThePointerAlone) {
    click(reader, "Continue");
    ASSERT_TRUE(reader.shows("Connect Deepgram."));
}

} // namespace
} // namespace orlune
