#include "localservice/LocalService.h"
#include "tests/localservice/ServiceClient.h"
#include "tests/support/ServiceScripts.h"

#include <boost/asio/ssl/error.hpp>
#include <gtest/gtest.h>

namespace orlune::test {

using namespace localservice;
namespace {

/// A service that plays one script, and a client of it.
struct Play {
    explicit Play(const std::string& name, bool keepAudio = false)
        : service({.script = serviceScript(name), .keepAudio = keepAudio}),
          client(service.start()) {}

    /// Speaks for 0.3 s, requests the end, and receives the messages.
    std::vector<std::string> speak() {
        client.open();
        client.sendSilence(0.3);
        client.closeStream();
        return client.receiveAll();
    }

    LocalService service;
    ServiceClient client;
};

TEST(ScriptedFaults, everyReadyScriptCanBeRead) {
    const auto names = serviceScriptNames();
    EXPECT_GT(names.size(), 40U);
    for (const auto& name : names) {
        EXPECT_NO_THROW(serviceScript(name)) << name;
    }
}

struct ConversationCase {
    const char* script;
    std::size_t messages;
    std::uint16_t closeCode;
};

/// Scripts after which a correct client has received every message and a proper close.
class Conversation : public testing::TestWithParam<ConversationCase> {};

TEST_P(Conversation, bringsItsMessagesAndItsClose) {
    Play play(GetParam().script);
    EXPECT_EQ(play.speak().size(), GetParam().messages);
    EXPECT_EQ(play.client.error(), boost::beast::websocket::error::closed);
    EXPECT_EQ(play.client.closeCode(), GetParam().closeCode);
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, Conversation,
    testing::Values(
        ConversationCase{"plain", 4, 1000}, ConversationCase{"no-metadata", 2, 1000},
        ConversationCase{"tail-in-one-segment", 3, 1000},
        ConversationCase{"only-an-interim", 2, 1000}, ConversationCase{"slow-opening", 3, 1000},
        ConversationCase{"split-frames", 3, 1000}, ConversationCase{"byte-by-byte", 3, 1000},
        ConversationCase{"one-mebibyte", 2, 1000}, ConversationCase{"ten-mebibytes", 3, 1000},
        ConversationCase{"early-metadata", 3, 1000},
        ConversationCase{"metadata-mid-stream", 3, 1000},
        ConversationCase{"unknown-types", 6, 1000}, ConversationCase{"without-is-final", 4, 1000},
        ConversationCase{"binary-results", 3, 1000}, ConversationCase{"empty-messages", 4, 1000},
        ConversationCase{"not-json", 4, 1000}, ConversationCase{"equal-finals", 3, 1000},
        ConversationCase{"real-shapes", 12, 1000}, ConversationCase{"closed-1008", 2, 1008},
        ConversationCase{"closed-1011", 2, 1011}, ConversationCase{"closed-1012", 2, 1012},
        ConversationCase{"closed-1013", 2, 1013}),
    [](const auto& row) {
        std::string name = row.param.script;
        std::ranges::replace(name, '-', '_');
        return name;
    });

TEST(ScriptedFaults, breakTheProtocolWhereTheySaySo) {
    namespace websocket = boost::beast::websocket;
    const std::pair<const char*, boost::system::error_code> cases[] = {
        {"invalid-utf8", websocket::error::bad_frame_payload},
        {"masked-frames", websocket::error::bad_masked_frame},
        {"reserved-bits", websocket::error::bad_reserved_bits},
        {"reset-mid-speech", boost::asio::error::connection_reset},
        {"end-mid-speech", boost::asio::error::eof},
    };
    for (const auto& [name, error] : cases) {
        Play play(name);
        play.client.open();
        play.client.sendSilence(0.3);
        EXPECT_GE(play.client.receiveAll().size(), 1U) << name;
        EXPECT_EQ(play.client.error(), error) << name;
    }
}

TEST(ScriptedFaults, refuseTheHandshake) {
    const std::pair<const char*, unsigned> cases[] = {
        {"refused-400", 400},         {"refused-401", 401},       {"refused-402", 402},
        {"refused-403", 403},         {"refused-429", 429},       {"refused-503", 503},
        {"refused-401-chunked", 401}, {"refused-503-empty", 503}, {"redirected", 302},
        {"not-upgraded", 200}};
    for (const auto& [name, status] : cases) {
        Play play(name);
        EXPECT_EQ(play.client.open(), status) << name;
        EXPECT_FALSE(play.client.answer()["dg-error"].empty()) << name;
        EXPECT_EQ(play.client.answer().chunked(), std::string_view(name).ends_with("chunked"))
            << name;
        EXPECT_EQ(play.client.answer().body().empty(), std::string_view(name).ends_with("empty"))
            << name;
    }
}

TEST(ScriptedFaults, keepSilentOrGoAwayBeforeTheStreamIsOpen) {
    Play silent("silent-before-opening");
    EXPECT_EQ(silent.client.open("key", 200ms), 0U);
    EXPECT_TRUE(silent.client.timedOut());

    Play reset("reset-before-opening");
    EXPECT_EQ(reset.client.open(), 0U);
    EXPECT_EQ(reset.client.error(), boost::asio::error::connection_reset);

    Play ended("end-before-opening");
    EXPECT_EQ(ended.client.open(), 0U);
    EXPECT_EQ(ended.client.error(), boost::beast::http::error::end_of_stream);
}

TEST(ScriptedFaults, keepSilentOnceTheStreamIsOpen) {
    const std::pair<const char*, std::size_t> cases[] = {{"silent-after-opening", 0},
                                                         {"metadata-without-close", 3},
                                                         {"nothing-after-close-stream", 1}};
    for (const auto& [name, messages] : cases) {
        Play play(name);
        EXPECT_EQ(play.client.open(), 101U) << name;
        play.client.sendSilence(0.3);
        play.client.closeStream();
        for (std::size_t count = 0; count < messages; ++count) {
            EXPECT_TRUE(play.client.receive()) << name;
        }
        EXPECT_FALSE(play.client.receive(200ms)) << name;
        EXPECT_TRUE(play.client.timedOut()) << name;
    }
}

TEST(ScriptedFaults, answerLateByTheTimeTheyName) {
    for (const auto& [name, least] :
         {std::pair{"late-tail-0.3s", 300ms}, {"late-tail-1.5s", 1500ms}}) {
        Play play(name);
        play.client.open();
        play.client.sendSilence(0.3);
        EXPECT_TRUE(play.client.receive()) << name;
        play.client.closeStream();
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_TRUE(play.client.receive()) << name;
        EXPECT_GE(std::chrono::steady_clock::now() - begin, least) << name;
    }
}

TEST(ScriptedFaults, aStalledReaderLeavesTheClientWithItsBytes) {
    Play play("stalled-reader");
    play.client.open();
    EXPECT_FALSE(play.client.sendSilence(300, 300ms)); // ten megabytes: more than the kernel holds
    EXPECT_TRUE(play.client.timedOut());
}

TEST(ScriptedFaults, aReaderThatWakesUpGetsEverything) {
    Play play("stalled-then-reading");
    play.client.open();
    EXPECT_TRUE(play.client.sendSilence(300));
    EXPECT_TRUE(play.client.closeStream());
    EXPECT_EQ(play.client.receiveAll().size(), 2U);
    EXPECT_EQ(play.service.observations().at(0).audioBytes, 9600000U);
}

TEST(ScriptedFaults, pingsStandBetweenTheFragmentsOfOneMessage) {
    Play play("pings-between-fragments");
    play.client.open();
    play.client.sendSilence(0.3);
    EXPECT_TRUE(play.client.receive());
    EXPECT_EQ(play.client.pings(), 4);
    const auto pongs = [](const auto& seen) {
        return seen.at(0).count(Observation::Kind::pong) == 4;
    };
    EXPECT_TRUE(play.service.waitUntil(pongs, 5s));
}

TEST(Observations, listWhatTheClientDidInOrder) {
    Play play("silent-after-opening", /*keepAudio=*/true);
    play.client.open();
    const std::vector<std::int16_t> audio = {1, -2, 300};
    play.client.sendAudio(audio);
    play.client.closeStream();
    play.client.close(1001);
    ASSERT_TRUE(play.service.waitUntil([](const auto& seen) { return seen.at(0).ended; }, 5s));
    const auto seen = play.service.observations().at(0);
    EXPECT_EQ(seen.target, listenTarget);
    EXPECT_EQ(seen.authorizationScheme, "Token");
    ASSERT_EQ(seen.received.size(), 3U);
    EXPECT_EQ(seen.received[0].size, 6U);
    EXPECT_EQ(seen.received[1].text, R"({"type":"CloseStream"})");
    EXPECT_EQ(seen.received[2].kind, Observation::Kind::close);
    EXPECT_EQ(seen.closeCode, 1001);
    EXPECT_EQ(seen.audio.at(4), std::byte{300 & 0xFF});
}

} // namespace
} // namespace orlune::test
