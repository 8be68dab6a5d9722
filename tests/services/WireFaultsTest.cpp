// Every scripted fault of the speech service with the real client: each has the expected outcome,
// within its time, and leaves nothing behind.

#include "localservice/LocalService.h"
#include "platform/linux/runtime/BackgroundThread.h"
#include "platform/linux/runtime/SteadyClock.h"
#include "platform/network/BeastWebSocket.h"
#include "services/DeepgramService.h"
#include "tests/support/ServiceScripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <future>
#include <mutex>

namespace orlune::test {
namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::milliseconds;

constexpr auto key = "hidden-key";
constexpr auto deadline = 15s;
constexpr auto resultWait = 1800ms;
/// What a loaded machine may add to our own waits.
constexpr auto slack = 700ms;
/// The time within which the connection itself ends after a dictation.
constexpr auto closeLimit = 2s;

/// One dictation against one script.
class Dictation {
  public:
    explicit Dictation(const std::string& script)
        : service({.script = serviceScript(script), .log = [this](const std::string& line) {
                       const std::lock_guard lock(mutex);
                       output += line + "\n";
                   }}) {
        service.start();
        client =
            std::make_shared<DeepgramService>(session, clock, thread.executor(), service.address());
        run([this] {
            return client->start(key, 16000, [this](const std::string& text) {
                const std::lock_guard lock(mutex);
                reports.push_back(text);
                changed.notify_all();
            });
        });
    }

    template <typename Operation>
    void run(Operation operation) {
        std::promise<void> ended;
        Task::start(thread.executor(), [&]() -> Awaitable<void> {
            auto running = operation();
            co_await std::move(running);
            ended.set_value();
        });
        ASSERT_EQ(ended.get_future().wait_for(deadline), std::future_status::ready);
    }

    /// 0.3 s of silence, in packets like the microphone's.
    void speak() {
        run([this]() -> Awaitable<void> {
            for (int packet = 0; packet < 25; ++packet) {
                auto sending = client->send(AudioPacket(384, '\0'));
                co_await std::move(sending);
            }
        });
    }
    bool waitForReports(std::size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, deadline, [&] { return reports.size() >= count; });
    }
    std::future<std::string> beginFinish() {
        auto promise = std::make_shared<std::promise<std::string>>();
        Task::start(thread.executor(), [promise, finished = client]() -> Awaitable<void> {
            try {
                auto finishing = finished->finish();
                promise->set_value(co_await std::move(finishing));
            } catch (const std::exception& error) {
                promise->set_value(std::string("error: ") + error.what());
            }
        });
        return promise->get_future();
    }
    /// What the controller does after a failure.
    void cancel() {
        run([this] { return client->cancel(); });
    }
    bool connectionEnds(Milliseconds limit) {
        return service.waitUntil(
            [](const auto& seen) { return !seen.empty() && seen.front().ended; }, limit);
    }
    bool clientIsReleased() {
        const std::weak_ptr<DeepgramService> observed = client;
        client.reset();
        const auto end = std::chrono::steady_clock::now() + deadline;
        while (!observed.expired() && std::chrono::steady_clock::now() < end) {
            run([]() -> Awaitable<void> { co_return; });
        }
        return observed.expired();
    }
    std::string everythingSaid() {
        const std::lock_guard lock(mutex);
        return output;
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> reports;
    std::string output;
    localservice::LocalService service;
    BackgroundThread thread;
    SteadyClock clock{thread.context()};
    BeastWebSocketSession session{thread.executor(), ProxySettings()};
    std::shared_ptr<DeepgramService> client;
};

struct Fault {
    friend void PrintTo(const Fault& fault, std::ostream* output) { *output << fault.script; }

    const char* script;
    std::size_t reportsBeforeTheEnd;
    const char* outcome; ///< a regular expression
    Milliseconds least = 0ms;
    Milliseconds most = 0ms;
    bool peerReads = true; ///< a peer that does not read cannot see the end either
};

class WireFaults : public testing::TestWithParam<Fault> {};

TEST_P(WireFaults, endTheDictationAsTheyShould) {
    const auto& fault = GetParam();
    Dictation dictation(fault.script);
    dictation.speak();
    ASSERT_TRUE(dictation.waitForReports(fault.reportsBeforeTheEnd));
    const auto began = std::chrono::steady_clock::now();
    auto finishing = dictation.beginFinish();
    ASSERT_EQ(finishing.wait_for(deadline), std::future_status::ready);
    const auto outcome = finishing.get();
    const auto took = std::chrono::steady_clock::now() - began;
    EXPECT_THAT(outcome, testing::MatchesRegex(fault.outcome));
    EXPECT_GE(took, fault.least);
    EXPECT_LE(took, fault.most + slack);
    if (outcome.starts_with("error: ")) {
        dictation.cancel();
    }
    if (fault.peerReads) {
        EXPECT_TRUE(dictation.connectionEnds(closeLimit + slack));
    }
    EXPECT_TRUE(dictation.clientIsReleased());
    const auto said = dictation.everythingSaid() + outcome;
    EXPECT_EQ(said.find(key), std::string::npos) << said;
}

constexpr auto lost = "error: The connection was lost.*";
constexpr auto hello = "Hello world\\.";

INSTANTIATE_TEST_SUITE_P(
    Scripts, WireFaults,
    testing::Values(
        Fault{"plain", 1, hello}, Fault{"binary-results", 1, hello},
        Fault{"split-frames", 1, hello}, Fault{"byte-by-byte", 1, hello},
        Fault{"pings-between-fragments", 1, hello}, Fault{"slow-opening", 1, hello},
        Fault{"tail-in-one-segment", 1, hello}, Fault{"one-mebibyte", 1, hello},
        Fault{"ten-mebibytes", 2, hello}, Fault{"not-json", 1, hello},
        Fault{"empty-messages", 1, hello}, Fault{"unknown-types", 1, hello},
        Fault{"metadata-mid-stream", 1, hello}, Fault{"metadata-without-close", 1, hello},
        Fault{"only-an-interim", 1, "hello wor"}, Fault{"without-is-final", 1, "hello"},
        Fault{"equal-finals", 2, "Hello world\\. Hello world\\."},
        Fault{"real-shapes", 5, "Please add a retry to the upload step, .* And ship it tod.*"},
        Fault{"early-metadata", 1, "Hello world\\.|hello wor"},
        Fault{"late-tail-0.3s", 1, hello, 300ms, 350ms},
        Fault{"late-tail-1.5s", 1, hello, 1500ms, 1550ms},
        Fault{"late-tail-2.5s", 1, "hello wor", resultWait, resultWait},
        Fault{"no-metadata", 1, hello, resultWait, resultWait},
        Fault{"nothing-after-close-stream", 1, hello, resultWait, resultWait},
        Fault{"silent-after-opening", 0, "error: No speech was transcribed", resultWait,
              resultWait},
        Fault{"stalled-reader", 0, "error: No speech was transcribed", resultWait, resultWait,
              /*peerReads=*/false},
        Fault{"stalled-then-reading", 0, hello, 0ms, 600ms},
        Fault{"closed-1008", 3, "error: The connection was closed by the service \\(1008: DATA.*"},
        Fault{"closed-1011", 3, "error: The connection was closed by the service \\(1011: .*"},
        Fault{"closed-1012", 3, "error: The connection was closed by the service \\(1012: .*"},
        Fault{"closed-1013", 3, "error: The connection was closed by the service \\(1013: .*"},
        Fault{"end-mid-speech", 3, lost}, Fault{"reset-mid-speech", 3, lost},
        Fault{"invalid-utf8", 2, lost}, Fault{"masked-frames", 2, lost},
        Fault{"reserved-bits", 2, lost}, Fault{"end-before-opening", 1, lost},
        Fault{"reset-before-opening", 1, lost},
        Fault{"refused-400", 1, "error: The connection was refused \\(HTTP 400 .*\\): .*"},
        Fault{"refused-401", 1,
              "error: The connection was refused \\(HTTP 401 Unauthorized\\): Invalid "
              "credentials\\."},
        Fault{"refused-401-chunked", 1,
              "error: The connection was refused \\(HTTP 401 Unauthorized\\): Invalid "
              "credentials\\."},
        Fault{"refused-402", 1,
              "error: The connection was refused \\(HTTP 402 .*\\): The project has no credits "
              "left\\."},
        Fault{"refused-403", 1, "error: The connection was refused \\(HTTP 403 .*\\): .*"},
        Fault{"refused-429", 1, "error: The connection was refused \\(HTTP 429 .*\\): .*"},
        Fault{"refused-503", 1, "error: The connection was refused \\(HTTP 503 .*\\): .*"},
        Fault{"refused-503-empty", 1, "error: The connection was refused \\(HTTP 503.*"},
        Fault{"redirected", 1, "error: The connection was refused \\(HTTP 302.*"},
        Fault{"not-upgraded", 1, "error: The connection was refused \\(HTTP 200.*"}),
    [](const auto& row) {
        std::string name = row.param.script;
        std::ranges::replace_if(name, [](char c) { return c == '-' || c == '.'; }, '_');
        return name;
    });

TEST(WireFaultsTest, anUnansweredHandshakeHoldsTheEndUntilItIsCancelled) {
    Dictation dictation("silent-before-opening");
    auto finishing = dictation.beginFinish();
    EXPECT_EQ(finishing.wait_for(100ms), std::future_status::timeout);
    dictation.cancel();
    ASSERT_EQ(finishing.wait_for(slack), std::future_status::ready);
    EXPECT_EQ(finishing.get(), "error: The connection was cancelled");
    EXPECT_TRUE(dictation.connectionEnds(slack));
}

} // namespace
} // namespace orlune::test
