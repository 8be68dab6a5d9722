#include "tests/desktop/OwnProgram.h"

#include "tests/desktop/Desktop.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <stdexcept>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orlune::desktop {

OwnProgram::OwnProgram(const std::vector<std::string>& command, const Environment& changes) {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : changes) {
        environment.insert(QString::fromStdString(name), QString::fromStdString(value));
    }
    process_.setProcessEnvironment(environment);
    start(command);
}

OwnProgram::OwnProgram(const std::vector<std::string>& command, OnTerminal terminal) {
    process_.setChildProcessModifier([terminal] {
        ::setsid();
        ::ioctl(terminal.descriptor, TIOCSCTTY, 0);
        ::dup2(terminal.descriptor, STDIN_FILENO);
        ::dup2(terminal.descriptor, STDERR_FILENO);
    });
    start(command);
}

OwnProgram::~OwnProgram() {
    process_.kill();
    process_.waitForFinished();
}

void OwnProgram::start(const std::vector<std::string>& command) {
    QStringList arguments;
    for (const auto& word : command) {
        arguments << QString::fromStdString(word);
    }
    const auto program = arguments.takeFirst();
    process_.start(program, arguments);
    if (!process_.waitForStarted()) {
        throw std::runtime_error("cannot start " + command.front());
    }
}

void OwnProgram::type(std::string_view input) {
    process_.write(input.data(), static_cast<qint64>(input.size()));
}

void OwnProgram::signal(int number) const {
    ::kill(static_cast<pid_t>(process_.processId()), number);
}

bool OwnProgram::says(std::string_view text) {
    const auto isSaid = [&] { return standardError().find(text) != std::string::npos; };
    return waitUntil([&] { return isSaid() || process_.state() == QProcess::NotRunning; })
           && isSaid();
}

std::optional<int> OwnProgram::exitCode() {
    if (!waitUntil([this] { return process_.state() == QProcess::NotRunning; })
        || process_.exitStatus() != QProcess::NormalExit) {
        return std::nullopt;
    }
    return process_.exitCode();
}

std::string OwnProgram::visibleToOthers() const {
    const auto folder = "/proc/" + std::to_string(process_.processId());
    const auto seen = test::textOf(folder + "/cmdline") + test::textOf(folder + "/environ");
    if (seen.empty()) {
        throw std::runtime_error("the program is gone");
    }
    return seen;
}

} // namespace orlune::desktop
