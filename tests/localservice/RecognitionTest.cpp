#include "localservice/LocalService.h"
#include "localservice/PocketSphinxRecogniser.h"
#include "localservice/Transcriber.h"
#include "tests/localservice/ServiceClient.h"
#include "tests/support/TemporaryFolder.h"

#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace orlune::test {

using namespace localservice;
namespace {

using Samples = std::vector<std::int16_t>;
using testing::HasSubstr;

/// Recognises one word, "i" or "word", in each half second of an utterance.
class FakeRecogniser : public Recogniser {
  public:
    void startStream() override {}
    void startUtterance() override { samples_ = 0; }
    void feed(std::span<const std::int16_t> samples) override { samples_ += samples.size(); }
    std::vector<RecognisedWord> partial() override {
        std::vector<RecognisedWord> words;
        for (std::size_t begin = 0; begin + 8000 <= samples_; begin += 8000) {
            const double start = static_cast<double>(begin) / 16000;
            words.push_back({.text = begin == 8000 ? "i" : "word",
                             .start = start,
                             .end = start + 0.5,
                             .confidence = 0.5});
        }
        return words;
    }
    std::vector<RecognisedWord> endUtterance() override { return partial(); }

  private:
    std::size_t samples_ = 0;
};

Samples silence(double seconds) {
    return Samples(static_cast<std::size_t>(std::lround(seconds * 16000)));
}

Samples voice(double seconds) {
    auto samples = silence(seconds);
    for (std::size_t index = 0; index < samples.size(); ++index) {
        samples[index] =
            static_cast<std::int16_t>(8000 * std::sin(static_cast<double>(index) * 1.0));
    }
    return samples;
}

Samples operator+(Samples first, const Samples& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Samples spoken(const std::string& text, const std::string& voiceName) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "speech.wav";
    const auto command = "flite -voice " + voiceName + " -t '" + text + "' -o " + file.string();
    EXPECT_EQ(std::system(command.c_str()), 0) << "the package flite is needed";
    const auto bytes = textOf(file).substr(44);
    Samples samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
}

/// "start-end text" of every Results, "speech at", "metadata seconds".
std::vector<std::string> outline(const Transcriber::Messages& messages) {
    std::vector<std::string> lines;
    const auto decimal = [](const boost::json::value& value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", value.to_number<double>());
        return std::string(text);
    };
    for (const auto& text : messages) {
        const auto message = boost::json::parse(text);
        if (message.at("type") == "Results") {
            const double end = message.at("start").to_number<double>()
                               + message.at("duration").to_number<double>();
            const auto& transcript =
                message.at("channel").at("alternatives").at(0).at("transcript").as_string();
            lines.push_back(decimal(message.at("start")) + "-" + decimal(end)
                            + (message.at("is_final").as_bool() ? " final " : " interim ")
                            + std::string(transcript));
        } else if (message.at("type") == "SpeechStarted") {
            lines.push_back("speech " + decimal(message.at("timestamp")));
        } else {
            lines.push_back("metadata " + decimal(message.at("duration")));
        }
    }
    return lines;
}

Transcriber::Messages transcribe(const Samples& samples, std::size_t packet) {
    FakeRecogniser recogniser;
    Transcriber transcriber(recogniser, "id");
    Transcriber::Messages messages;
    const auto append = [&](Transcriber::Messages more) {
        std::ranges::move(more, std::back_inserter(messages));
    };
    for (auto bytes = std::as_bytes(std::span(samples)); !bytes.empty();) {
        const auto size = std::min(packet, bytes.size());
        append(transcriber.feed(bytes.first(size)));
        bytes = bytes.subspan(size);
    }
    append(transcriber.finish());
    return messages;
}

TEST(Transcriber, answersByTheAudioItReceived) {
    const auto audio = silence(1.5) + voice(1.2) + silence(1.0) + voice(0.8);
    EXPECT_THAT(outline(transcribe(audio, 384)),
                testing::ElementsAre("0.00-1.08 interim ", "speech 1.53", "0.00-2.08 interim Word",
                                     "0.00-3.01 final Word I word.", "3.01-3.08 interim ",
                                     "speech 3.73", "3.01-4.08 interim Word",
                                     "3.01-4.50 final Word I.", "metadata 4.50"));
}

TEST(Transcriber, answersTheSameHoweverTheAudioIsSplit) {
    const auto audio = silence(0.4) + voice(2.345) + silence(0.5) + voice(0.7);
    const auto expected = outline(transcribe(audio, 384));
    for (const std::size_t packet : {1U, 7U, 100000U}) {
        EXPECT_EQ(outline(transcribe(audio, packet)), expected) << packet;
    }
}

TEST(Transcriber, givesFinalsToSpeechWithoutPauses) {
    const auto lines = outline(transcribe(voice(25), 3200));
    EXPECT_THAT(lines, testing::Contains(testing::StartsWith("0.00-20.00 final Word I word")));
    // The rest is not lost, and continues in the middle of the sentence.
    EXPECT_THAT(lines, testing::Contains(testing::StartsWith("20.00-25.00 final word I word")));
}

TEST(Recognition, understandsSpeechAndEndsTheStreamInOrder) {
    LocalService service(LocalService::Options{});
    ServiceClient client(service.start());
    ASSERT_EQ(client.open(), 101U);
    const auto audio =
        silence(1.2) + spoken("The weather is nice today and we should go for a walk.", "slt")
        + silence(0.6)
        + spoken("Please send the report to my office before Friday morning.", "rms");
    for (auto rest = std::span(audio); !rest.empty();
         rest = rest.subspan(std::min<std::size_t>(192, rest.size()))) {
        ASSERT_TRUE(client.sendAudio(rest.first(std::min<std::size_t>(192, rest.size()))));
    }
    client.closeStream();
    const auto messages = client.receiveAllJson();
    EXPECT_EQ(client.closeCode(), 1000);
    EXPECT_EQ(client.closeReason(), "");

    const auto text = finalsOf(messages);
    EXPECT_THAT(text, HasSubstr("The weather is nice today"));
    EXPECT_THAT(text, HasSubstr("walk. Please send"));
    EXPECT_THAT(text, HasSubstr("my office before friday morning."));
    const auto first = boost::json::serialize(
        messages.at(0).at("channel").at("alternatives").at(0).at("transcript"));
    EXPECT_EQ(first, "\"\"");
    EXPECT_EQ(messages.at(1).at("type"), "SpeechStarted");
    EXPECT_EQ(messages.back().at("type"), "Metadata");
    EXPECT_NEAR(messages.back().at("duration").to_number<double>(),
                static_cast<double>(audio.size()) / 16000, 0.0001);
    EXPECT_EQ(messages.back().at("sha256").as_string().size(), 64U);
    for (const auto& message : messages) {
        if (const auto* channel = message.as_object().if_contains("channel");
            channel && channel->is_object()) {
            for (const auto& word : channel->at("alternatives").at(0).at("words").as_array()) {
                const double end = message.at("start").to_number<double>()
                                   + message.at("duration").to_number<double>();
                EXPECT_GE(word.at("start").to_number<double>(),
                          message.at("start").to_number<double>());
                EXPECT_LE(word.at("end").to_number<double>(), end + 0.05);
            }
        }
    }
}

TEST(Recognition, givesTheSameWordsToTheSameAudioAfterAnotherVoice) {
    const auto recogniser =
        std::make_unique<PocketSphinxRecogniser>(PocketSphinxRecogniser::defaultModelDirectory);
    const auto hear = [&](const Samples& samples) {
        Transcriber transcriber(*recogniser, "id");
        auto messages = transcriber.feed(std::as_bytes(std::span(samples)));
        std::ranges::move(transcriber.finish(), std::back_inserter(messages));
        return outline(messages);
    };
    const auto audio = spoken("Write a function that reads the file.", "slt");
    const auto expected = hear(audio);
    hear(spoken("Open the window and close the door.", "rms"));
    EXPECT_EQ(hear(audio), expected);
}

LocalService::Options withFake() {
    return {.makeRecogniser = [] { return std::make_unique<FakeRecogniser>(); }};
}

TEST(Recognition, endsAStreamThatSendsAnEmptyBinaryMessage) {
    LocalService service(withFake());
    ServiceClient client(service.start());
    client.open();
    client.sendSilence(0.2);
    client.sendAudio({});
    const auto messages = client.receiveAllJson();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].at("sha256"), "incomplete");
    EXPECT_EQ(client.closeCode(), 1008);
}

TEST(Recognition, endsAStreamThatSendsAudioAfterCloseStream) {
    /// Finishes its last words only after the forbidden audio has arrived.
    struct PatientRecogniser : FakeRecogniser {
        std::vector<RecognisedWord> endUtterance() override {
            service->waitUntil(
                [](const auto& seen) { return seen.at(0).count(Observation::Kind::binary) == 2; },
                10s);
            return partial();
        }
        LocalService* service = nullptr;
    };
    LocalService* made = nullptr;
    LocalService service({.makeRecogniser = [&made] {
        auto recogniser = std::make_unique<PatientRecogniser>();
        recogniser->service = made;
        return recogniser;
    }});
    made = &service;
    ServiceClient client(service.start());
    client.open();
    client.sendAudio(voice(0.6));
    client.closeStream();
    client.sendSilence(0.1);
    EXPECT_EQ(finalsOf(client.receiveAllJson()), "Word.");
    EXPECT_EQ(client.closeCode(), 1008);
}

TEST(Recognition, endsAStreamWithoutAudio) {
    auto options = withFake();
    options.audioTimeout = 100ms;
    LocalService service(std::move(options));
    ServiceClient client(service.start());
    client.open();
    const auto messages = client.receiveAllJson();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].at("sha256"), "incomplete");
    EXPECT_EQ(client.closeCode(), 1011);
    EXPECT_THAT(client.closeReason(), HasSubstr("net0001"));
}

TEST(Recognition, answersAnUnknownTextAndGoesOn) {
    LocalService service(withFake());
    ServiceClient client(service.start());
    client.open();
    client.sendText("{\"type\":\"Ping\"}");
    client.sendText("{\"type\":\"KeepAlive\"}");
    client.closeStream();
    const auto messages = client.receiveAllJson();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].at("type"), "Error");
    EXPECT_EQ(client.closeCode(), 1000);
}

TEST(Recognition, canBeStoppedWhileStreamsAreOpen) {
    LocalService service(withFake());
    const auto port = service.start();
    ServiceClient first(port);
    ServiceClient second(port);
    first.open();
    second.open();
    first.sendAudio(voice(30));
    service.stop();
    first.receiveAll();
    EXPECT_TRUE(first.error());
    EXPECT_TRUE(std::ranges::all_of(service.observations(), &Observation::ended));
}

TEST(Recognition, startsOnlyWithAModelAndAFreePort) {
    LocalService withoutModel({.modelDirectory = "/nowhere"});
    EXPECT_THROW(withoutModel.start(), std::runtime_error);
    LocalService first(withFake());
    auto options = withFake();
    options.port = first.start();
    LocalService second(std::move(options));
    EXPECT_THROW(second.start(), std::runtime_error);
}

} // namespace
} // namespace orlune::test
