#include "localservice/Messages.h"

#include "localservice/CompactJson.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace orlune::localservice {
namespace {

namespace json = boost::json;

constexpr std::string_view modelUUID = "6d1f0c52-93ab-4c07-8a5e-0f6b2c9d7e14";

json::object modelInfo() {
    return {{"name", "orlune-local"}, {"version", ORLUNE_VERSION}, {"arch", "local"}};
}

char upperCase(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool isFirstPerson(std::string_view word) {
    return word == "i" || word.starts_with("i'");
}

/// The current time in the service's format: UTC with milliseconds.
std::string timestamp() {
    using namespace std::chrono;
    const auto now = floor<milliseconds>(system_clock::now());
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    char text[40];
    std::snprintf(
        text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return text;
}

json::object alternative(const Results& results) {
    json::array words;
    std::string transcript;
    double confidence = results.words.empty() ? 0.0 : 1.0;
    for (std::size_t index = 0; index < results.words.size(); ++index) {
        const auto& word = results.words[index];
        auto punctuated = word.text;
        if (!punctuated.empty()
            && ((index == 0 && results.startsSentence) || isFirstPerson(word.text))) {
            punctuated.front() = upperCase(punctuated.front());
        }
        if (results.speechFinal && index + 1 == results.words.size()) {
            punctuated += '.';
        }
        transcript += (index == 0 ? "" : " ") + punctuated;
        confidence = std::min(confidence, word.confidence);
        words.push_back(json::object{{"word", word.text},
                                     {"start", word.start},
                                     {"end", word.end},
                                     {"confidence", word.confidence},
                                     {"punctuated_word", punctuated}});
    }
    return {{"transcript", transcript}, {"confidence", confidence}, {"words", std::move(words)}};
}

} // namespace

std::string resultsMessage(const Results& results, std::string_view requestID) {
    const json::array alternatives{alternative(results)};
    const json::object metadata{
        {"request_id", requestID}, {"model_info", modelInfo()}, {"model_uuid", modelUUID}};
    const json::object message{{"type", "Results"},
                               {"channel_index", json::array{0, 1}},
                               {"duration", results.duration},
                               {"start", results.start},
                               {"is_final", results.isFinal},
                               {"speech_final", results.speechFinal},
                               {"channel", json::object{{"alternatives", alternatives}}},
                               {"metadata", metadata},
                               {"from_finalize", false}};
    return compactJson(message);
}

std::string speechStartedMessage(double timestamp) {
    const json::object message{
        {"type", "SpeechStarted"}, {"channel", json::array{0, 1}}, {"timestamp", timestamp}};
    return compactJson(message);
}

std::string metadataMessage(const StreamSummary& summary, std::string_view requestID) {
    const json::object models{{modelUUID, modelInfo()}};
    // A named list of one element: braces around a single string would make an array of its copy.
    json::array modelList;
    modelList.emplace_back(modelUUID);
    const json::object message{{"type", "Metadata"},      {"transaction_key", "deprecated"},
                               {"request_id", requestID}, {"sha256", summary.sha256},
                               {"created", timestamp()},  {"duration", summary.duration},
                               {"channels", 1},           {"models", modelList},
                               {"model_info", models}};
    return compactJson(message);
}

std::string errorMessage(std::string_view description, std::string_view offendingText) {
    const json::object message{{"type", "Error"},
                               {"variant", "SchemaError"},
                               {"description", description},
                               {"message", offendingText}};
    return compactJson(message);
}

std::optional<std::string> messageType(const std::string& text) {
    boost::system::error_code error;
    const auto value = json::parse(text, error);
    const auto* object = error ? nullptr : value.if_object();
    const auto* type = object == nullptr ? nullptr : object->if_contains("type");
    return type != nullptr && type->is_string() ? std::optional<std::string>(type->get_string())
                                                : std::nullopt;
}

} // namespace orlune::localservice
