#include "platform/linux/paste/ConnectionKeeper.h"

#include <QTimer>

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace orlune {

namespace {

using namespace std::chrono_literals;

/// A little longer than the process sleeps.
constexpr auto collectAfter = 1100ms;
constexpr int kept = STDERR_FILENO + 1;

pid_t sleepWith(int descriptor) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    // First: opening the others may not close it.
    posix_spawn_file_actions_adddup2(&actions, descriptor, kept);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0);
    }
    posix_spawn_file_actions_addclosefrom_np(&actions, kept + 1);
    // Not in the group of a terminal, whose Ctrl-C would end it too.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    std::string name = "sleep";
    std::string seconds = "1";
    std::string folder = "PATH=/usr/bin:/bin";
    std::array<char*, 3> arguments{name.data(), seconds.data(), nullptr};
    std::array<char*, 2> environment{folder.data(), nullptr};
    pid_t child = 0;
    if (::posix_spawnp(&child, name.c_str(), &actions, &attributes, arguments.data(),
                       environment.data())
        != 0) {
        child = 0;
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

void end(pid_t child) {
    if (child > 0) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
}

} // namespace

ConnectionKeeper::ConnectionKeeper() : collecting_(std::make_unique<QTimer>()) {
    collecting_->setSingleShot(true);
    QObject::connect(collecting_.get(), &QTimer::timeout, collecting_.get(), [this] { collect(); });
}

ConnectionKeeper::~ConnectionKeeper() {
    end(sleeping_);
}

void ConnectionKeeper::keep(int descriptor) {
    end(std::exchange(sleeping_, sleepWith(descriptor)));
    collecting_->start(collectAfter);
}

void ConnectionKeeper::collect() {
    if (sleeping_ > 0 && ::waitpid(sleeping_, nullptr, WNOHANG) == 0) {
        collecting_->start(collectAfter);
        return;
    }
    sleeping_ = 0;
}

} // namespace orlune
