#include "platform/network/WebSocketAddress.h"

#include "platform/WebSocket.h"

#include <boost/asio/ip/address.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <optional>

namespace orlune {

namespace {

constexpr std::uint16_t securePort = 443;
constexpr std::uint16_t plainPort = 80;

std::optional<boost::asio::ip::address> asAddress(const std::string& host) {
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(host, error);
    return error ? std::nullopt : std::optional(address);
}

/// A decoded host may contain any character, even line breaks; host names that can be looked up do
/// not.
bool isPlainHostName(std::string_view host) {
    return !host.empty() && std::all_of(host.begin(), host.end(), [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
               || (character >= '0' && character <= '9') || character == '.' || character == '-'
               || character == '_';
    });
}

std::string bracketed(const std::string& host) {
    return host.find(':') == std::string::npos ? host : "[" + host + "]";
}

} // namespace

WebSocketAddress WebSocketAddress::parse(std::string_view text) {
    const auto url = boost::urls::parse_uri(boost::core::string_view(text.data(), text.size()));
    if (!url || (url->scheme() != "wss" && url->scheme() != "ws")) {
        throw WebSocketError("The address of the speech service isn't a WebSocket URL");
    }
    WebSocketAddress address;
    address.isSecure = url->scheme() == "wss";
    address.host = url->host_address();
    if (!asAddress(address.host) && !isPlainHostName(address.host)) {
        throw WebSocketError("The address of the speech service names no valid host");
    }
    address.port = url->has_port() ? url->port_number() : address.isSecure ? securePort : plainPort;
    // The parser accepts any number of digits and reduces the value modulo 65536.
    if (address.port == 0
        || (url->has_port() && std::to_string(address.port) != std::string(url->port()))) {
        throw WebSocketError("The address of the speech service has no valid port");
    }
    const auto literal = asAddress(address.host);
    if (!address.isSecure && address.host != "localhost" && !(literal && literal->is_loopback())) {
        throw WebSocketError("An unencrypted connection is only allowed to this computer");
    }
    address.target = std::string(url->encoded_path());
    if (address.target.empty()) {
        address.target = "/";
    }
    if (url->has_query()) {
        address.target += "?" + std::string(url->encoded_query());
    }
    return address;
}

bool WebSocketAddress::hasAddressForHost() const {
    return asAddress(host).has_value();
}

std::string WebSocketAddress::hostAndPort() const {
    return bracketed(host) + ":" + std::to_string(port);
}

std::string WebSocketAddress::hostHeader() const {
    return port == (isSecure ? securePort : plainPort) ? bracketed(host) : hostAndPort();
}

} // namespace orlune
