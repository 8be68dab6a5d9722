// A script becomes frames or an error; sizes that it names are never exceeded.

#include "localservice/Script.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const auto script = orlune::localservice::Script::parse(text);
        std::size_t bytes = 0;
        for (const auto& step : script.steps) {
            if (const auto* write = std::get_if<orlune::localservice::Script::Write>(&step)) {
                bytes += write->bytes.size();
            }
        }
        if (bytes > std::size_t{64} << 20U) {
            std::abort();
        }
    } catch (const orlune::localservice::ScriptError& error) {
        if (std::string_view(error.what()).empty()) {
            std::abort();
        }
    }
    return 0;
}
