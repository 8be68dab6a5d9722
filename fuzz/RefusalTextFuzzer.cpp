// Any refusal gives one line of bounded length that does not repeat the key. The input is the
// reason, the `dg-error` header and the key, separated by NUL, and the body.
#include "fuzz/Fuzzing.h"
#include "fuzz/PlainText.h"
#include "platform/network/RefusalText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t lengthLimit = 1000;
constexpr std::size_t shortestSecret = 4;

using orlune::fuzz::expect;

/// A key is letters and digits; the text's own words do not leak it.
bool isKey(std::string_view text) {
    const auto plain = orlune::refusalText(401, {}, {}, {}, {});
    return text.size() >= shortestSecret && plain.find(text) == std::string::npos
           && std::ranges::all_of(text, [](char byte) {
                  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z')
                         || (byte >= 'a' && byte <= 'z');
              });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const auto reason = orlune::fuzz::takeField(rest);
    const auto errorHeader = orlune::fuzz::takeField(rest);
    const std::string key(orlune::fuzz::takeField(rest));
    orlune::WebSocketRequest request;
    request.headers = {{"Authorization", "Token " + key}};
    request.refusalReason.member = "err_msg";
    const auto text = orlune::refusalText(401, reason, errorHeader, rest, request);
    expect(text.starts_with("The connection was refused (HTTP 401"));
    expect(text.size() < lengthLimit && orlune::fuzz::isOneCleanLine(text));
    expect(!isKey(key) || text.find(key) == std::string::npos);
    return 0;
}
