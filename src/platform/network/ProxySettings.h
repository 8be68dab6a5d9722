// Decides which proxy, if any, a secure connection uses. A value that is read once from the
// environment and passed in; the decision itself is a pure function, usable on any thread.
// A configured proxy that cannot be used is an error; it is never bypassed silently.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orlune {

struct ProxyServer {
    std::string host;
    std::uint16_t port = 0;
    std::string credentials; ///< "user:password" for basic authentication; empty when not needed
};

class ProxySettings {
  public:
    /// Looks up one environment variable; none when it is not set.
    using Environment = std::function<std::optional<std::string>(const char* name)>;

    /// No proxy at all.
    ProxySettings() = default;
    /// `proxy` is a URL or "host:port"; `exceptions` is a list separated by commas or spaces.
    ProxySettings(std::string proxy, std::string exceptions);

    /// The first of https_proxy, HTTPS_PROXY, all_proxy, ALL_PROXY that is not empty, and no_proxy
    /// or NO_PROXY.
    static ProxySettings fromEnvironment(const Environment& environment);
    /// The same, from the environment of this process. Must be called before threads start.
    static ProxySettings fromProcessEnvironment();

    /// The proxy for a connection to this host and port; none for a direct connection. Throws
    /// `WebSocketError`, without the proxy's credentials, when the configured proxy is malformed or
    /// of an unsupported kind (only plain HTTP proxies are supported).
    std::optional<ProxyServer> proxyFor(std::string_view host, std::uint16_t port) const;

  private:
    bool isException(std::string_view host, std::uint16_t port) const;

    std::string proxy_;
    std::string exceptions_;
};

} // namespace orlune
