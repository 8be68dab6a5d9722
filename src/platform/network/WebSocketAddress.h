// A WebSocket URL split into what a connection needs. Pure functions, usable on any thread. An
// invalid or unsupported URL throws `WebSocketError`.
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

    /// Accepts wss:// to any host, and ws:// to a host that names this machine.
    static WebSocketAddress parse(std::string_view url);

    bool hasAddressForHost() const;
    /// "host:port", with brackets around an IPv6 address.
    std::string hostAndPort() const;
    /// The Host header: as above, but without the scheme's default port.
    std::string hostHeader() const;
};

} // namespace orlune
