#include "app/OrluneApp.h"
#include "app/commands/AutostartCommand.h"
#include "app/commands/CommandLine.h"
#include "app/commands/DictateCommand.h"
#include "app/commands/DoctorCommand.h"
#include "app/commands/IntentCommand.h"
#include "app/commands/KeyCommand.h"
#include "app/commands/RemoteCommand.h"
#include "platform/linux/secrets/SecretServiceItems.h"

#include <clocale>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <sys/resource.h>
#include <unistd.h>

namespace orlune {
namespace {

/// Runs the parsed command and returns the exit code.
class CommandRunner {
  public:
    CommandRunner(int& argumentCount, char** arguments)
        : argumentCount_(argumentCount), arguments_(arguments) {}

    int operator()(const LaunchOptions& options) const {
        return runOrluneApp(options, argumentCount_, arguments_);
    }
    int operator()(const RemoteOptions& options) const { return runRemoteCommand(options); }
    int operator()(const StatusOptions& options) const { return runStatusCommand(options); }
    int operator()(const DoctorOptions& options) const { return runDoctorCommand(options); }
    int operator()(const DictateOptions& options) const {
        return runDictateCommand(options, argumentCount_, arguments_);
    }
    int operator()(const IntentOptions& options) const {
        return runIntentCommand(options, std::cin, std::cout);
    }
    int operator()(const KeyOptions& options) const {
        SecretServiceItems keyring(patientKeyring());
        const int exitCode = runKeyCommand(options, keyring, STDIN_FILENO);
        if (exitCode == exitDone && options.action != KeyOptions::Action::status) {
            announceKeyChange();
        }
        return exitCode;
    }
    int operator()(const AutostartOptions& options) const { return runAutostartCommand(options); }
    int operator()(const Answer& answer) const {
        std::fputs(answer.text.c_str(), stdout);
        return exitDone;
    }
    int operator()(const UsageError& error) const {
        std::fputs(error.text.c_str(), stderr);
        return exitUsage;
    }

  private:
    int& argumentCount_;
    char** arguments_;
};

} // namespace
} // namespace orlune

int main(int argumentCount, char** arguments) {
    std::setlocale(LC_ALL, "");
    // A reader that goes away becomes a write error instead of ending the program.
    std::signal(SIGPIPE, SIG_IGN);
    // The key and the user's words are in memory and must not get into a core dump. A limit of 0 is
    // not enough: Linux still passes the dump to a program that collects them. With 1 it does not,
    // and writes no file either, which would need more.
    const rlimit noCoreDump{1, 1};
    setrlimit(RLIMIT_CORE, &noCoreDump);
    try {
        const auto command = orlune::parseCommandLine({arguments + 1, arguments + argumentCount});
        return std::visit(orlune::CommandRunner(argumentCount, arguments), command);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orlune: %s\n", error.what());
        return orlune::exitFailed;
    }
}
