#include "app/commands/CommandLine.h"

#include "app/commands/IntentCommand.h"

#include <gtest/gtest.h>

#include <sstream>

namespace orlune {

// Readable failure messages for the variant.
void PrintTo(const UsageError& error, std::ostream* stream) {
    *stream << error.text;
}
void PrintTo(const Answer& answer, std::ostream* stream) {
    *stream << answer.text;
}

namespace {

TEST(CommandLineTest, understandsEveryCommand) {
    struct Row {
        std::vector<std::string> arguments;
        Command expected;
    };
    const std::vector<Row> rows{
        {{}, LaunchOptions{}},
        {{"--background"}, LaunchOptions{true}},
        {{"toggle"}, RemoteOptions{RemoteRequest::toggle}},
        {{"quit"}, RemoteOptions{RemoteRequest::quit}},
        {{"status"}, StatusOptions{}},
        {{"status", "--json"}, StatusOptions{true}},
        {{"doctor", "--json"}, DoctorOptions{true}},
        {{"dictate"}, DictateOptions{}},
        {{"dictate", "--input", "a file.wav", "--fast", "--local", "--insert", "--no-intent-check",
          "--yes"},
         DictateOptions{"a file.wav", true, true, true, false, true}},
        {{"dictate", "--input=-odd.wav"}, DictateOptions{.input = "-odd.wav"}},
        {{"intent", "--json"}, IntentOptions{true}},
        {{"intent"}, IntentOptions{}},
        {{"key", "set"}, KeyOptions{KeyOptions::Action::set}},
        {{"key", "remove"}, KeyOptions{KeyOptions::Action::remove}},
        {{"key", "status"}, KeyOptions{KeyOptions::Action::status}},
        {{"--version"}, Answer{"orlune " ORLUNE_VERSION "\n"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parseCommandLine(row.arguments), row.expected)
            << testing::PrintToString(row.arguments);
    }
}

TEST(CommandLineTest, aMistakeIsAnErrorThatNamesItAndNeverRepeatsAKey) {
    const std::vector<std::vector<std::string>> mistakes{
        {"dictat"},
        {"--background", "toggle"},
        {"toggle", "--json"},
        {"quit", "now"},
        {"dictate", "--loud"},
        {"dictate", "--input"},
        {"dictate", "--fast"},
        {"dictate", "file.wav"},
        {"key"},
        {"key", "sesame-open-1234"},
        {"key", "set", "sesame-open-1234"},
    };
    for (const auto& arguments : mistakes) {
        const auto command = parseCommandLine(arguments);
        const auto* error = std::get_if<UsageError>(&command);
        ASSERT_TRUE(error) << arguments.back();
        EXPECT_FALSE(error->text.empty());
        EXPECT_EQ(error->text.find("sesame"), std::string::npos);
    }
}

TEST(CommandLineTest, helpNamesTheOptions) {
    const auto command = parseCommandLine({"dictate", "--help"});
    const auto* help = std::get_if<Answer>(&command);
    ASSERT_TRUE(help);
    EXPECT_TRUE(help->text.starts_with("Usage: orlune dictate [options]")) << help->text;
    EXPECT_NE(help->text.find("--no-intent-check"), std::string::npos);
}

TEST(CommandLineTest, theOverviewNamesEveryCommand) {
    const auto command = parseCommandLine({"--help"});
    const auto* help = std::get_if<Answer>(&command);
    ASSERT_TRUE(help);
    for (const auto* name : {"toggle", "start", "stop", "confirm", "cancel", "show", "settings",
                             "quit", "status", "dictate", "intent", "key", "doctor"}) {
        EXPECT_NE(help->text.find("\n  " + std::string(name) + " "), std::string::npos) << name;
    }
}

TEST(IntentCommandTest, printsTheCheckAsTextAndAsJson) {
    const std::string spoken = "fix the \"login\" form, make sure it works somehow";
    std::istringstream forText(spoken);
    std::ostringstream text;
    EXPECT_EQ(runIntentCommand({}, forText, text), exitDone);
    EXPECT_EQ(text.str(), "Goal\n  Fix the \"login\" form.\nRequirements\n  - Make sure it works "
                          "somehow.\nPossible gap\n  One part sounds open to interpretation.\n");
    std::istringstream forJson(spoken);
    std::ostringstream json;
    EXPECT_EQ(runIntentCommand({true}, forJson, json), exitDone);
    EXPECT_EQ(json.str(),
              R"({"goal":"Fix the \"login\" form.","requirements":["Make sure it works somehow."],)"
              R"("potentialGap":"One part sounds open to interpretation.",)"
              R"("originalTranscript":"fix the \"login\" form, make sure it works somehow",)"
              R"("formattedInstruction":"Goal\nFix the \"login\" form.\n\nRequirements\n)"
              R"(- Make sure it works somehow."})"
              "\n");
}

} // namespace
} // namespace orlune
