// The main window after the first run: dictating into its test area, removing and storing the key,
// and what each page reports to a screen reader.
#include "tests/desktop/SpeechService.h"
#include "tests/desktop/WindowUser.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

namespace orlune {
namespace {

namespace keycode = desktop::keycode;
using desktop::waitUntil;
using testing::HasSubstr;
using testing::Not;

constexpr auto home = "Ready wherever you type";
constexpr auto keyField = "Deepgram API Key";

std::string engine(const std::string& readiness) {
    return "Orlune Engine, Deepgram streaming with your securely stored API key, " + readiness;
}

class Home : public desktop::WindowUser {
  protected:
    Home() { finishOnboarding(); }

    std::string testText() const { return reader.await("Test area").text; }
};

TEST_F(Home, TakesADictationAndShowsItsProgress) {
    const std::string idle = "Press fn to speak. Your prompt will appear at the active cursor";
    const desktop::SpeechService service(
        key, "Add a dark mode to the settings. Make sure the choice is kept.", /*pause=*/1);
    environment.merge(service.clientEnvironment());
    ASSERT_TRUE(does({"key", "set"}, key + "\n"));
    launch();
    ASSERT_TRUE(reader.shows(idle));
    for (const auto& fact : {std::string("Active"), std::string("Microphone, Ready"),
                             std::string("Accessibility, Ready"), engine("Ready")}) {
        EXPECT_TRUE(reader.shows(fact)) << fact;
    }
    EXPECT_FALSE(reader.await("Clear").isEnabled);
    click(reader, "Test area");
    ASSERT_TRUE(getsFocus("Test area"));
    keyboard.tap({keycode::fn});
    ASSERT_TRUE(hears("Listening. Press again when you're finished"));
    keyboard.tap({keycode::fn});
    EXPECT_TRUE(hears("Structuring your prompt. Finishing the transcript"));
    ASSERT_TRUE(hears("Check the intent. Press Fn to insert or Escape to cancel"));
    EXPECT_EQ(testText(), "");
    keyboard.tap({keycode::fn});
    EXPECT_TRUE(hears("Prompt inserted. Ready for the next one"));
    EXPECT_TRUE(hears(idle));
    EXPECT_EQ(testText(), "Goal\nAdd a dark mode to the settings.\n\nRequirements\n"
                          "- Make sure the choice is kept.");
    moveTo("Settings"); // the focus must come back
    click(reader, "Clear");
    EXPECT_TRUE(getsFocus("Test area"));
    EXPECT_EQ(testText(), "");
    EXPECT_FALSE(reader.await("Clear").isEnabled);
}

TEST_F(Home, FollowsTheKeyThatNobodyReads) {
    auto* const board = QGuiApplication::clipboard();
    board->clear();
    board->clear(QClipboard::Selection);
    const std::string second = "99aabbccddeeff00112233445566778899aabbcc";
    launch();
    ASSERT_TRUE(reader.shows(engine("Setup")));
    click(reader, "Settings");
    ASSERT_TRUE(reader.shows("Required for transcription"));
    moveTo(keyField);
    type(key);
    desktop::run({"xdotool", "key", "ctrl+a", "ctrl+c"});
    EXPECT_FALSE(reader.reads(key));
    keyboard.tap({keycode::enter});
    ASSERT_TRUE(reader.shows("Key saved in Mac Keychain"));
    EXPECT_TRUE(reader.shows(engine("Ready")));
    EXPECT_EQ(storedKey(), key);
    type(second);
    click(reader, "Replace");
    EXPECT_TRUE(waitUntil([&] { return storedKey() == second; }));
    EXPECT_TRUE(reader.shows(engine("Ready")));
    for (const auto& secret : {key, second}) {
        EXPECT_FALSE(reader.reads(secret));
        EXPECT_THAT(heard.names(), Not(testing::Contains(HasSubstr(secret))));
        EXPECT_THAT(heard.typed(), Not(HasSubstr(secret)));
        for (const auto mode : {QClipboard::Clipboard, QClipboard::Selection}) {
            EXPECT_THAT(board->text(mode).toStdString(), Not(HasSubstr(secret)));
        }
    }
    click(reader, "Remove");
    EXPECT_TRUE(reader.shows("Key removed"));
    EXPECT_TRUE(reader.shows(engine("Setup")));
    EXPECT_EQ(storedKey(), "");
    click(reader, "Enable Orlune");
    EXPECT_TRUE(reader.shows("Paused"));
}

class MainWindow : public desktop::WindowUser {
  protected:
    static bool hasKeyboard() {
        return waitUntil([] { return desktop::focusedClass() == "app.orlune.Orlune"; });
    }

    /// The screen reader reports each control that Tab reaches, and these are all. `others` are
    /// reached with arrow keys.
    void expectControls(const std::string& window, const std::vector<std::string>& stops,
                        const std::vector<std::string>& others = {}) {
        SCOPED_TRACE(stops.front());
        auto all = stops;
        all.insert(all.end(), others.begin(), others.end());
        const auto controls = [&] {
            std::vector<std::string> found;
            for (const auto& element : reader.elements()) {
                if (element.window == window && element.isFocusable && element.isEnabled) {
                    found.push_back(element.role + ": " + element.name);
                }
            }
            return found;
        };
        const bool areThere =
            waitUntil([&] { return std::ranges::is_permutation(controls(), all); });
        EXPECT_TRUE(areThere) << testing::PrintToString(controls());
        const auto nameOf = [](const std::string& stop) {
            return stop.substr(stop.find(": ") + 2);
        };
        moveTo(nameOf(stops.front()));
        for (std::size_t index = 1; index <= stops.size() && stops.size() > 1; ++index) {
            ASSERT_NO_FATAL_FAILURE(moveOn());
            const auto& stop = stops[index % stops.size()];
            EXPECT_EQ(heard.focused().back(), nameOf(stop));
            EXPECT_TRUE(getsFocus(nameOf(stop)));
        }
    }
    void goOn(std::string_view page) {
        moveTo("Continue");
        keyboard.tap({keycode::enter});
        ASSERT_TRUE(reader.shows(page));
    }
};

TEST_F(MainWindow, IsClosedAndBroughtBackWhileTheProgramRuns) {
    finishOnboarding();
    const desktop::Program other({"xterm"}); // before the launch, which comes to the front
    const auto isLeft = [] { return desktop::focusedClass() == "XTerm"; };
    ASSERT_TRUE(waitUntil(isLeft));
    launch();
    ASSERT_TRUE(reader.shows(home));
    const std::vector<std::pair<std::vector<desktop::Keyboard::Keycode>, std::vector<std::string>>>
        waysOutAndBack{{{keycode::control, keycode::w}, {}},
                       {{keycode::alt, keycode::f4}, {"show"}},
                       {{keycode::alt, keycode::f4}, {}}};
    for (const auto& [out, back] : waysOutAndBack) {
        ASSERT_TRUE(does({"show"}));
        ASSERT_TRUE(hasKeyboard());
        keyboard.tap(out);
        ASSERT_TRUE(reader.hides(home));
        EXPECT_TRUE(does({"status"}));
        ASSERT_TRUE(waitUntil(isLeft));
        EXPECT_TRUE(does(back));
        EXPECT_TRUE(reader.shows(home));
        EXPECT_TRUE(hasKeyboard());
    }
    // Released only after the end: a key that is still passing the screen reader would stay down.
    keyboard.press(keycode::control);
    keyboard.press(keycode::q);
    expectEnd();
}

TEST_F(MainWindow, LetsAScreenReaderReachAndNameEachControl) {
    launch();
    ASSERT_TRUE(reader.shows("Speak. Structure. Ship."));
    expectControls("Orlune", {"button: Continue"});
    goOn("Connect Deepgram.");
    expectControls("Orlune", {"password text: Deepgram API key", "button: Open Deepgram Console",
                              "button: Back"});
    moveTo("Deepgram API key");
    type("any-key");
    expectControls("Orlune", {"password text: Deepgram API key", "button: Save Key",
                              "button: Open Deepgram Console", "button: Back"});
    moveTo("Deepgram API key");
    keyboard.tap({keycode::enter});
    goOn("Two permissions. Nothing more.");
    expectControls("Orlune", {"button: Back", "button: Continue"});
    goOn("Try your first prompt.");
    ASSERT_TRUE(getsFocus("Test area"));
    expectControls("Orlune", {"text: Test area", "button: Back", "button: Start Using Orlune"});
    moveTo("Start Using Orlune");
    keyboard.tap({keycode::enter});
    ASSERT_TRUE(reader.shows(home));
    expectControls("Orlune", {"text: Test area", "button: Settings"});
    moveTo("Settings");
    keyboard.tap({keycode::enter});
    ASSERT_TRUE(reader.shows("Intent Check"));
    expectControls("Orlune Settings",
                   {"radio button: Tap to toggle. Press once to start, once to finish",
                    "button: Shortcut, fn", "check box: Enable Orlune", "check box: Intent Check",
                    "password text: Deepgram API Key", "button: Remove"},
                   {"radio button: Hold to speak. Hold while speaking, release to finish"});
}

} // namespace
} // namespace orlune
