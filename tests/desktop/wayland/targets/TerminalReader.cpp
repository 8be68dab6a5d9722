// Runs a terminal (`terminal_target foot`, `terminal_target konsole --separate -e`) whose program
// reads every byte as it comes, and reports the bytes. The focus is what the compositor sends the
// terminal: the log of its Wayland library has it.
#include "Report.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <vector>

namespace {

using namespace orlune::targets;

constexpr std::string_view inside = "--inside";

/// The program in the terminal. What it reports goes to the file.
int readTerminal(const char* reports) {
    const int descriptor = ::open(reports, O_WRONLY);
    termios mode{};
    if (descriptor < 0 || ::tcgetattr(STDIN_FILENO, &mode) != 0) {
        return 1;
    }
    ::cfmakeraw(&mode);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &mode);
    reportText("", descriptor); // reads from now on
    std::string text;
    std::array<char, 4096> bytes{};
    for (;;) {
        const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) {
            return 0;
        }
        text.append(bytes.data(), static_cast<std::size_t>(count));
        reportText(text, descriptor);
        // Echoed, so that a picture of the screen shows it.
        [[maybe_unused]] const auto echoed =
            ::write(STDOUT_FILENO, bytes.data(), static_cast<std::size_t>(count));
    }
}

[[noreturn]] void runTerminal(std::vector<std::string> words, int log) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    ::setenv("WAYLAND_DEBUG", "client", /*replace=*/1);
    ::dup2(log, STDERR_FILENO);
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    ::execvp(pointers.front(), pointers.data());
    std::perror(pointers.front());
    std::_Exit(127);
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && argv[1] == inside) {
        return readTerminal(argv[2]);
    }
    std::array<char, PATH_MAX> self{};
    if (argc < 2 || ::readlink("/proc/self/exe", self.data(), self.size() - 1) < 0) {
        std::fputs("usage: terminal_target TERMINAL [ARGUMENT…]\n", stderr);
        return 64;
    }
    std::vector<std::string> words(argv + 1, argv + argc);
    words.emplace_back(self.data());
    words.emplace_back(inside);
    words.push_back("/proc/" + std::to_string(::getpid()) + "/fd/1");
    std::array<int, 2> log{};
    if (::pipe2(log.data(), O_CLOEXEC) != 0) {
        std::perror("terminal_target");
        return 1;
    }
    const pid_t terminal = ::fork();
    if (terminal == 0) {
        runTerminal(std::move(words), log[1]);
    }
    ::close(log[1]);
    FILE* const lines = ::fdopen(log[0], "r");
    char* line = nullptr;
    std::size_t capacity = 0;
    while (::getline(&line, &capacity, lines) >= 0) {
        const std::string_view text(line);
        if (text.find("wl_keyboard") == std::string_view::npos) {
            // What the terminal has to say about itself.
            if (!text.starts_with('[')) {
                std::fputs(line, stderr);
            }
        } else if (text.find(".enter(") != std::string_view::npos) {
            reportFocus(/*isIn=*/true);
        } else if (text.find(".leave(") != std::string_view::npos) {
            reportFocus(/*isIn=*/false);
        }
    }
    std::free(line);
    std::fclose(lines);
    int status = 0;
    ::waitpid(terminal, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
