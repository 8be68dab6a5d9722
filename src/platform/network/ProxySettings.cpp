#include "platform/network/ProxySettings.h"

#include "platform/WebSocket.h"

#include <boost/asio/ip/address.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <utility>

namespace orlune {

namespace {

constexpr std::uint16_t defaultProxyPort = 80;

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                    : character;
    });
    return lower;
}

/// Brings every spelling of a host into one form: lower case, no brackets, no final dot, and
/// addresses in canonical form.
std::string canonicalHost(std::string_view host) {
    if (host.starts_with('[') && host.ends_with(']')) {
        host = host.substr(1, host.size() - 2);
    }
    if (host.ends_with('.')) {
        host.remove_suffix(1);
    }
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(std::string(host), error);
    return error ? lowerCase(host) : address.to_string();
}

bool isAddress(const std::string& host) {
    boost::system::error_code error;
    boost::asio::ip::make_address(host, error);
    return !error;
}

/// The host of an entry and its port, if it has one. More than one colon belongs to a bare IPv6
/// address.
std::pair<std::string_view, std::string_view> splitPort(std::string_view entry) {
    const auto colon = entry.rfind(':');
    const bool bracketed = entry.starts_with('[');
    if (colon == std::string_view::npos || (bracketed && entry.ends_with(']'))
        || (!bracketed && entry.find(':') != colon)) {
        return {entry, {}};
    }
    return {entry.substr(0, colon), entry.substr(colon + 1)};
}

/// The parser accepts any number of digits and reduces the value modulo 65536.
bool isPort(const boost::urls::url_view& url) {
    return !url.has_port()
           || (url.port_number() > 0
               && std::to_string(url.port_number()) == std::string(url.port()));
}

bool matches(std::string_view entry, const std::string& host, std::uint16_t port) {
    if (entry == "*") {
        return true;
    }
    auto [name, entryPort] = splitPort(entry);
    if (!entryPort.empty() && entryPort != std::to_string(port)) {
        return false;
    }
    if (name.starts_with("*.")) {
        name.remove_prefix(2);
    } else if (name.starts_with('.')) {
        name.remove_prefix(1);
    }
    const auto wanted = canonicalHost(name);
    if (wanted.empty() || host == wanted) {
        return !wanted.empty();
    }
    return !isAddress(host) && host.ends_with("." + wanted);
}

} // namespace

ProxySettings::ProxySettings(std::string proxy, std::string exceptions)
    : proxy_(std::move(proxy)), exceptions_(std::move(exceptions)) {}

ProxySettings ProxySettings::fromEnvironment(const Environment& environment) {
    const auto firstSet = [&](std::initializer_list<const char*> names) {
        for (const char* name : names) {
            if (auto value = environment(name); value && !value->empty()) {
                return *value;
            }
        }
        return std::string();
    };
    return ProxySettings(firstSet({"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}),
                         firstSet({"no_proxy", "NO_PROXY"}));
}

ProxySettings ProxySettings::fromProcessEnvironment() {
    return fromEnvironment([](const char* name) -> std::optional<std::string> {
        const char* value = std::getenv(name);
        return value ? std::optional<std::string>(value) : std::nullopt;
    });
}

bool ProxySettings::isException(std::string_view host, std::uint16_t port) const {
    const auto canonical = canonicalHost(host);
    constexpr std::string_view separators = ", \t";
    std::string_view rest = exceptions_;
    while (true) {
        const auto begin = rest.find_first_not_of(separators);
        if (begin == std::string_view::npos) {
            return false;
        }
        rest.remove_prefix(begin);
        const auto entry = rest.substr(0, rest.find_first_of(separators));
        if (matches(entry, canonical, port)) {
            return true;
        }
        rest.remove_prefix(entry.size());
    }
}

std::optional<ProxyServer> ProxySettings::proxyFor(std::string_view host,
                                                   std::uint16_t port) const {
    if (proxy_.empty() || isException(host, port)) {
        return std::nullopt;
    }
    const std::string text = proxy_.find("://") == std::string::npos ? "http://" + proxy_ : proxy_;
    const auto url = boost::urls::parse_uri(text);
    if (!url || url->host().empty() || !isPort(*url)) {
        throw WebSocketError("The configured proxy isn't a valid address");
    }
    if (lowerCase(std::string(url->scheme())) != "http") {
        throw WebSocketError("Proxies of the kind \"" + std::string(url->scheme())
                             + "\" aren't supported");
    }
    ProxyServer server;
    server.host = url->host_address();
    server.port = url->has_port() ? url->port_number() : defaultProxyPort;
    if (url->has_userinfo()) {
        server.credentials = url->user() + ":" + url->password();
    }
    return server;
}

} // namespace orlune
