#include "app/commands/ReadSecret.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <pty.h>
#include <string>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace orlune {
namespace {

std::optional<std::string> secretFromPipe(std::string_view text) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(ends[1]);
    auto secret = readSecret(ends[0], "prompt");
    close(ends[0]);
    return secret;
}

TEST(ReadSecretTest, takesTheFirstLineOfAPipe) {
    EXPECT_EQ(secretFromPipe("abc\nrest"), "abc");
    EXPECT_EQ(secretFromPipe("no line break"), "no line break");
    EXPECT_EQ(secretFromPipe("\n"), "");
    EXPECT_EQ(secretFromPipe(""), std::nullopt);
    EXPECT_EQ(secretFromPipe(std::string(60'000, 'x')), std::nullopt);
}

class SecretTerminal : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(openpty(&keyboard, &terminal, nullptr, nullptr, nullptr), 0);
    }
    void TearDown() override {
        close(keyboard);
        close(terminal);
    }

    bool echoes() const {
        termios settings{};
        tcgetattr(terminal, &settings);
        return (settings.c_lflag & ECHO) != 0;
    }

    /// Types once the echo is off, and returns what the program read.
    std::optional<std::string> readTyped(std::string_view typed) {
        std::jthread typist([&] {
            while (echoes()) {
                std::this_thread::yield();
            }
            EXPECT_EQ(write(keyboard, typed.data(), typed.size()),
                      static_cast<ssize_t>(typed.size()));
        });
        testing::internal::CaptureStderr();
        auto secret = readSecret(terminal, "Key: ");
        prompt = testing::internal::GetCapturedStderr();
        return secret;
    }

    std::string shown() const {
        std::string text;
        pollfd ready{keyboard, POLLIN, 0};
        while (poll(&ready, 1, 0) > 0 && (ready.revents & POLLIN)) {
            char bytes[64];
            const auto count = read(keyboard, bytes, sizeof bytes);
            text.append(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        return text;
    }

    int keyboard = -1;
    int terminal = -1;
    std::string prompt;
};

TEST_F(SecretTerminal, hidesWhatIsTypedAndRestoresTheEcho) {
    EXPECT_EQ(readTyped("hidden\n"), "hidden");
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(prompt, "Key: \n");
    EXPECT_TRUE(echoes());
}

TEST_F(SecretTerminal, anInterruptGivesNoSecretAndRestoresTheEcho) {
    EXPECT_EQ(readTyped("half\x03\n"), std::nullopt);
    EXPECT_TRUE(echoes());
}

} // namespace
} // namespace orlune
