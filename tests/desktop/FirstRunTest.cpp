// A new user's first minutes: from an empty system to the home page, with a real keyring, using
// only the keyboard and only the pointer.
#include "tests/desktop/SpeechService.h"
#include "tests/desktop/WindowUser.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gmock/gmock.h>

#include <algorithm>

namespace orlune {
namespace {

namespace keycode = desktop::keycode;
using desktop::waitUntil;
using testing::HasSubstr;

class FirstRun : public desktop::WindowUser {
  protected:
    FirstRun() {
        environment.merge(service.clientEnvironment());
        launch();
    }

    void expectPermissions() {
        ASSERT_TRUE(reader.shows("Two permissions. Nothing more."));
        EXPECT_TRUE(waitUntil([this] {
            return std::ranges::count(reader.elements(), "Allowed",
                                      &desktop::ScreenReader::Element::name)
                   == 2;
        }));
    }

    desktop::SpeechService service{key};
};

TEST_F(FirstRun, WorksByKeyboardOnly) {
    ASSERT_TRUE(reader.shows("Speak. Structure. Ship."));
    ASSERT_TRUE(getsFocus("Continue"));
    keyboard.tap({keycode::enter});
    ASSERT_TRUE(reader.shows("Connect Deepgram."));
    ASSERT_TRUE(getsFocus("Deepgram API key"));
    type(key);
    keyboard.tap({keycode::enter});
    ASSERT_TRUE(reader.shows("Deepgram key saved securely"));
    EXPECT_EQ(storedKey(), key);
    ASSERT_TRUE(getsFocus("Continue"));
    keyboard.tap({keycode::enter});
    expectPermissions();
    keyboard.tap({keycode::enter});

    ASSERT_TRUE(reader.shows("Try your first prompt."));
    ASSERT_TRUE(getsFocus("Test area")) << "by itself";
    EXPECT_TRUE(reader.shows("Press to start"));
    keyboard.tap({keycode::fn});
    ASSERT_TRUE(hears("Listening"));
    desktop::Speaker().speak();
    keyboard.tap({keycode::fn});
    ASSERT_TRUE(reader.shows("Intent check"));
    EXPECT_EQ(reader.await("Test area").text, "");
    keyboard.tap({keycode::fn});
    ASSERT_TRUE(reader.shows("Orlune is ready"));
    EXPECT_FALSE(reader.find("Press to start"));
    EXPECT_THAT(reader.await("Test area").text, HasSubstr("The weather is"));

    moveTo("Start Using Orlune");
    keyboard.tap({keycode::enter});
    ASSERT_TRUE(reader.shows("Ready wherever you type"));
    EXPECT_TRUE(does({"quit"}));
    expectEnd();

    launch();
    EXPECT_TRUE(reader.find("Ready wherever you type")) << "at once";
}

TEST_F(FirstRun, WorksByPointerOnly) {
    click(reader, "Continue");
    ASSERT_TRUE(reader.shows("Connect Deepgram."));
    EXPECT_FALSE(reader.await("Continue").isEnabled);
    click(reader, "Back");
    ASSERT_TRUE(reader.shows("Speak. Structure. Ship."));
    EXPECT_TRUE(reader.hides("Back"));
    click(reader, "Continue");
    EXPECT_FALSE(reader.await("Save Key").isEnabled);
    QGuiApplication::clipboard()->setText(QString::fromStdString(key), QClipboard::Selection);
    click(reader, "Deepgram API key", desktop::MouseButton::middle);
    EXPECT_TRUE(waitUntil([this] { return reader.await("Save Key").isEnabled; }));
    EXPECT_FALSE(reader.await("Continue").isEnabled);
    EXPECT_EQ(storedKey(), "");
    click(reader, "Save Key");
    ASSERT_TRUE(reader.shows("Deepgram key saved securely"));
    EXPECT_EQ(storedKey(), key);
    click(reader, "Continue");
    expectPermissions();
    click(reader, "Continue");
    ASSERT_TRUE(getsFocus("Test area"));
    click(reader, "Back");
    expectPermissions();
    click(reader, "Continue");
    click(reader, "Test area");
    ASSERT_TRUE(getsFocus("Test area"));
    click(reader, "Start Using Orlune");
    EXPECT_TRUE(reader.shows("Ready wherever you type")) << "nothing has to be tried";
}

} // namespace
} // namespace orlune
