#include "platform/linux/shortcuts/SwayMessages.h"

#include <boost/json.hpp>

#include <cstring>

namespace orlune::sway {

namespace json = boost::json;

namespace {

constexpr std::string_view magic = "i3-ipc";
constexpr std::size_t headerBytes = magic.size() + 2 * sizeof(std::uint32_t);

std::uint32_t numberAt(std::string_view bytes, std::size_t position) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes.data() + position, sizeof number);
    return number;
}

std::string bytesOf(std::uint32_t number) {
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

json::value parsed(std::string_view text) {
    boost::system::error_code error;
    auto value = json::parse(text, error);
    return error ? json::value() : value;
}

const json::value* member(const json::value* value, std::string_view name) {
    const auto* const object = value ? value->if_object() : nullptr;
    return object ? object->if_contains(name) : nullptr;
}

std::optional<std::string> textOf(const json::value* value) {
    const auto* const text = value ? value->if_string() : nullptr;
    return text ? std::optional(std::string(*text)) : std::nullopt;
}

} // namespace

std::string encode(MessageType type, std::string_view payload) {
    std::string message(magic);
    message += bytesOf(static_cast<std::uint32_t>(payload.size()));
    message += bytesOf(static_cast<std::uint32_t>(type));
    message += payload;
    return message;
}

std::optional<Message> MessageReader::next() {
    if (isBroken_ || bytes_.size() < headerBytes) {
        return std::nullopt;
    }
    const std::size_t length = numberAt(bytes_, magic.size());
    if (!bytes_.starts_with(magic) || length > largestPayloadBytes) {
        isBroken_ = true;
        return std::nullopt;
    }
    if (bytes_.size() - headerBytes < length) {
        return std::nullopt;
    }
    Message message{
        .type = static_cast<MessageType>(numberAt(bytes_, magic.size() + sizeof(std::uint32_t))),
        .payload = bytes_.substr(headerBytes, length)};
    bytes_.erase(0, headerBytes + length);
    return message;
}

std::optional<std::string> commandOfBinding(std::string_view eventJson) {
    const auto event = parsed(eventJson);
    return textOf(member(member(&event, "binding"), "command"));
}

bool isReload(std::string_view eventJson) {
    const auto event = parsed(eventJson);
    return textOf(member(&event, "change")) == "reload";
}

std::optional<std::string> failureOfCommand(std::string_view answerJson) {
    const auto answer = parsed(answerJson);
    const auto* const results = answer.if_array();
    if (!results || results->empty()) {
        return "its answer can't be understood";
    }
    for (const auto& result : *results) {
        const auto* const success = member(&result, "success");
        if (!success || !success->is_bool() || !success->get_bool()) {
            return textOf(member(&result, "error")).value_or("it gives no reason");
        }
    }
    return std::nullopt;
}

std::string configurationText(std::string_view answerJson) {
    const auto answer = parsed(answerJson);
    return textOf(member(&answer, "config")).value_or("");
}

} // namespace orlune::sway
