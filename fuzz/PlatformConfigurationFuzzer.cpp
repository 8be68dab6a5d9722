// Any file and environment give a usable endpoint, key and terminals. The input is the file, the
// endpoint, the key and the terminals, separated by NUL.
#include "fuzz/Fuzzing.h"
#include "platform/linux/storage/PlatformConfiguration.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using orlune::fuzz::expect;

void checkEndpoint(const std::string& endpoint) {
    const bool isSecure = endpoint.starts_with("wss://");
    expect(isSecure || endpoint.starts_with("ws://"));
    const auto authority = std::string_view(endpoint).substr(isSecure ? 6 : 5);
    expect(!authority.empty()
           && authority.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                          "0123456789-.:[]")
                  == std::string_view::npos);
    expect(isSecure || authority.starts_with("127.") || authority.starts_with("[")
           || authority == "localhost" || authority.starts_with("localhost:"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const std::string file(orlune::fuzz::takeField(rest));
    orlune::Environment environment;
    for (const char* name : {"ORLUNE_ENDPOINT", "ORLUNE_FN_KEY", "ORLUNE_TERMINALS"}) {
        environment[name] = std::string(orlune::fuzz::takeField(rest));
    }
    const auto configuration = orlune::PlatformConfiguration::parse(file, environment);
    checkEndpoint(configuration.endpoint);
    expect(!configuration.fnKey.empty());
    for (const auto& terminal : configuration.terminals) {
        expect(!terminal.empty());
    }
    const auto again = orlune::PlatformConfiguration::parse(
        std::nullopt,
        {{"ORLUNE_ENDPOINT", configuration.endpoint}, {"ORLUNE_FN_KEY", configuration.fnKey}});
    expect(again.problems.empty() && again.endpoint == configuration.endpoint
           && again.fnKey == configuration.fnKey);
    return 0;
}
