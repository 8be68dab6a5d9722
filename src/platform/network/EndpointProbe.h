// Tests whether a speech service can be reached: name, TCP, proxy and TLS with a verified
// certificate. Sends nothing to the service itself. Blocks, but not beyond the limit, even where
// the system's name lookup hangs.
#pragma once

#include "platform/network/ProxySettings.h"

#include <chrono>
#include <string>

namespace orlune {

struct EndpointProbe {
    std::string address; ///< host and port
    std::string proxy;   ///< the proxy's host; empty without one
    bool isSecure = true;
    std::string error; ///< for the user; empty when the service was reached
    std::chrono::milliseconds took{0};

    /// `endpoint` is a scheme with a host and optionally a port.
    static EndpointProbe run(const std::string& endpoint, const ProxySettings& proxies,
                             std::chrono::milliseconds limit);
};

} // namespace orlune
