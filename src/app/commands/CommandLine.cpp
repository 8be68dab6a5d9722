#include "app/commands/CommandLine.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <QStringList>

#include <string_view>
#include <utility>

namespace orlune {

namespace {

constexpr std::size_t longestCommandName = 9;
constexpr auto statusDescription = "tell what it is doing";

constexpr std::string_view overviewOfTheProgram =
    R"(Usage: orlune [COMMAND] [OPTIONS]

Speak a prompt and have it typed at the cursor. Without a command the program starts; where it is
running already, it comes to the front. "orlune --background" starts it without a window.

Commands for the running program:
)";
constexpr std::string_view overviewOfTheTerminal = R"(
Commands for the terminal:
  dictate    one dictation in this terminal
  intent     show goal, requirements and possible gap of a text on standard input
  key        set, remove or look for the Deepgram API key in the keyring
  autostart  start Orlune at login, or no longer
  doctor     look whether this desktop offers everything a dictation needs

"orlune COMMAND --help" tells more. "orlune --version" prints the version.
)";

std::string overview() {
    std::string text(overviewOfTheProgram);
    const auto add = [&text](std::string name, const char* description) {
        name.resize(longestCommandName, ' ');
        text += "  " + name + "  " + description + "\n";
    };
    for (const auto& entry : remoteRequests) {
        add(entry.name, entry.description);
    }
    add("status", statusDescription);
    return text.append(overviewOfTheTerminal);
}

QStringList listOf(const std::vector<std::string>& arguments, const char* command) {
    QStringList list{QStringLiteral("orlune ") + QString::fromUtf8(command)};
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        list << QString::fromStdString(arguments[index]);
    }
    return list;
}

UsageError usageError(const QString& text, const char* command) {
    return {"orlune: " + text.toStdString() + "\nTry \"orlune " + command + " --help\".\n"};
}

/// Parses one command's options and words in the usual Unix way.
class Parser {
  public:
    Parser(const char* command, const char* description) : command_(command) {
        parser_.setApplicationDescription(QString::fromUtf8(description));
    }

    Parser& option(const char* name, const char* description, const char* value = "") {
        parser_.addOption(
            {QString::fromUtf8(name), QString::fromUtf8(description), QString::fromUtf8(value)});
        return *this;
    }
    Parser& word(const char* name, const char* description) {
        parser_.addPositionalArgument(QString::fromUtf8(name), QString::fromUtf8(description));
        ++wordCount_;
        return *this;
    }

    /// Returns help or an error; none when the command should run.
    std::optional<Command> parse(const std::vector<std::string>& arguments) {
        const auto help = parser_.addHelpOption();
        if (!parser_.parse(listOf(arguments, command_))) {
            return usageError(parser_.errorText(), command_);
        }
        if (parser_.isSet(help)) {
            return Answer{helpText()};
        }
        if (parser_.positionalArguments().size() != wordCount_) {
            return usageError(wordCount_ == 0 ? QStringLiteral("this command takes options only")
                                              : QStringLiteral("this command takes one word"),
                              command_);
        }
        return std::nullopt;
    }

    bool has(const char* name) const { return parser_.isSet(QString::fromUtf8(name)); }
    std::string value(const char* name) const {
        return parser_.value(QString::fromUtf8(name)).toStdString();
    }
    std::string word() const { return parser_.positionalArguments().constFirst().toStdString(); }

  private:
    std::string helpText() const {
        QString text = parser_.helpText();
        // Qt starts the usage line with the path of the running program.
        text.replace(QRegularExpression(QStringLiteral("^Usage: .*? \\[options\\]")),
                     QStringLiteral("Usage: orlune %1 [options]").arg(QString::fromUtf8(command_)));
        return text.toStdString();
    }

    const char* command_;
    QCommandLineParser parser_;
    qsizetype wordCount_ = 0;
};

Command parseRemoteRequest(const RemoteRequestText& entry,
                           const std::vector<std::string>& arguments) {
    const auto description = std::string("Asks the running Orlune to ") + entry.description
                             + ".\nStarts nothing when it isn't running.";
    Parser parser(entry.name, description.c_str());
    if (auto answer = parser.parse(arguments)) {
        return *answer;
    }
    return RemoteOptions{entry.request};
}

Command parseStatus(const std::vector<std::string>& arguments) {
    Parser parser("status", "Asks the running Orlune to tell what it is doing, never what was "
                            "said.\nStarts nothing when it isn't running.");
    parser.option("json", "Prints JSON.");
    if (auto answer = parser.parse(arguments)) {
        return *answer;
    }
    return StatusOptions{parser.has("json")};
}

Command parseDoctor(const std::vector<std::string>& arguments) {
    Parser parser("doctor", "Looks at everything a dictation needs, and says what to do where "
                            "something is missing.\nListens to the microphone for half a second. "
                            "Sends nothing.");
    parser.option("json", "Prints JSON.");
    if (auto answer = parser.parse(arguments)) {
        return *answer;
    }
    return DoctorOptions{parser.has("json")};
}

Command parseDictate(const std::vector<std::string>& arguments) {
    Parser parser("dictate",
                  "One dictation: Enter or the end of standard input ends the recording, Ctrl-C "
                  "cancels.\nThe text goes to standard output, everything else to standard error.");
    parser.option("input", "Takes the audio file FILE in the microphone's place.", "FILE")
        .option("fast", "Feeds the file without waiting.")
        .option("local", "Uses a speech service on this machine: no key, no network.")
        .option("insert", "Pastes the text into the focused window.")
        .option("no-intent-check", "Takes the transcript as it is.")
        .option("yes", "Confirms the intent check without asking.");
    if (auto answer = parser.parse(arguments)) {
        return *answer;
    }
    DictateOptions options;
    if (parser.has("input")) {
        options.input = parser.value("input");
    }
    options.isFast = parser.has("fast");
    options.isLocal = parser.has("local");
    options.insertsText = parser.has("insert");
    options.checksIntent = !parser.has("no-intent-check");
    options.confirmsAtOnce = parser.has("yes");
    if (options.isFast && !options.input) {
        return usageError(QStringLiteral("--fast needs --input"), "dictate");
    }
    return options;
}

Command parseIntent(const std::vector<std::string>& arguments) {
    Parser parser("intent", "Reads a text from standard input and shows what would be asked for.");
    parser.option("json", "Prints JSON.");
    if (auto answer = parser.parse(arguments)) {
        return *answer;
    }
    return IntentOptions{parser.has("json")};
}

Command parseKey(const std::vector<std::string>& arguments) {
    Parser parser("key",
                  "Keeps the Deepgram API key in the desktop's keyring. \"set\" reads it from "
                  "standard input, without showing it.");
    parser.word("set|remove|status", "What to do with the key.");
    if (auto answer = parser.parse(arguments)) {
        return *answer;
    }
    const auto word = parser.word();
    if (word == "set") {
        return KeyOptions{KeyOptions::Action::set};
    }
    if (word == "remove") {
        return KeyOptions{KeyOptions::Action::remove};
    }
    if (word == "status") {
        return KeyOptions{KeyOptions::Action::status};
    }
    // The word is not repeated: it may be the key itself, typed in the wrong place.
    return usageError(QStringLiteral("the word must be set, remove or status; the key itself is "
                                     "never given on the command line"),
                      "key");
}

Command parseAutostart(const std::vector<std::string>& arguments) {
    Parser parser("autostart", "Starts Orlune in the background at login, or no longer.");
    parser.word("on|off|status", "What to do; status answers with its exit code too.");
    if (auto answer = parser.parse(arguments)) {
        return *answer;
    }
    using Action = AutostartOptions::Action;
    for (const auto& [name, action] :
         {std::pair("on", Action::on), {"off", Action::off}, {"status", Action::status}}) {
        if (parser.word() == name) {
            return AutostartOptions{action};
        }
    }
    return usageError(QStringLiteral("the word must be on, off or status"), "autostart");
}

} // namespace

Command parseCommandLine(const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        return LaunchOptions{};
    }
    if (arguments == std::vector<std::string>{"--background"}) {
        return LaunchOptions{.isInBackground = true};
    }
    const auto& command = arguments.front();
    for (const auto& entry : remoteRequests) {
        if (command == entry.name) {
            return parseRemoteRequest(entry, arguments);
        }
    }
    if (command == "status") {
        return parseStatus(arguments);
    }
    if (command == "doctor") {
        return parseDoctor(arguments);
    }
    if (command == "dictate") {
        return parseDictate(arguments);
    }
    if (command == "intent") {
        return parseIntent(arguments);
    }
    if (command == "key") {
        return parseKey(arguments);
    }
    if (command == "autostart") {
        return parseAutostart(arguments);
    }
    if (command == "--help" || command == "-h" || command == "help") {
        return Answer{overview()};
    }
    if (command == "--version") {
        return Answer{"orlune " ORLUNE_VERSION "\n"};
    }
    return UsageError{"orlune: there is no command \"" + command + "\"\n\n" + overview()};
}

} // namespace orlune
