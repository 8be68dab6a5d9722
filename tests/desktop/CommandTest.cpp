// The program's commands against the session's real keyring, sound server and a real terminal.
#include "tests/desktop/Commands.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

namespace orlune {
namespace {

using desktop::Outcome;
using desktop::outcome;
using desktop::OwnProgram;
using test::TemporaryFolder;
using testing::HasSubstr;

const std::string key = "a1b2c3d4e5f60718293a4b5c6d7e8f90feedface";

void expectOutcome(const Outcome& seen, const Outcome& expected) {
    EXPECT_EQ(seen.exitCode, expected.exitCode);
    EXPECT_EQ(seen.output, expected.output);
    EXPECT_EQ(seen.error, expected.error);
}

/// The key that another program finds in the keyring.
std::string keyInKeyring() {
    return desktop::run(
        {"secret-tool", "lookup", "service", "app.orlune.Orlune", "account", "deepgramAPIKey"});
}

TEST(KeyCommandOnADesktop, KeepsReplacesShowsAndRemovesTheKey) {
    const Outcome isThere{0, "A key is in the keyring.\n", ""};
    const Outcome isMissing{1, "No key is in the keyring.\n", ""};
    const Outcome isKept{0, "", "The key is in the keyring.\n"};
    const Outcome isRemoved{0, "", "No key is in the keyring.\n"};

    expectOutcome(outcome({"key", "status"}), isMissing);
    expectOutcome(outcome({"key", "set"}, {}, "an older key\n"), isKept);
    expectOutcome(outcome({"key", "set"}, {}, "  " + key + " \r\n"), isKept);
    expectOutcome(outcome({"key", "status"}), isThere);
    EXPECT_EQ(keyInKeyring(), key);
    expectOutcome(outcome({"key", "set"}, {}, " \n"),
                  {1, "", "orlune: no key was given; nothing was changed\n"});
    EXPECT_EQ(keyInKeyring(), key);
    expectOutcome(outcome({"key", "remove"}), isRemoved);
    EXPECT_EQ(keyInKeyring(), "");
    expectOutcome(outcome({"key", "status"}), isMissing);
    expectOutcome(outcome({"key", "remove"}), isRemoved);
}

TEST(DictateCommandOnADesktop, SaysWhyItCannotBegin) {
    const TemporaryFolder folder;
    const std::string text = folder.path() / "notes.wav";
    test::write(text, "These are notes, not sound.\n");
    const OwnProgram::Environment noSound{{"PULSE_SERVER", "unix:/nowhere"}};
    const OwnProgram::Environment noBus{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"}};
    const OwnProgram::Environment noDisplay{{"DISPLAY", ":4000"}};
    struct {
        const char* name;
        std::vector<std::string> arguments;
        OwnProgram::Environment environment;
        std::string text;
    } const rows[] = {
        {"no key", {"dictate"}, {}, "orlune: Add your Deepgram API key in Settings\n"},
        {"no keyring", {"dictate"}, noBus, "orlune: Add your Deepgram API key in Settings\n"},
        {"no microphone", {"dictate", "--local"}, noSound, "orlune: No microphone is available\n"},
        {"a file that is not sound",
         {"dictate", "--local", "--input", text},
         {},
         "orlune: Cannot play " + text + ": "},
        {"no file",
         {"dictate", "--local", "--input", text + "2"},
         {},
         "orlune: Cannot play " + text + "2: "},
        {"a display that is gone",
         {"dictate", "--local", "--insert"},
         noDisplay,
         "orlune: --insert needs a display, and :4000 can't be opened\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto seen = outcome(row.arguments, row.environment);
        EXPECT_EQ(seen.exitCode, 1);
        EXPECT_EQ(seen.output, "");
        EXPECT_THAT(seen.error, HasSubstr(row.text));
    }
}

/// A terminal of 40 columns: what was written to it, and the resulting screen.
class Terminal {
  public:
    static constexpr std::size_t columns = 40;

    Terminal() {
        const winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
        if (::openpty(&person_, &program_, nullptr, nullptr, &size) != 0) {
            throw std::runtime_error("no terminal");
        }
        for (const int descriptor : {person_, program_}) {
            ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        }
        ::fcntl(person_, F_SETFL, O_NONBLOCK);
    }
    ~Terminal() {
        ::close(person_);
        ::close(program_);
    }

    OwnProgram::OnTerminal programsEnd() const { return {program_}; }
    void type(std::string_view text) const {
        [[maybe_unused]] const auto written = ::write(person_, text.data(), text.size());
    }
    const std::string& received() {
        char bytes[4096];
        for (;;) {
            const auto count = ::read(person_, bytes, sizeof bytes);
            if (count <= 0) {
                return received_;
            }
            received_.append(bytes, static_cast<std::size_t>(count));
        }
    }

    /// The lines that are finally on the screen.
    std::vector<std::string> screen() {
        std::vector<std::string> lines(1);
        const std::string eraseLine = "\x1b[2K";
        for (std::string_view rest = received(); !rest.empty();) {
            if (rest.starts_with(eraseLine)) {
                widest_ = std::max(widest_, characters(lines.back()));
                lines.back().clear();
                rest.remove_prefix(eraseLine.size());
                continue;
            }
            if (rest.front() == '\n') {
                lines.emplace_back();
            } else if (rest.front() != '\r') {
                lines.back() += rest.front();
            }
            rest.remove_prefix(1);
        }
        return lines;
    }
    /// The widest line that `screen` saw being erased, in characters: only one line is erased at a
    /// time.
    std::size_t widest() const { return widest_; }

  private:
    static std::size_t characters(std::string_view text) {
        return static_cast<std::size_t>(std::ranges::count_if(
            text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
    }

    int person_ = -1;
    int program_ = -1;
    std::string received_;
    std::size_t widest_ = 0;
};

/// The path of a spoken sentence in this folder.
std::string spokenSentence(const TemporaryFolder& folder) {
    const std::string file = folder.path() / "speech.wav";
    desktop::run({"flite", "-voice", "slt", "-t",
                  "The weather is nice today and we should go for a walk.", "-o", file});
    return file;
}

TEST(DictateCommandOnADesktop, IsCancelledByControlC) {
    const TemporaryFolder folder;
    Terminal terminal;
    OwnProgram program({ORLUNE_PROGRAM, "dictate", "--local", "--input", spokenSentence(folder)},
                       terminal.programsEnd());
    ASSERT_TRUE(desktop::waitUntil([&] {
        return terminal.received().find("Listening ") != std::string::npos;
    })) << terminal.received();
    terminal.type("\x03"); // for every process of the terminal
    EXPECT_EQ(program.exitCode(), 130);
    EXPECT_THAT(terminal.screen(), testing::Contains("Cancelled"));
}

TEST(DictateCommandOnADesktop, RedrawsOneLineOfATerminalAndLeavesItClean) {
    const TemporaryFolder folder;
    Terminal terminal;
    OwnProgram program({ORLUNE_PROGRAM, "dictate", "--local", "--input", spokenSentence(folder)},
                       terminal.programsEnd());
    ASSERT_TRUE(desktop::waitUntil([&] {
        return terminal.received().find("Enter takes it") != std::string::npos;
    })) << terminal.received();
    EXPECT_EQ(program.standardOutput(), "") << "before it was agreed to";
    terminal.type("\n");
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_THAT(program.standardOutput(), HasSubstr("The weather is nice today"));

    // The line was redrawn as the level and the text changed, and never wrapped.
    const auto& received = terminal.received();
    for (const auto* drawn : {"\r\x1b[2KConnecting securely", "\r\x1b[2KListening ", "█",
                              "  The weather", "\r\x1b[2KFinishing"}) {
        EXPECT_THAT(received, HasSubstr(drawn));
    }
    const auto screen = terminal.screen();
    EXPECT_LE(terminal.widest(), Terminal::columns);
    EXPECT_EQ(screen.back(), "");
    EXPECT_THAT(screen, testing::Contains("Goal"));
    EXPECT_THAT(screen, testing::Not(testing::Contains(testing::ContainsRegex(
                            "^(Connecting|Listening|Finishing|Check|Inserted)"))));
}

} // namespace
} // namespace orlune
