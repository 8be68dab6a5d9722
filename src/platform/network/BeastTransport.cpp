#include "platform/network/BeastTransport.h"

#include "platform/Base64.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include <chrono>
#include <netinet/tcp.h>
#include <optional>
#include <utility>

namespace orlune {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

/// How long one address is tried while others are left, so that a name with a dead IPv6 route does
/// not use up the time of its working IPv4 address.
constexpr auto attemptLimit = std::chrono::seconds(3);
/// A peer that acknowledges nothing for this long is gone; the system then fails the connection.
constexpr unsigned acknowledgementLimitMilliseconds = 30'000;

} // namespace

BeastTransport::BeastTransport(const Executor& strand, WebSocketAddress address)
    : strand_(strand), address_(std::move(address)), resolver_(strand), timer_(strand) {}

void BeastTransport::requireNotDropped() const {
    if (dropped_) {
        throw WebSocketError("The connection was cancelled");
    }
}

void BeastTransport::drop() {
    dropped_ = true;
    resolver_.cancel();
    timer_.cancel();
    error_code ignored;
    socket().close(ignored);
}

void BeastTransport::reset() {
    error_code ignored;
    socket().set_option(asio::socket_base::linger(true, 0), ignored);
    drop();
}

Awaitable<void> BeastTransport::connect(const ProxySettings& proxies,
                                        const WebSocketRequest& request) {
    auto reaching = reach(proxies);
    co_await std::move(reaching);
    auto upgrading = upgrade(request);
    co_await std::move(upgrading);
}

Awaitable<void> BeastTransport::reach(const ProxySettings& proxies) {
    requireNotDropped();
    std::optional<ProxyServer> proxy;
    if (address_.isSecure) {
        proxy = proxies.proxyFor(address_.host, address_.port);
    }
    const std::string host = proxy ? proxy->host : address_.host;
    auto resolving = resolve(host, proxy ? proxy->port : address_.port);
    auto endpoints = co_await std::move(resolving);
    auto connecting = connectToAny(host, std::move(endpoints));
    co_await std::move(connecting);
    if (proxy) {
        auto tunnelling = tunnel(std::move(*proxy));
        co_await std::move(tunnelling);
    }
    auto securing = secure();
    co_await std::move(securing);
}

Awaitable<BeastTransport::Endpoints> BeastTransport::resolve(std::string host, std::uint16_t port) {
    struct Lookup {
        error_code error = asio::error::operation_aborted;
        Endpoints endpoints;
    };
    const auto lookup = std::make_shared<Lookup>();
    resolver_.async_resolve(
        host, std::to_string(port), tcp::resolver::numeric_service,
        [weakSelf = weak_from_this(), lookup](error_code error, Endpoints endpoints) {
            *lookup = {error, std::move(endpoints)};
            if (const auto self = weakSelf.lock()) {
                self->timer_.cancel();
            }
        });
    // The system's lookup cannot be interrupted. The timer signals its end instead, so that a
    // dropped connection stops waiting.
    error_code ended;
    timer_.expires_at(asio::steady_timer::time_point::max());
    auto wait = timer_.async_wait(asio::redirect_error(asio::use_awaitable, ended));
    co_await std::move(wait);
    requireNotDropped();
    if (lookup->error) {
        throw WebSocketError("Couldn't find " + host + ": " + lookup->error.message());
    }
    co_return lookup->endpoints;
}

Awaitable<void> BeastTransport::connectToAny(std::string host, Endpoints endpoints) {
    error_code error = asio::error::host_not_found;
    std::size_t left = endpoints.size();
    for (const auto& entry : endpoints) {
        const tcp::endpoint endpoint = entry.endpoint();
        if (!address_.isSecure && !endpoint.address().is_loopback()) {
            throw WebSocketError("An unencrypted connection is only allowed to this computer");
        }
        const unsigned attempt = ++attempt_;
        if (--left > 0) {
            timer_.expires_after(attemptLimit);
            timer_.async_wait([weakSelf = weak_from_this(), attempt](error_code ended) {
                const auto self = weakSelf.lock();
                if (!ended && self && self->attempt_ == attempt) {
                    error_code ignored;
                    self->socket().close(ignored);
                }
            });
        }
        error_code ignored;
        socket().close(ignored);
        auto connecting =
            socket().async_connect(endpoint, asio::redirect_error(asio::use_awaitable, error));
        co_await std::move(connecting);
        ++attempt_;
        timer_.cancel();
        requireNotDropped();
        if (!error) {
            socket().set_option(tcp::no_delay(true), ignored);
            using AcknowledgementLimit =
                asio::detail::socket_option::integer<IPPROTO_TCP, TCP_USER_TIMEOUT>;
            socket().set_option(
                AcknowledgementLimit(static_cast<int>(acknowledgementLimitMilliseconds)), ignored);
            co_return;
        }
        if (error == asio::error::operation_aborted) {
            error = asio::error::timed_out;
        }
    }
    throw WebSocketError("Couldn't connect to " + host + ": " + error.message());
}

Awaitable<void> BeastTransport::tunnel(ProxyServer proxy) {
    http::request<http::empty_body> request;
    request.method(http::verb::connect);
    request.target(address_.hostAndPort());
    request.set(http::field::host, address_.hostAndPort());
    if (!proxy.credentials.empty()) {
        request.set(http::field::proxy_authorization,
                    "Basic " + base64(std::as_bytes(std::span(proxy.credentials))));
    }
    error_code error;
    auto writing =
        http::async_write(socket(), request, asio::redirect_error(asio::use_awaitable, error));
    co_await std::move(writing);

    boost::beast::flat_buffer buffer;
    http::response_parser<http::empty_body> answer;
    answer.skip(true);
    if (!error) {
        auto reading = http::async_read_header(socket(), buffer, answer,
                                               asio::redirect_error(asio::use_awaitable, error));
        co_await std::move(reading);
    }
    requireNotDropped();
    if (error) {
        throw WebSocketError("The proxy " + proxy.host + " didn't answer: " + error.message());
    }
    const auto status = answer.get().result_int();
    if (status < 200 || status > 299) {
        throw WebSocketError("The proxy " + proxy.host + " refused the connection (HTTP "
                             + std::to_string(status) + ")");
    }
    if (buffer.size() > 0) {
        throw WebSocketError("The proxy " + proxy.host + " answered out of turn");
    }
}

} // namespace orlune
