#include "localservice/CompactJson.h"

#include <boost/json/serialize.hpp>

#include <array>
#include <charconv>
#include <cmath>

namespace orlune::localservice {
namespace {

void append(std::string& text, const boost::json::value& value);

void appendNumber(std::string& text, double number) {
    // The shortest digits that read back as the same number, without an exponent.
    std::array<char, 400> digits{};
    const auto format =
        std::abs(number) < 1e15 ? std::chars_format::fixed : std::chars_format::general;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, format).ptr;
    const std::string_view written(digits.data(), static_cast<std::size_t>(end - digits.data()));
    text += written;
    if (written.find_first_of(".e") == std::string_view::npos) {
        text += ".0";
    }
}

void appendObject(std::string& text, const boost::json::object& object) {
    text += '{';
    for (bool first = true; const auto& member : object) {
        text += first ? "" : ",";
        first = false;
        text += boost::json::serialize(member.key());
        text += ':';
        append(text, member.value());
    }
    text += '}';
}

void appendArray(std::string& text, const boost::json::array& array) {
    text += '[';
    for (bool first = true; const auto& element : array) {
        text += first ? "" : ",";
        first = false;
        append(text, element);
    }
    text += ']';
}

void append(std::string& text, const boost::json::value& value) {
    if (value.is_object()) {
        appendObject(text, value.get_object());
    } else if (value.is_array()) {
        appendArray(text, value.get_array());
    } else if (value.is_double()) {
        appendNumber(text, value.get_double());
    } else {
        text += boost::json::serialize(value);
    }
}

} // namespace

std::string compactJson(const boost::json::value& value) {
    std::string text;
    append(text, value);
    return text;
}

} // namespace orlune::localservice
