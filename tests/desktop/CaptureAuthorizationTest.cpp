#include "platform/linux/pulse/MicrophonePresence.h"
#include "tests/support/PulseServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <thread>

namespace orlune {
namespace {

using namespace std::chrono_literals;
using Status = CaptureAuthorization::Status;

class CaptureAuthorizationTest : public testing::Test {
  protected:
    std::future<bool> request() {
        auto answer = std::make_shared<std::promise<bool>>();
        authorization.requestAccess([answer](bool isGranted) { answer->set_value(isGranted); });
        return answer->get_future();
    }
    /// None without an answer.
    std::optional<bool> isGranted() {
        auto answer = request();
        return answer.wait_for(20s) == std::future_status::ready ? std::optional(answer.get())
                                                                 : std::nullopt;
    }
    /// Whether the status becomes this one without a request.
    bool becomes(Status status) {
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (authorization.authorizationStatus() != status) {
            if (std::chrono::steady_clock::now() > end) {
                return false;
            }
            std::this_thread::sleep_for(1ms);
        }
        return true;
    }

    test::PulseServer server;
    MicrophonePresence authorization;
};

TEST_F(CaptureAuthorizationTest, FollowsTheServerAndItsMicrophones) {
    EXPECT_TRUE(becomes(Status::denied)) << "no server";
    server.start();
    EXPECT_EQ(isGranted(), false) << "no microphone";
    const auto first = server.addMicrophone("first", 48000, 1);
    EXPECT_TRUE(becomes(Status::authorized));
    server.unload(first);
    EXPECT_TRUE(becomes(Status::denied));
    server.load("module-null-sink sink_name=speakers sink_properties=device.api=alsa");
    EXPECT_EQ(isGranted(), false) << "what the machine plays is no microphone";
    server.addMicrophone("second", 48000, 1);
    EXPECT_EQ(isGranted(), true);
    EXPECT_EQ(authorization.authorizationStatus(), Status::authorized);
    server.kill();
    EXPECT_TRUE(becomes(Status::denied)) << "the server died";
    server.start();
    server.addMicrophone("third", 48000, 1);
    EXPECT_TRUE(becomes(Status::authorized)) << "a later server is found by asking";
}

TEST_F(CaptureAuthorizationTest, AServerThatHangsBlocksNobody) {
    server.start();
    server.addMicrophone("microphone", 48000, 1);
    EXPECT_EQ(isGranted(), true);
    server.freeze();
    auto first = request();
    auto second = request();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(authorization.authorizationStatus(), Status::authorized) << "what was known last";
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 500ms);
    EXPECT_FALSE(first.get());
    EXPECT_FALSE(second.get());
    server.thaw();
    EXPECT_EQ(isGranted(), true);
    server.freeze();
    auto dropped = request();
    // The destructor does not wait for the server either.
}

} // namespace
} // namespace orlune
