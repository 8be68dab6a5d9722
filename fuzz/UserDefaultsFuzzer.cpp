// Any settings file is either damaged or survives being written again; any text can be stored or is
// refused.
#include "fuzz/Fuzzing.h"
#include "platform/linux/storage/DefaultsFormat.h"

#include <boost/json/object.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

namespace json = boost::json;

using orlune::fuzz::expect;

/// The parser may misread the last bit of numbers with many digits.
bool isNear(double left, double right) {
    return std::abs(left - right) <= std::abs(left) * 1e-15;
}

bool isSame(const json::value& left, const json::value& right) {
    if (left.is_double() && right.is_double()) {
        return isNear(left.get_double(), right.get_double());
    }
    if (left.is_array() && right.is_array()) {
        return std::ranges::equal(left.get_array(), right.get_array(), isSame);
    }
    if (left.is_object() && right.is_object()) {
        return std::ranges::equal(
            left.get_object(), right.get_object(), [](const auto& one, const auto& other) {
                return one.key() == other.key() && isSame(one.value(), other.value());
            });
    }
    return left == right;
}

void checkFile(std::string_view text) {
    const auto members = orlune::parseDefaults(text);
    if (!members) {
        return;
    }
    const auto again = orlune::parseDefaults(orlune::serializeDefaults(*members));
    expect(again && isSame(*again, *members));
    for (const auto& [key, member] : *members) {
        if (const auto value = orlune::defaultsValue(member)) {
            const auto kept = orlune::defaultsMember(*value);
            expect(kept && orlune::defaultsValue(*kept) == value);
        }
    }
}

void checkText(std::string_view text) {
    if (auto member = orlune::defaultsMember(std::string(text))) {
        const json::object members = {{"key", *member}};
        expect(orlune::parseDefaults(orlune::serializeDefaults(members)) == members);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkFile(text);
    checkText(text);
    return 0;
}
