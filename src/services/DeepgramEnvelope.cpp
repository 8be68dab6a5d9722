#include "services/DeepgramEnvelope.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <array>

namespace orlune {

namespace json = boost::json;

namespace {

/// Deeper than any message of the service, and shallow enough for any stack.
constexpr std::size_t deepestNesting = 128;

/// Thrown and caught in this file: a member has the wrong type.
struct Mismatch {};

const json::value* member(const json::object& object, const char* name) {
    const auto* value = object.if_contains(name);
    return value && !value->is_null() ? value : nullptr;
}

std::optional<std::string> optionalString(const json::object& object, const char* name) {
    const auto* value = member(object, name);
    if (!value) {
        return std::nullopt;
    }
    const auto* text = value->if_string();
    return text ? std::string(text->data(), text->size()) : throw Mismatch();
}

std::optional<bool> optionalBoolean(const json::object& object, const char* name) {
    const auto* value = member(object, name);
    if (!value) {
        return std::nullopt;
    }
    const bool* boolean = value->if_bool();
    return boolean ? *boolean : throw Mismatch();
}

const json::object& asObject(const json::value& value) {
    const auto* object = value.if_object();
    return object ? *object : throw Mismatch();
}

} // namespace

std::optional<DeepgramService::Envelope> DeepgramService::Envelope::decode(std::string_view data) {
    std::array<unsigned char, 8192> firstBytes; // enough for an ordinary message
    json::monotonic_resource memory(firstBytes.data(), firstBytes.size());
    json::parse_options options;
    options.max_depth = deepestNesting;
    boost::system::error_code error;
    const auto root =
        json::parse(json::string_view(data.data(), data.size()), error, &memory, options);
    if (error) {
        return std::nullopt;
    }
    try {
        const auto& object = asObject(root);
        Envelope envelope;
        envelope.type = optionalString(object, "type");
        envelope.isFinal = optionalBoolean(object, "is_final");
        if (const auto* channel = member(object, "channel")) {
            const auto* list = asObject(*channel).if_contains("alternatives");
            const auto* alternatives = list ? list->if_array() : nullptr;
            if (!alternatives) {
                throw Mismatch();
            }
            auto& decoded = envelope.channel.emplace().alternatives;
            for (const auto& alternative : *alternatives) {
                decoded.push_back({optionalString(asObject(alternative), "transcript")});
            }
        }
        return envelope;
    } catch (const Mismatch&) {
        return std::nullopt;
    }
}

} // namespace orlune
