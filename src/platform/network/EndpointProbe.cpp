#include "platform/network/EndpointProbe.h"

#include "platform/network/BeastTransport.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <optional>

namespace orlune {

namespace {

namespace asio = boost::asio;

/// The error; empty on success.
std::string textOf(const std::exception_ptr& failure) {
    if (!failure) {
        return {};
    }
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& error) {
        return error.what();
    }
}

std::string reach(const WebSocketAddress& address, const ProxySettings& proxies,
                  std::chrono::milliseconds limit) {
    auto context = std::make_unique<asio::io_context>(1);
    const auto trust = makeTrust();
    const auto transport = BeastTransport::make(context->get_executor(), *trust, address);
    std::optional<std::string> error;
    asio::co_spawn(*context, transport->reach(proxies),
                   [&](const std::exception_ptr& failure) { error = textOf(failure); });
    context->run_for(limit);
    if (error) {
        transport->drop();
        return *error;
    }
    // Unwinds the waiting operations.
    transport->drop();
    context->run_for(std::chrono::milliseconds(100));
    // A name lookup under way cannot be interrupted, and the context's destructor would wait for
    // it. It is left to the end of the process.
    [[maybe_unused]] const auto* left = context.release();
    return "No answer within " + std::to_string(limit.count()) + " ms";
}

} // namespace

EndpointProbe EndpointProbe::run(const std::string& endpoint, const ProxySettings& proxies,
                                 std::chrono::milliseconds limit) {
    EndpointProbe probe;
    const auto begin = std::chrono::steady_clock::now();
    try {
        const auto address = WebSocketAddress::parse(endpoint + "/");
        probe.address = address.hostAndPort();
        probe.isSecure = address.isSecure;
        if (const auto proxy =
                address.isSecure ? proxies.proxyFor(address.host, address.port) : std::nullopt) {
            probe.proxy = proxy->host;
        }
        probe.error = reach(address, proxies, limit);
    } catch (const std::exception& error) {
        probe.error = error.what();
    }
    probe.took = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - begin);
    return probe;
}

} // namespace orlune
