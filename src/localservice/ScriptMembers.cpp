#include "localservice/ScriptStep.h"

#include <cmath>

namespace orlune::localservice {
namespace {

constexpr double mostSeconds = 3600;

std::string asText(double number) {
    auto text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

} // namespace

ScriptMembers::ScriptMembers(const boost::json::value& value, std::string place)
    : place_(std::move(place)) {
    if (!value.is_object()) {
        fail("an object is needed here");
    }
    object_ = value.get_object();
}

const boost::json::value* ScriptMembers::take(std::string_view name) {
    const auto member = object_.find(name);
    if (member == object_.end()) {
        return nullptr;
    }
    taken_ = std::move(member->value());
    object_.erase(member);
    return &taken_;
}

std::optional<std::string> ScriptMembers::takeString(std::string_view name) {
    const auto* value = take(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_string()) {
        fail("\"" + std::string(name) + "\" must be a string");
    }
    return std::string(value->get_string());
}

std::optional<bool> ScriptMembers::takeBoolean(std::string_view name) {
    const auto* value = take(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_bool()) {
        fail("\"" + std::string(name) + "\" must be true or false");
    }
    return value->get_bool();
}

std::optional<double> ScriptMembers::takeNumber(std::string_view name, double least, double most) {
    const auto* value = take(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    boost::system::error_code error;
    const auto number = value->to_number<double>(error);
    if (error || !(number >= least && number <= most)) {
        fail("\"" + std::string(name) + "\" must be a number from " + asText(least) + " to "
             + asText(most));
    }
    return number;
}

std::optional<std::size_t> ScriptMembers::takeCount(std::string_view name, std::size_t least,
                                                    std::size_t most) {
    const auto number = takeNumber(name, static_cast<double>(least), static_cast<double>(most));
    if (number && std::floor(*number) != *number) {
        fail("\"" + std::string(name) + "\" must be a whole number");
    }
    return number ? std::optional(static_cast<std::size_t>(*number)) : std::nullopt;
}

std::optional<Script::Duration> ScriptMembers::takeSeconds(std::string_view name) {
    const auto seconds = takeNumber(name, 0, mostSeconds);
    return seconds
               ? std::optional(Script::Duration(static_cast<long>(std::lround(*seconds * 1000))))
               : std::nullopt;
}

void ScriptMembers::requireEmpty() const {
    if (!object_.empty()) {
        fail("\"" + std::string(object_.begin()->key()) + "\" is not known here");
    }
}

void ScriptMembers::fail(const std::string& complaint) const {
    throw ScriptError(place_ + ": " + complaint + ".");
}

} // namespace orlune::localservice
