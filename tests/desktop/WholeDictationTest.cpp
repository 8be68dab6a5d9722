// Whole dictations with everything real except the speaker: the program as a separate process,
// speech in the session's microphone, the keyring, TLS, the clipboard, other programs' windows.
#include "tests/desktop/Commands.h"
#include "tests/desktop/SpeechService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace orlune {
namespace {

using desktop::Keyboard;
using desktop::outcome;
using desktop::OwnProgram;
using desktop::Program;
using desktop::SpeechService;
using desktop::waitUntil;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Differs from any real key, so that it can be searched for where it must not be.
const std::string key = "0f1e2d3c4b5a69788796a5b4c3d2e1f0deadbeef";

constexpr auto firstWords = "weather is nice";
constexpr auto lastWords = "go for a walk";

/// The key is in the session's keyring during a test, stored as a user does.
class WholeDictation : public testing::Test {
  protected:
    WholeDictation() {
        const auto setting = outcome({"key", "set"}, {}, key + "\n");
        EXPECT_EQ(setting.exitCode, 0) << setting.error;
        outputs_ += setting.output + setting.error;
    }
    ~WholeDictation() override {
        EXPECT_EQ(outcome({"key", "remove"}).exitCode, 0);
        EXPECT_THAT(outputs_, Not(HasSubstr(key)));
    }

    /// `orlune dictate` with additional options, once it listens.
    std::unique_ptr<OwnProgram> listening(const std::vector<std::string>& options,
                                          OwnProgram::Environment environment = {}) {
        std::vector<std::string> words{ORLUNE_PROGRAM, "dictate"};
        words.insert(words.end(), options.begin(), options.end());
        environment.merge(OwnProgram::Environment(service_.clientEnvironment()));
        auto program = std::make_unique<OwnProgram>(words, environment);
        EXPECT_TRUE(program->says("Listening\n")) << program->standardError();
        EXPECT_THAT(program->visibleToOthers(), Not(HasSubstr(key)));
        EXPECT_THAT(service_.visibleToOthers(), Not(HasSubstr(key)));
        return program;
    }

    /// Speaks, waits until the words are shown, and ends the recording.
    void speakAndEnd(OwnProgram& program, const OwnProgram::Environment& server = {}) {
        speaker_.speak(server);
        EXPECT_TRUE(program.says(lastWords)) << program.standardError();
        program.type("\n");
    }

    /// The exit code; the output is kept and searched for the key.
    std::optional<int> end(OwnProgram& program) {
        const auto code = program.exitCode();
        outputs_ += program.standardOutput() + program.standardError() + service_.outputs();
        return code;
    }

    /// If the process ends before its close message is sent, the service sees a broken connection.
    void expectServiceSawClose(int code) {
        const auto closed = "closed with " + std::to_string(code) + "\n";
        EXPECT_TRUE(waitUntil([&] { return service_.outputs().find(closed) != std::string::npos; }))
            << service_.outputs();
    }

    void expectShownAndMeasured(OwnProgram& program) {
        EXPECT_THAT(program.standardError(),
                    AllOf(HasSubstr("\nGoal\n  The weather is nice today"),
                          HasSubstr("\nRequirements\n  - "),
                          HasSubstr("[Latency]: time_to_first_text_ms="),
                          HasSubstr("[Latency]: key_release_to_insert_ms=")));
        EXPECT_EQ(program.standardOutput(), "");
    }

    desktop::Speaker speaker_;
    SpeechService service_{key};
    std::string outputs_;
};

TEST_F(WholeDictation, ArrivesInATerminal) {
    const desktop::Terminal terminal;
    const auto program = listening({"--insert", "--yes"});
    EXPECT_THAT(desktop::recordings(), Not(testing::IsEmpty()));
    speakAndEnd(*program);
    EXPECT_EQ(end(*program), 0) << program->standardError();
    expectServiceSawClose(1000);
    expectShownAndMeasured(*program);
    EXPECT_TRUE(waitUntil([&] { return terminal.typed().find("walk.") != std::string::npos; }));
    const auto typed = terminal.typed();
    EXPECT_THAT(typed, AllOf(StartsWith("Goal\nThe weather is nice today"), HasSubstr(lastWords)));
    EXPECT_EQ(typed.find("walk"), typed.rfind("walk")) << "pasted more than once: " << typed;
}

TEST_F(WholeDictation, ArrivesInATextField) {
    Program field({"zenity", "--entry"});
    ASSERT_TRUE(waitUntil(desktop::zenityHasKeyboard));

    const auto program = listening({"--insert", "--yes"});
    speakAndEnd(*program);
    EXPECT_EQ(end(*program), 0) << program->standardError();
    expectShownAndMeasured(*program);
    Keyboard keyboard;
    keyboard.press(desktop::keycode::enter);
    keyboard.release(desktop::keycode::enter);
    EXPECT_THAT(field.output(),
                AllOf(HasSubstr("The weather is nice today"), HasSubstr(lastWords)));
}

TEST_F(WholeDictation, SaysWhyWhenTheServiceCannotBeTrusted) {
    const auto program = listening({}, {{"SSL_CERT_FILE", service_.strangersAuthority()}});
    program->type("\n");
    EXPECT_EQ(end(*program), 1);
    EXPECT_THAT(program->standardError(), HasSubstr("orlune: "));
    EXPECT_THAT(program->standardError(), HasSubstr("certificate"));
    EXPECT_EQ(program->standardOutput(), "");
}

TEST_F(WholeDictation, IsCancelledByAnInterrupt) {
    const auto program = listening({});
    ASSERT_THAT(desktop::recordings(), Not(testing::IsEmpty()));
    // A connection that is not open yet is dropped instead of closed.
    speaker_.speak();
    ASSERT_TRUE(program->says(firstWords)) << program->standardError();
    program->signal(SIGINT);
    ASSERT_TRUE(program->says("\nCancelled\n")) << program->standardError();
    EXPECT_TRUE(waitUntil([] { return desktop::recordings().empty(); }))
        << "the microphone is still open";
    EXPECT_EQ(end(*program), 130);
    expectServiceSawClose(1001);
    EXPECT_EQ(program->standardOutput(), "");
}

TEST_F(WholeDictation, ClosesItsConnectionWhenNothingWasSaid) {
    const auto program = listening({});
    program->type("\n");
    EXPECT_EQ(end(*program), 1);
    EXPECT_THAT(program->standardError(), HasSubstr("No speech was transcribed"));
    expectServiceSawClose(1000);
}

TEST_F(WholeDictation, KeepsWhatWasHeardWhenTheSoundServerDies) {
    const desktop::SoundServer sound;
    const auto program = listening({}, sound.clientEnvironment());
    speaker_.speak(sound.clientEnvironment());
    ASSERT_TRUE(program->says(firstWords)) << program->standardError();
    sound.kill();
    program->type("\n");
    EXPECT_EQ(end(*program), 0) << program->standardError();
    EXPECT_THAT(program->standardOutput(), HasSubstr(firstWords));
}

} // namespace
} // namespace orlune
