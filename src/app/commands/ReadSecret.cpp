#include "app/commands/ReadSecret.h"

#include <cerrno>
#include <csignal>
#include <termios.h>
#include <unistd.h>

namespace orlune {

namespace {

constexpr std::size_t longestSecret = 4096; // bytes

/// Disables echo while it exists. Signals that would end the program are deferred, so that the
/// shell never stays without echo; the terminal's interrupt key is read as a character.
class WithoutEcho {
  public:
    explicit WithoutEcho(int terminal) : terminal_(terminal) {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : {SIGTERM, SIGHUP, SIGTSTP}) {
            sigaddset(&ending, signal);
        }
        pthread_sigmask(SIG_BLOCK, &ending, &before_);
        isTerminal_ = tcgetattr(terminal_, &settings_) == 0;
        if (isTerminal_) {
            auto quiet = settings_;
            quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ISIG);
            tcsetattr(terminal_, TCSAFLUSH, &quiet);
        }
    }
    ~WithoutEcho() {
        if (isTerminal_) {
            tcsetattr(terminal_, TCSAFLUSH, &settings_);
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;

    bool isTerminal() const { return isTerminal_; }

  private:
    const int terminal_;
    bool isTerminal_ = false;
    termios settings_{};
    sigset_t before_{};
};

void say(std::string_view text) {
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace

std::optional<std::string> readSecret(int fileDescriptor, std::string_view prompt) {
    constexpr char interruptKey = 3; // Control-C, an ordinary character here
    const WithoutEcho quiet(fileDescriptor);
    if (quiet.isTerminal()) {
        say(prompt);
    }
    std::string secret;
    bool complete = false;
    while (secret.size() <= longestSecret) {
        char byte = 0;
        const auto count = ::read(fileDescriptor, &byte, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || byte == interruptKey) {
            break;
        }
        if (count == 0 || byte == '\n') {
            complete = count > 0 || !secret.empty();
            break;
        }
        secret += byte;
    }
    if (quiet.isTerminal()) {
        say("\n");
    }
    return complete ? std::optional(std::move(secret)) : std::nullopt;
}

} // namespace orlune
