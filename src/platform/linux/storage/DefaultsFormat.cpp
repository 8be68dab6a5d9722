#include "platform/linux/storage/DefaultsFormat.h"

#include "platform/Base64.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

namespace orlune {

namespace json = boost::json;

namespace {

constexpr auto dataMember = "data";

/// Exponents beyond a double's range parse as infinity, or for 0e400 as NaN. JSON cannot express
/// these: written back, they would damage the file.
void boundNumbers(json::value& value) {
    if (auto* number = value.if_double(); number && !std::isfinite(*number)) {
        *number =
            std::isnan(*number) ? 0 : std::copysign(std::numeric_limits<double>::max(), *number);
    } else if (auto* object = value.if_object()) {
        for (auto& member : *object) {
            boundNumbers(member.value());
        }
    } else if (auto* array = value.if_array()) {
        for (auto& element : *array) {
            boundNumbers(element);
        }
    }
}

bool isUTF8(std::string_view text) {
    // Text that the parser would refuse must never be written.
    boost::system::error_code error;
    json::parse(json::serialize(json::string(text)), error);
    return !error;
}

} // namespace

std::optional<json::object> parseDefaults(std::string_view text) {
    if (text.size() > largestDefaultsFileBytes) {
        return std::nullopt;
    }
    boost::system::error_code error;
    auto document = json::parse(text, error);
    if (error || !document.is_object()) {
        return std::nullopt;
    }
    boundNumbers(document);
    return std::move(document.get_object());
}

std::string serializeDefaults(const json::object& members) {
    std::string text = "{";
    const char* separator = "\n  ";
    for (const auto& [key, member] : members) {
        text += separator + json::serialize(json::string(key)) + ": " + json::serialize(member);
        separator = ",\n  ";
    }
    return text + "\n}\n";
}

std::optional<UserDefaults::Value> defaultsValue(const json::value& member) {
    switch (member.kind()) {
    case json::kind::bool_:
        return member.get_bool();
    case json::kind::int64:
        return member.get_int64();
    case json::kind::double_:
        return member.get_double();
    case json::kind::string:
        return std::string(member.get_string());
    case json::kind::object: {
        const auto* data = member.get_object().if_contains(dataMember);
        if (!data || !data->is_string() || member.get_object().size() != 1) {
            return std::nullopt;
        }
        return bytesFromBase64(data->get_string());
    }
    case json::kind::null:
    case json::kind::uint64:
    case json::kind::array:
        break;
    }
    return std::nullopt;
}

std::optional<json::value> defaultsMember(const UserDefaults::Value& value) {
    return std::visit(
        [](const auto& typed) -> std::optional<json::value> {
            using Type = std::decay_t<decltype(typed)>;
            if constexpr (std::is_same_v<Type, UserDefaults::Data>) {
                json::object object;
                object[dataMember] = base64(typed);
                return object;
            } else if constexpr (std::is_same_v<Type, std::string>) {
                return isUTF8(typed) ? std::optional<json::value>(typed) : std::nullopt;
            } else if constexpr (std::is_same_v<Type, double>) {
                return std::isfinite(typed) ? std::optional<json::value>(typed) : std::nullopt;
            } else {
                return json::value(typed);
            }
        },
        value);
}

} // namespace orlune
