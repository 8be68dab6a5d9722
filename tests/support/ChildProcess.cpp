#include "tests/support/ChildProcess.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace orlune::test {

namespace {

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (const auto& text : texts) {
        result.push_back(const_cast<char*>(text.c_str()));
    }
    result.push_back(nullptr);
    return result;
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& environment, std::string_view input) {
    int ends[2] = {};
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[0], 0);
    // Its output would mix with the test's own report.
    ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const int error = ::posix_spawnp(&process_, arguments[0].c_str(), &actions, nullptr,
                                     pointers(arguments).data(), pointers(environment).data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[0]);
    [[maybe_unused]] const auto written = ::write(ends[1], input.data(), input.size());
    ::close(ends[1]);
    if (error != 0) {
        process_ = -1;
        throw std::runtime_error("cannot start " + arguments[0]);
    }
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : process_(std::exchange(other.process_, -1)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(process_, other.process_);
    return *this;
}

ChildProcess::~ChildProcess() {
    kill();
}

void ChildProcess::signal(int number) const {
    if (process_ > 0) {
        ::kill(process_, number);
    }
}

bool ChildProcess::isRunning() {
    if (process_ > 0 && ::waitpid(process_, nullptr, WNOHANG) == process_) {
        process_ = -1;
    }
    return process_ > 0;
}

void ChildProcess::kill() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(std::exchange(process_, -1), nullptr, 0);
    }
}

} // namespace orlune::test
