#include "app/doctor/NetworkCheck.h"

namespace orlune {

Findings checkNetwork(const EndpointProbe& probe) {
    constexpr auto name = "speech service";
    if (!probe.error.empty()) {
        return {{name, Finding::State::fail, probe.error,
                 "Check the network, HTTPS_PROXY and the endpoint in platform.json. \"orlune "
                 "dictate --local\" needs no network."}};
    }
    std::string found = probe.address + " answers";
    found += probe.isSecure ? " over TLS" : " without TLS";
    if (!probe.proxy.empty()) {
        found += ", through the proxy " + probe.proxy;
    }
    return {
        {name, Finding::State::ok, found + ", in " + std::to_string(probe.took.count()) + " ms"}};
}

} // namespace orlune
