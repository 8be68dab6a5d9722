#include "localservice/ScriptStep.h"

#include "localservice/CompactJson.h"
#include "localservice/Frames.h"
#include "localservice/Messages.h"

#include <boost/json/array.hpp>
#include <boost/json/parse.hpp>

#include <algorithm>

namespace orlune::localservice {
namespace {

namespace json = boost::json;

constexpr std::string_view scriptRequestID = "00000000-0000-4000-8000-000000000000";
constexpr double mostAudioSeconds = 36000;
constexpr std::size_t longestCloseReason = 123; // what fits into a control frame with the code
constexpr std::size_t mostMessageBytes = std::size_t{16} << 20U;
constexpr std::size_t longestControlPayload = 125;

int digitOf(char letter) {
    constexpr std::string_view digits = "0123456789abcdef";
    const char lower =
        letter >= 'A' && letter <= 'F' ? static_cast<char>(letter - 'A' + 'a') : letter;
    const auto found = digits.find(lower);
    return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

/// Accepts "81 05 68" and "810568".
std::string bytesOf(std::string_view hexadecimal, const ScriptMembers& members) {
    std::string bytes;
    int high = -1;
    for (const char letter : hexadecimal) {
        if (letter == ' ') {
            continue;
        }
        const int digit = digitOf(letter);
        if (digit < 0) {
            members.fail("bytes are written as pairs of hexadecimal digits");
        }
        if (high < 0) {
            high = digit;
        } else {
            bytes += static_cast<char>(high * 16 + digit);
            high = -1;
        }
    }
    if (high >= 0) {
        members.fail("the last byte has only one digit");
    }
    return bytes;
}

std::vector<RecognisedWord> spread(std::string_view text, double start, double duration) {
    std::vector<RecognisedWord> words;
    while (!text.empty()) {
        const auto end = std::min(text.find(' '), text.size());
        if (end > 0) {
            words.push_back({.text = std::string(text.substr(0, end)), .confidence = 0.98});
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    const double step = words.empty() ? 0 : duration / static_cast<double>(words.size());
    for (auto& word : words) {
        word.start = start;
        start += step;
        word.end = start;
    }
    return words;
}

/// "interim" and "final": the message contains the text exactly as in the script.
std::string takeResults(ScriptMembers& members, bool isFinal) {
    const auto text = *members.takeString(isFinal ? "final" : "interim");
    Results results{.start = members.takeNumber("start", 0, mostAudioSeconds).value_or(0),
                    .duration = members.takeNumber("duration", 0, mostAudioSeconds).value_or(1),
                    .isFinal = isFinal,
                    .speechFinal = false,
                    .startsSentence = false,
                    .words = {}};
    const bool speechFinal = isFinal && members.takeBoolean("speechFinal").value_or(true);
    results.words = spread(text, results.start, results.duration);
    auto message = json::parse(resultsMessage(results, scriptRequestID)).as_object();
    message["speech_final"] = speechFinal;
    message["channel"].as_object()["alternatives"].as_array()[0].as_object()["transcript"] = text;
    return compactJson(message);
}

std::string takeMetadata(ScriptMembers& members) {
    const auto duration = *members.takeNumber("metadata", 0, mostAudioSeconds);
    const auto sha256 = members.takeString("sha256").value_or(std::string(64, '0'));
    return metadataMessage({.duration = duration, .sha256 = sha256}, scriptRequestID);
}

/// The payload of the message that this step sends, if it sends one.
std::optional<std::string> takePayload(ScriptMembers& members) {
    if (members.has("interim")) {
        return takeResults(members, /*isFinal=*/false);
    }
    if (members.has("final")) {
        return takeResults(members, /*isFinal=*/true);
    }
    if (members.has("speechStarted")) {
        return speechStartedMessage(*members.takeNumber("speechStarted", 0, mostAudioSeconds));
    }
    if (members.has("metadata")) {
        return takeMetadata(members);
    }
    if (const auto* value = members.take("send")) {
        return compactJson(*value);
    }
    if (auto text = members.takeString("sendText")) {
        return text;
    }
    if (const auto bytes = members.takeString("sendBytes")) {
        return bytesOf(*bytes, members);
    }
    return std::nullopt;
}

/// Pads a message with an unknown member, or with spaces when it is not an object.
void pad(std::string& payload, std::size_t size) {
    if (payload.size() >= size) {
        return;
    }
    constexpr std::string_view opening = ",\"padding\":\"";
    constexpr std::string_view closing = "\"}";
    const auto missing = size - payload.size();
    if (payload.size() > 2 && payload.ends_with('}') && missing > opening.size() + closing.size()) {
        payload.pop_back();
        payload += opening;
        payload.append(missing - opening.size() - 1, 'x');
        payload += closing;
    } else {
        payload.append(missing, ' ');
    }
}

std::optional<Script::Write> takeWrite(ScriptMembers& members);

Script::Write takeTogether(ScriptMembers& members) {
    const json::value list = *members.take("together");
    if (!list.is_array()) {
        members.fail("\"together\" must be a list of steps");
    }
    Script::Write all;
    for (const auto& element : list.get_array()) {
        ScriptMembers inner(element, members.place() + ", together");
        if (inner.has("together")) {
            inner.fail("\"together\" cannot hold another \"together\"");
        }
        const auto write = takeWrite(inner);
        if (!write) {
            inner.fail("only steps that write can stand here");
        }
        inner.requireEmpty();
        all.bytes += write->bytes;
        if (all.bytes.size() > mostScriptBytes) {
            members.fail("the script writes more than 64 MiB");
        }
    }
    return all;
}

std::string closePayload(std::uint16_t code, std::string_view reason) {
    std::string payload{static_cast<char>(code >> 8U), static_cast<char>(code & 0xFFU)};
    return payload.append(reason);
}

/// The steps that send bytes.
std::optional<Script::Write> takeWrite(ScriptMembers& members) {
    Script::Write write;
    if (members.has("together")) {
        write = takeTogether(members);
    } else if (const auto raw = members.takeString("raw")) {
        write.bytes = bytesOf(*raw, members);
    } else if (const auto ping = members.takeString("ping")) {
        write.bytes =
            frame(FrameKind::ping, std::string_view(*ping).substr(0, longestControlPayload), {});
    } else if (const auto code = members.takeCount("closeFrame", 0, 65535)) {
        const auto reason = members.takeString("reason").value_or("").substr(0, longestCloseReason);
        write.bytes =
            frame(FrameKind::close, closePayload(static_cast<std::uint16_t>(*code), reason), {});
    } else if (auto payload = takePayload(members)) {
        pad(*payload, members.takeCount("padTo", 0, mostMessageBytes).value_or(0));
        const auto kind =
            members.takeBoolean("binary").value_or(false) ? FrameKind::binary : FrameKind::text;
        const MessageStyle style{.fragments = members.takeCount("fragments", 1, 100000).value_or(1),
                                 .pingBetween = members.takeBoolean("pingBetween").value_or(false),
                                 .masked = members.takeBoolean("masked").value_or(false)};
        write.bytes = message(kind, *payload, style);
    } else {
        return std::nullopt;
    }
    write.pieceSize = members.takeCount("pieceSize", 1, mostScriptBytes).value_or(0);
    return write;
}

std::optional<Script::Step> takeOther(ScriptMembers& members) {
    if (const auto seconds = members.takeNumber("waitForAudio", 0, mostAudioSeconds)) {
        return Script::WaitForAudio{.seconds = *seconds};
    }
    if (auto type = members.takeString("waitForText")) {
        return Script::WaitForText{.type = std::move(*type)};
    }
    if (const auto wanted = members.takeBoolean("waitForClose")) {
        if (!*wanted) {
            members.fail("\"waitForClose\" can only be true");
        }
        return Script::WaitForClose{};
    }
    if (const auto duration = members.takeSeconds("wait")) {
        return Script::Wait{.duration = *duration};
    }
    if (const auto code = members.takeCount("close", 1000, 4999)) {
        if (*code == 1004 || *code == 1005 || *code == 1006 || *code == 1015) {
            members.fail("no close may carry this code; \"closeFrame\" sends it all the same");
        }
        auto reason = members.takeString("reason").value_or("");
        if (reason.size() > longestCloseReason) {
            members.fail("a reason has at most 123 bytes");
        }
        return Script::Close{.code = static_cast<std::uint16_t>(*code),
                             .reason = std::move(reason)};
    }
    if (const auto how = members.takeString("drop")) {
        if (*how != "end" && *how != "reset") {
            members.fail("\"drop\" must be \"end\" or \"reset\"");
        }
        return Script::Drop{.reset = *how == "reset"};
    }
    if (const auto stalled = members.takeBoolean("stall")) {
        return Script::Stall{.stalled = *stalled};
    }
    return std::nullopt;
}

} // namespace

Script::Step parseScriptStep(const json::value& value, const std::string& place) {
    ScriptMembers members(value, place);
    std::optional<Script::Step> step;
    if (auto write = takeWrite(members)) {
        step = std::move(*write);
    } else {
        step = takeOther(members);
    }
    if (!step) {
        members.fail("the step says nothing that is known");
    }
    members.requireEmpty();
    return *std::move(step);
}

} // namespace orlune::localservice
