#include "tests/localservice/ServiceClient.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

namespace orlune::test {
namespace {

/// The program itself, with pipes for input and output.
class Command {
  public:
    explicit Command(std::vector<std::string> arguments) {
        int input[2];
        int output[2];
        if (::pipe(input) != 0 || ::pipe(output) != 0) {
            throw std::runtime_error("no pipe");
        }
        arguments.insert(arguments.begin(), ORLUNE_LOCAL_SERVICE);
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(input[0], STDIN_FILENO);
            ::dup2(output[1], STDOUT_FILENO);
            for (const int end : {input[0], input[1], output[0], output[1]}) {
                ::close(end);
            }
            std::vector<char*> words;
            for (auto& argument : arguments) {
                words.push_back(argument.data());
            }
            words.push_back(nullptr);
            ::execv(words[0], words.data());
            ::_exit(127);
        }
        ::close(input[0]);
        ::close(output[1]);
        input_ = input[1];
        output_ = ::fdopen(output[0], "r");
    }
    ~Command() {
        closeInput();
        std::fclose(output_);
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            status();
        }
    }

    std::string line() {
        char text[256] = {};
        return std::fgets(text, sizeof text, output_) != nullptr ? text : "";
    }
    void closeInput() {
        if (input_ >= 0) {
            ::close(std::exchange(input_, -1));
        }
    }
    void terminate() { ::kill(process_, SIGTERM); }
    int status() {
        int status = 0;
        ::waitpid(std::exchange(process_, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t process_ = 0;
    int input_ = -1;
    std::FILE* output_ = nullptr;
};

TEST(LocalServiceCommand, saysItsAddressServesAndEndsWithItsParent) {
    const TemporaryFolder folder;
    write(folder.path() / "key", "the-key\n");
    write(folder.path() / "script", R"({"steps":[{"send":{"type":"Hello"}},{"close":1000}]})");
    Command command({"--exit-with-parent", "--require-key-file", folder.path() / "key", "--script",
                     folder.path() / "script"});
    const auto address = command.line();
    ASSERT_EQ(address.rfind("ws://127.0.0.1:", 0), 0U);
    const auto port = static_cast<std::uint16_t>(std::stoi(address.substr(15)));
    EXPECT_EQ(ServiceClient(port).open("another-key"), 401U);
    ServiceClient client(port);
    EXPECT_EQ(client.open("the-key"), 101U);
    EXPECT_EQ(client.receive(), R"({"type":"Hello"})");
    command.closeInput();
    EXPECT_EQ(command.status(), 0);
}

TEST(LocalServiceCommand, endsOnASignal) {
    Command command({});
    EXPECT_NE(command.line(), "");
    command.terminate();
    EXPECT_EQ(command.status(), 0);
}

TEST(LocalServiceCommand, distinguishesWrongUseFromMissingFiles) {
    EXPECT_EQ(Command({"--port", "70000"}).status(), 2);
    EXPECT_EQ(Command({"--port"}).status(), 2);
    EXPECT_EQ(Command({"--tls-key", "a"}).status(), 2);
    EXPECT_EQ(Command({"--tls-key", "/nowhere", "--tls-certificate", "/nowhere"}).status(), 1);
    EXPECT_EQ(Command({"--script", "/nowhere"}).status(), 1);
    EXPECT_EQ(Command({"--model", "/nowhere"}).status(), 1);
}

} // namespace
} // namespace orlune::test
