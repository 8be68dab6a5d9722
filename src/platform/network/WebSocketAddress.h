// A WebSocket URL taken apart into what a connection needs. Pure functions, from any thread. A URL
// that cannot be honoured throws `WebSocketError`.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orlune {

struct WebSocketAddress {
    bool isSecure = true;
    std::string host; ///< a name or an address, without brackets
    std::uint16_t port = 0;
    std::string target; ///< path and query, as sent in the request line

    /// Accepts wss:// to anywhere, and ws:// to a host that names this machine.
    static WebSocketAddress parse(std::string_view url);

    bool hasAddressForHost() const;
    /// "host:port", with brackets around an IPv6 address.
    std::string hostAndPort() const;
    /// The Host header: as above, without the scheme's own port.
    std::string hostHeader() const;
};

} // namespace orlune
