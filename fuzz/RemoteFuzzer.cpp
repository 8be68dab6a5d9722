// Any text from the session bus matches at most one request name, and any status becomes a readable
// line or is refused.
#include "app/remote/RemoteRequest.h"
#include "app/remote/Status.h"
#include "fuzz/Fuzzing.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

using orlune::fuzz::expect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto request = orlune::remoteRequestNamed(text)) {
        expect(orlune::remoteRequestOfMethod(orlune::busMethod(*request)) == request);
        expect(!orlune::remoteRequestOfMethod(text));
    }
    if (const auto request = orlune::remoteRequestOfMethod(text)) {
        expect(orlune::busMethod(*request) == text);
    }
    if (const auto line = orlune::statusLine(text)) {
        expect(line->find(": ") != std::string::npos);
    }
    return 0;
}
