#include "services/DeepgramService.h"

#include "platform/memory/ManualClock.h"
#include "platform/memory/MemoryWebSocket.h"
#include "platform/memory/TurnQueue.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace orlune {
namespace {

using namespace std::chrono_literals;
using Strings = std::vector<std::string>;

constexpr auto metadata = R"({"type":"Metadata","duration":1.5})";

std::string results(const std::string& transcript, const std::string& isFinal = "") {
    return R"({"type":"Results","channel":{"alternatives":[{"transcript":")" + transcript
           + R"(","confidence":0.99}]})" + (isFinal.empty() ? "" : R"(,"is_final":)" + isFinal)
           + "}";
}

class DeepgramServiceTest : public testing::Test {
  protected:
    void start() {
        run([this] {
            return service->start("secret key", 16000,
                                  [this](std::string text) { reported.push_back(text); });
        });
    }
    void send(const std::string& packet) {
        run([this, packet] { return service->send(packet); });
    }
    void cancel() {
        run([this] { return service->cancel(); });
    }
    void deliver(const std::string& message) {
        sockets.task()->deliverText(message);
        queue.runUntilIdle();
    }
    /// Begins to finish; `outcome` says how it ended, once it has.
    void finish() {
        outcome.reset();
        Task::start(queue.executor(), [this]() -> Awaitable<void> {
            try {
                auto finishing = service->finish();
                outcome = co_await std::move(finishing);
            } catch (const std::exception& error) {
                outcome = std::string("error: ") + error.what();
            }
        });
        queue.runUntilIdle();
    }
    /// Advances the clock until `outcome` is set; returns how long it took.
    std::chrono::milliseconds waitForOutcome() {
        auto waited = 0ms;
        while (!outcome && waited < 5s) {
            clock.advance(1ms);
            waited += 1ms;
            queue.runUntilIdle();
        }
        return waited;
    }

    template <typename Operation>
    void run(Operation operation) {
        Task::start(queue.executor(), [operation]() -> Awaitable<void> {
            auto running = operation();
            co_await std::move(running);
        });
        queue.runUntilIdle();
    }

    TurnQueue queue;
    ManualClock clock;
    MemoryWebSocketSession sockets;
    std::shared_ptr<DeepgramService> service = std::make_shared<DeepgramService>(
        sockets, clock, queue.executor(), "wss://speech.example:8443");
    Strings reported;
    std::optional<std::string> outcome;
};

TEST_F(DeepgramServiceTest, asksForTheStreamWithTheKeyAndEveryQueryItemInOrder) {
    start();
    const auto& request = sockets.task()->request();
    EXPECT_EQ(request.url,
              "wss://speech.example:8443/v1/listen?model=nova-3&language=en-US&encoding=linear16"
              "&sample_rate=16000&channels=1&interim_results=true&smart_format=true&punctuate=true"
              "&endpointing=300&vad_events=true");
    ASSERT_EQ(request.headers.size(), 1u);
    EXPECT_EQ(request.headers[0].name, "Authorization");
    EXPECT_EQ(request.headers[0].value, "Token secret key");
    EXPECT_EQ(request.timeout, 60s);
    EXPECT_EQ(request.refusalReason.header, "dg-error");
    EXPECT_EQ(request.refusalReason.member, "err_msg");
    EXPECT_TRUE(sockets.task()->isResumed());
}

TEST_F(DeepgramServiceTest, resultsAreReportedAsTheWholeTranscriptSoFar) {
    start();
    deliver(results("hello"));
    deliver(results("hello wor", "false"));
    deliver(results("  hello world.\\n", "true"));
    deliver(results(" \\u00a0 ", "true"));
    deliver(results("how"));
    deliver(results(""));
    deliver(results("how", "true"));
    EXPECT_EQ(reported, (Strings{"hello", "hello wor", "hello world.", "hello world. how",
                                 "hello world. how"}));
}

TEST_F(DeepgramServiceTest, messagesThatAreNotResultsOfTheRightShapeChangeNothing) {
    const std::string deep(100'000, '[');
    const Strings rows = {
        "",
        "not json",
        "null",
        "[]",
        deep,
        R"({"type":"Results")",
        results("trailing") + "x",
        results("\xff invalid UTF-8"),
        results("\\ud800 lone surrogate"),
        results("number for a Boolean", "1"),
        R"({"type":"SpeechStarted","channel":[0,1],"timestamp":1.2})",
        R"({"type":"Metadata","channel":[0,1]})",
        R"({"type":"UtteranceEnd","last_word_end":2.1})",
        R"({"type":7,"channel":{"alternatives":[{"transcript":"number for a type"}]}})",
        R"({"channel":{"alternatives":[{"transcript":"no type"}]}})",
        R"({"type":"results","channel":{"alternatives":[{"transcript":"other case"}]}})",
        R"({"type":"Results"})",
        R"({"type":"Results","channel":null})",
        R"({"type":"Results","channel":{}})",
        R"({"type":"Results","channel":{"alternatives":[]}})",
        R"({"type":"Results","channel":{"alternatives":[{}]}})",
        R"({"type":"Results","channel":{"alternatives":[{"transcript":"good"},{"transcript":5}]}})",
        R"({"type":"Results","channel":{"alternatives":[{"transcript":"good"},null]}})",
    };
    start();
    for (const auto& row : rows) {
        deliver(row);
        EXPECT_EQ(reported, Strings()) << row;
    }
    sockets.task()->deliver({WebSocketMessage::Kind::binary, results("binary is read alike")});
    deliver(R"({"is_final":null,"type":"Results","n":1e999,"channel":{"x":[{}],"alternatives":[{)"
            R"("transcript":"members in any order"},{"transcript":null}]}})");
    EXPECT_EQ(reported, (Strings{"binary is read alike", "members in any order"}));
    finish();
    EXPECT_EQ(outcome, std::nullopt) << "none of them was the closing message";
}

TEST_F(DeepgramServiceTest, finishSendsCloseStreamAfterTheAudioAndEndsWithTheMetadata) {
    start();
    send("ab");
    send("");
    send("cd");
    deliver(results("hello", "true"));
    finish();
    send("too late");
    waitForOutcome();
    EXPECT_EQ(outcome, "hello");
    EXPECT_EQ(sockets.events(),
              (Strings{"socket 1 resume", "socket 1 send binary 2", "socket 1 send binary 2",
                       R"(socket 1 send text {"type":"CloseStream"})", "socket 1 close 1000"}));
}

struct Wait {
    const char* name;
    std::chrono::milliseconds metadataAfter;
    std::chrono::milliseconds ends;
};

TEST_F(DeepgramServiceTest, finishWaitsInStepsOfTwentyMillisecondsForAtMostOnePointEightSeconds) {
    const Wait rows[] = {{"metadata at once", 0ms, 20ms},
                         {"metadata between two looks", 47ms, 60ms},
                         {"metadata at the last moment", 1790ms, 1800ms},
                         {"metadata too late", 1801ms, 1800ms}};
    for (const auto& row : rows) {
        start();
        deliver(results("hello"));
        finish();
        auto waited = 0ms;
        while (!outcome) {
            if (waited == row.metadataAfter) {
                deliver(results("hello there.", "true"));
                deliver(metadata);
            }
            clock.advance(1ms);
            waited += 1ms;
            queue.runUntilIdle();
        }
        EXPECT_EQ(waited, row.ends) << row.name;
        EXPECT_EQ(outcome, row.metadataAfter < 1800ms ? "hello there." : "hello") << row.name;
    }
}

TEST_F(DeepgramServiceTest, finishSaysWhyThereIsNoTranscript) {
    finish();
    EXPECT_EQ(outcome, "error: Speech service isn't connected");

    start();
    finish();
    deliver(metadata);
    waitForOutcome();
    EXPECT_EQ(outcome, "error: No speech was transcribed");
    EXPECT_EQ(sockets.events().back(), "socket 1 close 1000");

    start();
    deliver(results("lost"));
    sockets.task()->failSending("The connection was lost");
    finish();
    EXPECT_EQ(outcome, "error: The connection was lost");
    EXPECT_EQ(sockets.task()->closeCodes().size(), 0u) << "cancel closes it";
    cancel();
    EXPECT_EQ(sockets.events().back(), "socket 2 close 1001");
}

TEST_F(DeepgramServiceTest, aBrokenConnectionReportsOnceMoreAndKeepsWhatWasRecognised) {
    start();
    deliver(results("before", "true"));
    sockets.task()->failReceiving("The connection was lost");
    queue.runUntilIdle();
    EXPECT_EQ(reported, (Strings{"before", "before"}));
    send("still offered");
    EXPECT_EQ(sockets.task()->sent().size(), 1u);
    finish();
    EXPECT_EQ(waitForOutcome(), 1800ms);
    EXPECT_EQ(outcome, "before");
    EXPECT_EQ(reported.size(), 2u);
}

TEST_F(DeepgramServiceTest, aPacketThatCannotBeSentIsDropped) {
    start();
    sockets.task()->failSending("The connection was lost");
    send("ab");
    deliver(results("hello"));
    EXPECT_EQ(reported, Strings{"hello"});
}

TEST_F(DeepgramServiceTest, startClosesTheOldConnectionWhichReportsNothingMore) {
    start();
    const auto old = sockets.task();
    deliver(results("old", "true"));
    start();
    old->deliverText(results("older still"));
    old->failReceiving("gone");
    deliver(results("new"));
    EXPECT_EQ(reported, (Strings{"old", "new"}));
    EXPECT_EQ(sockets.events(),
              (Strings{"socket 1 resume", "socket 1 close 1001", "socket 2 resume"}));
}

TEST_F(DeepgramServiceTest, aResultThatArrivesWhileStartRunsNeverEntersTheNewDictation) {
    for (int turns = 0; turns < 6; ++turns) {
        start();
        const auto old = sockets.task();
        Strings newlyReported;
        Task::start(queue.executor(), [&]() -> Awaitable<void> {
            auto starting = service->start("key", 16000, [&newlyReported](std::string text) {
                newlyReported.push_back(text);
            });
            co_await std::move(starting);
        });
        for (int turn = 0; turn < turns; ++turn) {
            queue.runOne();
        }
        old->deliverText(results("old"));
        queue.runUntilIdle();
        EXPECT_EQ(newlyReported, Strings()) << "after " << turns << " turns";
        cancel();
    }
}

TEST_F(DeepgramServiceTest, cancelClosesOnceAndIsHarmlessOtherwise) {
    cancel();
    start();
    cancel();
    cancel();
    send("ab");
    EXPECT_EQ(sockets.events(), (Strings{"socket 1 resume", "socket 1 close 1001"}));
    EXPECT_EQ(reported, Strings());
    finish();
    EXPECT_EQ(outcome, "error: Speech service isn't connected");
}

TEST_F(DeepgramServiceTest, aFinishThatIsCancelledMidwayStillRunsToItsDeadline) {
    start();
    deliver(results("hello", "true"));
    finish();
    cancel();
    EXPECT_EQ(waitForOutcome(), 1800ms);
    EXPECT_EQ(outcome, "hello");
}

TEST_F(DeepgramServiceTest, aFinishThatIsOvertakenByStartLeavesTheNewConnectionAlone) {
    start();
    deliver(results("old", "true"));
    finish();
    start();
    deliver(results("new"));
    EXPECT_EQ(waitForOutcome(), 20ms);
    EXPECT_EQ(outcome, "error: No speech was transcribed");
    EXPECT_EQ(sockets.task()->closeCodes().size(), 0u);
    deliver(results("new words"));
    EXPECT_EQ(reported.back(), "new words");
}

TEST_F(DeepgramServiceTest, cancelEndsAFinishThatStillWaitsToSend) {
    start();
    sockets.task()->holdSending();
    finish();
    EXPECT_EQ(waitForOutcome(), 5s);
    cancel();
    EXPECT_EQ(outcome, "error: The connection was cancelled");
}

TEST_F(DeepgramServiceTest, theServiceIsReleasedOnceItsConnectionHasEnded) {
    const std::weak_ptr<DeepgramService> observed = service;
    start();
    deliver(results("hello"));
    sockets.task()->failReceiving("gone");
    queue.runUntilIdle();
    service.reset();
    EXPECT_TRUE(observed.expired());
}

/// A whole stream, whose connection breaks at its first operation, then at its second, and so on
/// until it succeeds. In each case finishing ends with the words that had arrived until then.
TEST_F(DeepgramServiceTest, aConnectionMayBreakAtAnyOperation) {
    // Three packets, the close message, and a receive after each message except the last.
    constexpr int operations = 7;
    for (int number = 1; number <= operations + 1; ++number) {
        SCOPED_TRACE("operation " + std::to_string(number));
        reported.clear();
        start();
        const auto socket = sockets.task();
        socket->failAtOperation(number); // counted from here: the first receive is already waiting
        send("one");
        deliver(results("hello", "true"));
        send("two");
        deliver(results("wor"));
        send("three");
        finish();
        deliver(results("world", "true"));
        deliver(metadata);
        EXPECT_LE(waitForOutcome(), 1800ms);
        ASSERT_TRUE(outcome);
        const bool isWhole = number > operations;
        if (isWhole) {
            EXPECT_EQ(outcome, "hello world");
        } else if (!outcome->starts_with("error: ")) {
            EXPECT_EQ(*outcome, reported.empty() ? "" : reported.back());
        }
        cancel();
        EXPECT_FALSE(socket->closeCodes().empty());
        finish();
        EXPECT_EQ(outcome, "error: Speech service isn't connected");
    }
}

} // namespace
} // namespace orlune
