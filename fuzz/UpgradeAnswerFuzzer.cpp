// Any answer of the service to the opening handshake, with any data after it, ends with a readable
// text that does not repeat the key.
#include "fuzz/PlainText.h"
#include "fuzz/ServicePeer.h"

#include <cstddef>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orlune;
    static fuzz::ServicePeer peer;
    static const WebSocketAddress service =
        WebSocketAddress::parse("ws://127.0.0.1:" + std::to_string(peer.port()) + "/listen");
    static const WebSocketRequest request{
        .url = {},
        .headers = {{"Authorization", "Token hidden-word"}},
        .refusalReason = {.header = "dg-error", .member = "err_msg"}};

    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    // The answer to an unpredictable nonce cannot be right.
    const auto failure = peer.failure(
        service, bytes, [](BeastTransport& transport) { return transport.connect({}, request); });
    fuzz::expect(failure && !failure->empty() && fuzz::isOneCleanLine(*failure));
    fuzz::expect(failure->find("hidden-word") == std::string::npos);
    return 0;
}
