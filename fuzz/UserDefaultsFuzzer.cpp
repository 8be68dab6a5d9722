// Any settings file is either damaged or survives being written again; any text can be stored or is
// refused.
#include "platform/linux/storage/DefaultsFormat.h"

#include <boost/json/object.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void expect(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void checkFile(std::string_view text) {
    const auto members = orlune::parseDefaults(text);
    if (!members) {
        return;
    }
    expect(orlune::parseDefaults(orlune::serializeDefaults(*members)) == members);
    for (const auto& [key, member] : *members) {
        const auto value = orlune::defaultsValue(member);
        if (!value) {
            continue;
        }
        const auto again = orlune::defaultsMember(*value);
        // A number too large for a double is kept, though we never write one.
        expect(again ? orlune::defaultsValue(*again) == value : member.is_double());
    }
}

void checkText(std::string_view text) {
    if (auto member = orlune::defaultsMember(std::string(text))) {
        const boost::json::object members = {{"key", *member}};
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
