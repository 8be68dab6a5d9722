#include "platform/linux/paste/QtPasteboard.h"
#include "platform/linux/paste/XTestKeyPoster.h"
#include "platform/linux/x11/X11Accessibility.h"
#include "services/TextInsertionService.h"
#include "tests/desktop/Desktop.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace orlune {
namespace {

using desktop::Keyboard;
using desktop::KeyRecorder;
using desktop::Program;
using desktop::waitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace keycode = desktop::keycode;

constexpr std::uint16_t virtualReturn = 36;
constexpr std::uint16_t virtualEscape = 53;
constexpr std::uint16_t virtualTab = 48;
constexpr std::uint16_t virtualV = 9;

/// A program that receives text and reports it.
class Target {
  public:
    virtual ~Target() = default;
    /// Finishes the input with keys of `poster` and returns the whole text.
    virtual std::string finish(XTestKeyPoster& poster) = 0;
};

void tap(XTestKeyPoster& poster, std::uint16_t virtualKey,
         ModifierFlags flags = ModifierFlags::none) {
    for (const bool isDown : {true, false}) {
        poster.post(EventTapLocation::hidEventTap,
                    {.virtualKey = virtualKey, .isKeyDown = isDown, .flags = flags});
    }
}

/// A terminal in which `cat` writes its input into a file, byte for byte.
class Terminal final : public Target {
  public:
    explicit Terminal(const std::string& className = "XTerm")
        : file_(folder_.filePath("input").toStdString()),
          program_({"xterm", "-fa", "Monospace", "-class", className, "-name", className, "-e",
                    "sh", "-c", "stty -echo -icanon -iexten; exec cat > " + file_}) {
        EXPECT_TRUE(waitUntil([&] {
            return std::filesystem::exists(file_) && desktop::focusedClass() == className;
        })) << "the terminal did not come up";
    }

    std::string finish(XTestKeyPoster& poster) override {
        // The terminal requests a pasted text, and keys would overtake the answer.
        EXPECT_TRUE(!isPastedInto || waitUntil([this] { return !arrived().empty(); }));
        tap(poster, virtualReturn);
        tap(poster, virtualEscape);
        EXPECT_TRUE(waitUntil([this] { return arrived().ends_with('\x1b'); })) << arrived();
        auto text = arrived();
        text.pop_back();
        return text;
    }

    bool isPastedInto = true;

  private:
    std::string arrived() const {
        std::ifstream stream(file_);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    QTemporaryDir folder_;
    std::string file_;
    Program program_;
};

/// A GTK text field with one line.
class Entry final : public Target {
  public:
    Entry() : program_({"zenity", "--entry"}) {
        EXPECT_TRUE(waitUntil(desktop::zenityHasKeyboard)) << "the text field did not come up";
    }
    std::string finish(XTestKeyPoster& poster) override {
        tap(poster, virtualReturn);
        return program_.output();
    }

  private:
    Program program_;
};

/// A GTK text area.
class TextArea final : public Target {
  public:
    TextArea() : program_({"zenity", "--text-info", "--editable"}) {
        EXPECT_TRUE(waitUntil(desktop::zenityHasKeyboard)) << "the text area did not come up";
    }
    std::string finish(XTestKeyPoster& poster) override {
        // Moves the focus out of the text, past the first button, to the second.
        tap(poster, virtualTab, ModifierFlags::control);
        tap(poster, virtualTab);
        tap(poster, virtualReturn);
        return program_.output();
    }

  private:
    Program program_;
};

class TextInsertionDesktopTest : public testing::Test {
  protected:
    std::unique_ptr<XTestKeyPoster> makePoster(std::vector<std::string> terminals = {}) {
        return std::make_unique<XTestKeyPoster>(
            std::move(terminals),
            XTestKeyPoster::Hooks{
                .ownPrimarySelection = [this] { return pasteboard.ownPrimarySelection(); },
                .willPost = [this] { events.push_back("will post"); },
                .didPost = [this] { events.push_back("did post"); },
                .onModifiersReleased =
                    [this](const auto& keys) {
                        for (const auto key : keys) {
                            events.push_back("released " + std::to_string(key));
                        }
                    },
            });
    }

    void insert(const std::string& text) {
        TextInsertionService(accessibility, pasteboard, *poster).insert(text);
    }
    bool waitUntilPosted() {
        return waitUntil([this] { return !events.empty() && events.back() == "did post"; });
    }
    /// Keys that are posted now arrive after the text.
    bool waitUntilFetched(int times = 1) {
        const bool isFetched = waitUntil([&] { return fetches.count() >= times; });
        QGuiApplication::sync();
        return isFetched;
    }

    Keyboard keyboard;
    desktop::FetchCounter fetches;
    QtPasteboard pasteboard;
    X11Accessibility accessibility{[this](const auto& reason) { events.push_back(reason); }};
    std::vector<std::string> events;
    std::unique_ptr<XTestKeyPoster> poster = makePoster();
};

struct Situation {
    std::string name;
    std::vector<std::string> layout = {"us"};
    unsigned int activeLayout = 0;
    bool capsLock = false;
    bool numLock = false;
    std::vector<Keyboard::Keycode> held = {};
};

class PasteTest : public TextInsertionDesktopTest, public testing::WithParamInterface<Situation> {
  protected:
    void prepare() {
        const auto& situation = GetParam();
        keyboard.useLayout(situation.layout, situation.activeLayout);
        keyboard.lock(situation.capsLock, situation.numLock);
    }

    /// The user releases the keys while the chord is still on its way.
    void insertWithKeysHeld() {
        for (const auto key : GetParam().held) {
            keyboard.press(key);
        }
        insert(text);
        for (const auto key : GetParam().held) {
            keyboard.release(key);
        }
        EXPECT_TRUE(waitUntilPosted());
        EXPECT_THAT(keyboard.down(), IsEmpty()) << "a key is stuck";
        EXPECT_TRUE(waitUntilFetched());
    }

    static constexpr auto text = "Größe, naïve — 日本語 🙂 «да»";
};

TEST_P(PasteTest, ArrivesOnceInATerminal) {
    prepare();
    Terminal terminal;
    insertWithKeysHeld();
    EXPECT_EQ(terminal.finish(*poster), std::string(text) + "\n");
    EXPECT_EQ(fetches.count(), 1);
}

TEST_P(PasteTest, ArrivesOnceInATextField) {
    prepare();
    Entry entry;
    insertWithKeysHeld();
    EXPECT_EQ(entry.finish(*poster), std::string(text) + "\n");
    EXPECT_EQ(fetches.count(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    , PasteTest,
    testing::Values(
        Situation{.name = "withNothingHeld"},
        Situation{.name = "withShiftHeld", .held = {keycode::shift}},
        Situation{.name = "withControlHeld", .held = {keycode::control}},
        Situation{.name = "withAltHeld", .held = {keycode::alt}},
        Situation{.name = "withSuperHeld", .held = {keycode::super}},
        Situation{.name = "withControlAltAndShiftHeld",
                  .held = {keycode::rightControl, keycode::alt, keycode::shift}},
        Situation{.name = "withAltGrHeld", .layout = {"de"}, .held = {keycode::rightAlt}},
        Situation{.name = "onDvorak", .layout = {"us", "-variant", "dvorak"}},
        Situation{.name = "onCyrillicAsSecondLayout", .layout = {"us,ru"}, .activeLayout = 1},
        Situation{.name = "onCyrillicAlone", .layout = {"ru"}},
        Situation{.name = "withControlAndCapsLockSwapped",
                  .layout = {"us", "-option", "ctrl:swapcaps"}},
        Situation{.name = "withCapsLockAndNumLockOn", .capsLock = true, .numLock = true}),
    [](const auto& row) { return row.param.name; });

std::string longText() {
    std::ostringstream text;
    for (int line = 0; text.tellp() < 100'000; ++line) {
        text << "line " << line << " größer als ein Wort\n";
    }
    return text.str();
}

TEST_F(TextInsertionDesktopTest, ALongTextArrivesWholeInATerminal) {
    Terminal terminal;
    insert(longText());
    EXPECT_EQ(terminal.finish(*poster), longText() + "\n");
}

TEST_F(TextInsertionDesktopTest, ALongTextArrivesWholeInATextArea) {
    TextArea area;
    insert(longText());
    EXPECT_TRUE(waitUntilFetched());
    EXPECT_EQ(area.finish(*poster), longText());
}

TEST_F(TextInsertionDesktopTest, TheTextStaysOnTheClipboardAsPlainText) {
    insert("stays");
    EXPECT_EQ(desktop::run({"xclip", "-selection", "clipboard", "-o"}), "stays");
    const auto targets = desktop::run({"xclip", "-selection", "clipboard", "-o", "-t", "TARGETS"});
    EXPECT_THAT(targets, HasSubstr("UTF8_STRING"));
    EXPECT_THAT(targets, HasSubstr("text/plain"));
    EXPECT_THAT(targets, testing::Not(HasSubstr("html")));
}

TEST_F(TextInsertionDesktopTest, AClipboardThatWasTakenThisVeryMomentIsNotPastedAsOurs) {
    Entry entry;
    // Without a turn of our loop the toolkit does not know yet, and requests it in vain. The other
    // program may run in the background before it owns the clipboard.
    ASSERT_EQ(std::system("printf theirs | xclip -selection clipboard; until [ \"$(timeout 1 "
                          "xclip -selection clipboard -o)\" = theirs ]; do :; done"),
              0);
    EXPECT_THROW(insert("ours"), TextInsertionService::InsertionError);
    EXPECT_THAT(keyboard.down(), IsEmpty());

    EXPECT_TRUE(waitUntil([this] { return pasteboard.setString("ours"); }));
    insert("ours");
    EXPECT_TRUE(waitUntilFetched());
    EXPECT_EQ(entry.finish(*poster), "ours\n");
}

TEST_F(TextInsertionDesktopTest, AClearedClipboardIsEmptyInTheNextTurn) {
    pasteboard.setString("secret");
    pasteboard.clearContents();
    EXPECT_TRUE(
        waitUntil([] { return desktop::run({"xclip", "-selection", "clipboard", "-o"}).empty(); }));
}

TEST_F(TextInsertionDesktopTest, TheUsersPrimarySelectionIsOnlyTakenForTerminals) {
    const auto select = [] {
        desktop::run({"sh", "-c", "printf selected | xclip -selection primary"});
    };
    const auto selected = [] { return desktop::run({"xclip", "-selection", "primary", "-o"}); };
    select();
    Entry entry;
    insert("dictated");
    EXPECT_TRUE(waitUntilFetched());
    EXPECT_EQ(entry.finish(*poster), "dictated\n");
    EXPECT_EQ(selected(), "selected");

    select();
    Terminal terminal;
    insert("dictated");
    EXPECT_EQ(terminal.finish(*poster), "dictated\n");
    EXPECT_EQ(selected(), "dictated");
}

TEST_F(TextInsertionDesktopTest, NothingIsPastedIntoATerminalWhoseSelectionAnotherProgramKeeps) {
    Terminal terminal;
    terminal.isPastedInto = false;
    poster = std::make_unique<XTestKeyPoster>(
        std::vector<std::string>{},
        XTestKeyPoster::Hooks{.ownPrimarySelection = [] { return false; }});
    EXPECT_THROW(insert("dictated"), TextInsertionService::InsertionError) << "no key was posted";
    EXPECT_EQ(terminal.finish(*poster), "\n");
}

TEST_F(TextInsertionDesktopTest, AConfiguredTerminalIsPastedIntoAsOne) {
    poster = makePoster({"Homemade"});
    Terminal terminal("Homemade");
    insert("text");
    EXPECT_EQ(terminal.finish(*poster), "text\n");
}

TEST_F(TextInsertionDesktopTest, ATerminalIsFoundByTheInputFocusWhenTheActiveWindowVanished) {
    Terminal terminal;
    desktop::claimThatAVanishedWindowIsActive();
    insert("text");
    EXPECT_EQ(terminal.finish(*poster), "text\n");
}

TEST_F(TextInsertionDesktopTest, WithoutAnyWindowTheTextIsOnTheClipboardAndNoKeyStaysDown) {
    ASSERT_EQ(desktop::focusedClass(), "");
    insert("nowhere to go");
    EXPECT_TRUE(waitUntilPosted());
    EXPECT_THAT(keyboard.down(), IsEmpty());
    EXPECT_EQ(desktop::run({"xclip", "-selection", "clipboard", "-o"}), "nowhere to go");
}

TEST_F(TextInsertionDesktopTest, ThreePastesInABurstArriveThreeTimes) {
    Entry entry;
    pasteboard.setString("ha");
    for (int paste = 0; paste < 3; ++paste) {
        tap(*poster, virtualV, ModifierFlags::command);
    }
    EXPECT_TRUE(waitUntilPosted());
    EXPECT_THAT(keyboard.down(), IsEmpty());
    EXPECT_TRUE(waitUntilFetched(3));
    EXPECT_EQ(entry.finish(*poster), "hahaha\n");
}

TEST_F(TextInsertionDesktopTest, APosterThatGoesBetweenDownAndUpLeavesNoKeyDown) {
    poster->post(EventTapLocation::hidEventTap,
                 {.virtualKey = virtualV, .isKeyDown = true, .flags = ModifierFlags::command});
    EXPECT_THAT(keyboard.down(), ElementsAre(keycode::control, keycode::v));
    poster.reset();
    EXPECT_THAT(keyboard.down(), IsEmpty());
}

TEST_F(TextInsertionDesktopTest, APosterThatGoesRightAfterThePasteLeavesNoKeyDown) {
    Entry entry;
    insert("last words");
    poster.reset();
    EXPECT_THAT(keyboard.down(), IsEmpty());
    poster = makePoster();
    EXPECT_TRUE(waitUntilFetched());
    EXPECT_EQ(entry.finish(*poster), "last words\n");
}

class ChordTest : public TextInsertionDesktopTest {
  protected:
    /// The keys that the focused window receives, from the paste on.
    std::vector<std::string> chordWith(std::vector<Keyboard::Keycode> held,
                                       const std::string& className = "Editor") {
        KeyRecorder recorder(className);
        for (const auto key : held) {
            keyboard.press(key);
        }
        EXPECT_EQ(recorder.keys().size(), held.size());
        insert("text");
        EXPECT_TRUE(waitUntilPosted());
        const auto& keys = recorder.keys();
        std::vector<std::string> chord;
        std::optional<std::uint64_t> pressed;
        for (std::size_t index = held.size(); index < keys.size(); ++index) {
            const auto& [isDown, key, milliseconds] = keys[index];
            chord.push_back((isDown ? "down " : "up ") + std::to_string(key));
            if (key == keycode::v || key == keycode::insert) {
                EXPECT_TRUE(isDown || !pressed || milliseconds - *pressed >= 30)
                    << "the key was down too short for some programs";
                pressed = milliseconds;
            }
        }
        return chord;
    }
};

TEST_F(ChordTest, IsControlV) {
    EXPECT_THAT(chordWith({}), ElementsAre("down 37", "down 55", "up 55", "up 37"));
    EXPECT_THAT(events, ElementsAre("will post", "did post"));
}

TEST_F(ChordTest, IsWhatPastesInTheWindow) {
    for (const auto* window : {"kitty", "Emacs", "Gvim"}) {
        EXPECT_THAT(chordWith({}, window), ElementsAre("down 50", "down 118", "up 118", "up 50"));
        events.clear();
    }
    EXPECT_THAT(chordWith({}, "cool-retro-term"),
                ElementsAre("down 37", "down 50", "down 55", "up 55", "up 50", "up 37"));
}

TEST_F(ChordTest, ComesAfterTheUsersShiftWhichIsReportedAndNotPressedAgain) {
    EXPECT_THAT(chordWith({keycode::shift}),
                ElementsAre("up 50", "down 37", "down 55", "up 55", "up 37"));
    EXPECT_THAT(events, ElementsAre("will post", "released 50", "did post"));
}

TEST_F(ChordTest, PressesAnewAKeyThatTheUserStillHolds) {
    EXPECT_THAT(chordWith({keycode::v, keycode::control}),
                ElementsAre("up 37", "up 55", "down 37", "down 55", "up 55", "up 37"));
    EXPECT_THAT(keyboard.down(), IsEmpty());
}

TEST_F(ChordTest, NeverLetsAltBeTappedAlone) {
    EXPECT_THAT(chordWith({keycode::alt}),
                ElementsAre("down 37", "up 64", "up 37", "down 37", "down 55", "up 55", "up 37"));
    keyboard.release(keycode::alt);
    EXPECT_THAT(chordWith({keycode::alt}, "kitty"),
                ElementsAre("down 37", "up 64", "up 37", "down 50", "down 118", "up 118", "up 50"));
}

/// A second X server that can be killed.
class OtherServer {
  public:
    explicit OtherServer(const std::vector<std::string>& options = {})
        : program_(command(options)), name_(":" + program_.firstLine()) {}
    const std::string& name() const { return name_; }
    void kill() { program_.kill(); }

  private:
    static std::vector<std::string> command(const std::vector<std::string>& options) {
        std::vector<std::string> words{"Xvfb", "-displayfd", "1", "-nolisten", "tcp"};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }
    Program program_;
    std::string name_;
};

TEST(X11TrustTest, IsGivenOnAnOrdinaryDisplayAndEndsWithItWithoutHarm) {
    OtherServer server;
    X11Accessibility accessibility({}, server.name());
    XTestKeyPoster poster({}, {}, server.name());
    EXPECT_TRUE(accessibility.isProcessTrusted());
    EXPECT_EQ(accessibility.reasonForDistrust(), "");
    const auto source = poster.createSource(EventSourceState::hidSystemState);
    ASSERT_TRUE(source);

    server.kill();

    EXPECT_FALSE(accessibility.isProcessTrusted());
    EXPECT_THAT(accessibility.reasonForDistrust(), HasSubstr("cannot reach an X display"));
    tap(poster, virtualV, ModifierFlags::command);
    EXPECT_FALSE(poster.createSource(EventSourceState::hidSystemState));
}

TEST(X11TrustTest, IsRefusedWithAReasonInThePromptWhereNobodyMayType) {
    OtherServer server({"-extension", "XTEST"});
    std::vector<std::string> prompts;
    X11Accessibility accessibility([&](const auto& reason) { prompts.push_back(reason); },
                                   server.name());
    XTestKeyPoster poster({}, {}, server.name());

    EXPECT_FALSE(accessibility.isProcessTrustedWithOptions(/*prompt=*/false));
    EXPECT_THAT(prompts, IsEmpty());
    EXPECT_FALSE(accessibility.isProcessTrustedWithOptions(/*prompt=*/true));
    EXPECT_THAT(prompts, ElementsAre(HasSubstr("XTEST")));
    EXPECT_FALSE(poster.createSource(EventSourceState::hidSystemState));
}

TEST(KeyEventCreationTest, KnowsTheKeysOfAKeyboardAndNoOthers) {
    XTestKeyPoster poster({}, {});
    const auto source = poster.createSource(EventSourceState::hidSystemState);
    ASSERT_TRUE(source);
    EXPECT_TRUE(poster.createKeyboardEvent(*source, virtualV, /*isKeyDown=*/true));
    EXPECT_FALSE(poster.createKeyboardEvent(*source, /*Fn*/ 63, /*isKeyDown=*/true));
    EXPECT_FALSE(poster.createKeyboardEvent(*source, 4000, /*isKeyDown=*/true));
}

} // namespace
} // namespace orlune
