// Any answer of the service to the opening handshake, and whatever follows it, ends with a text for
// a person that does not repeat the key.
#include "fuzz/PlainText.h"
#include "fuzz/ServicePeer.h"

#include <cstddef>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orlune;
    static fuzz::ServicePeer peer;
    static const WebSocketAddress service =
        WebSocketAddress::parse("ws://127.0.0.1:" + std::to_string(peer.port()) + "/listen");
    static const BeastTransport::Headers headers{{"Authorization", "Token hidden-word"}};

    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    // The answer to a nonce that nobody knows in advance cannot be right.
    const auto failure = peer.failure(
        service, bytes, [](BeastTransport& transport) { return transport.connect({}, headers); });
    fuzz::expect(failure && !failure->empty() && fuzz::isOneCleanLine(*failure));
    fuzz::expect(failure->find("hidden-word") == std::string::npos);
    return 0;
}
