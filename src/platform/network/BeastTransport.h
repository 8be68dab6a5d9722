// One WebSocket over one TCP connection, plain or TLS, without queues: at most one read, one write
// and one close at a time. Owned by its connection; everything runs on the given strand. Failures
// are `WebSocketError` with a readable text.
#pragma once

#include "platform/WebSocket.h"
#include "platform/network/ProxySettings.h"
#include "platform/network/WebSocketAddress.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orlune {

class BeastTransport : public std::enable_shared_from_this<BeastTransport> {
  public:
    using Socket = boost::asio::ip::tcp::socket;

    static std::shared_ptr<BeastTransport>
    make(const Executor& strand, boost::asio::ssl::context& trust, WebSocketAddress address);
    virtual ~BeastTransport() = default;

    /// Resolves, connects (through the proxy, where there is one), and performs the TLS handshake,
    /// but sends nothing to the service itself. Has no time limit; `drop()` ends it.
    Awaitable<void> reach(const ProxySettings& proxies);
    /// Reaches the service and performs the opening handshake. `drop()` ends it as well.
    Awaitable<void> connect(const ProxySettings& proxies, const WebSocketRequest& request);
    /// Writes one whole message; returns when the system has taken its last byte.
    virtual Awaitable<void> write(const WebSocketMessage& message) = 0;
    virtual Awaitable<WebSocketMessage> read() = 0;
    /// Performs the closing handshake, after a write that is under way, and ends the TCP
    /// connection. Waits for the peer without a time limit; `drop()` ends it.
    virtual Awaitable<void> close(WebSocketCloseCode code) = 0;

    /// Called once when the peer's close frame is read, with its reason as a readable text.
    /// `read()` itself ends later, when the peer has also closed the TCP connection.
    std::function<void(const std::string& text)> onPeerClose;

    /// Ends the TCP connection at once. Operations under way fail in a later turn.
    void drop();
    /// The same for a peer that does not cooperate: data that the system has not delivered is
    /// discarded with the connection, instead of being kept for a peer that does not read.
    void reset();

  protected:
    BeastTransport(const Executor& strand, WebSocketAddress address);

    virtual Socket& socket() = 0;
    virtual Awaitable<void> secure() = 0;
    virtual Awaitable<void> upgrade(const WebSocketRequest& request) = 0;

    const WebSocketAddress& address() const { return address_; }
    /// Throws when the connection was dropped meanwhile.
    void requireNotDropped() const;

  private:
    using Endpoints = boost::asio::ip::tcp::resolver::results_type;

    Awaitable<Endpoints> resolve(std::string host, std::uint16_t port);
    Awaitable<void> connectToAny(std::string host, Endpoints endpoints);
    Awaitable<void> tunnel(ProxyServer proxy);

    const Executor strand_;
    const WebSocketAddress address_;
    boost::asio::ip::tcp::resolver resolver_;
    boost::asio::steady_timer timer_; ///< limits an attempt, or signals the end of a lookup
    unsigned attempt_ = 0;
    bool dropped_ = false;
};

/// The TLS settings that all connections share: the system's trust store, TLS 1.2 or later, the
/// peer's certificate always verified.
std::shared_ptr<boost::asio::ssl::context> makeTrust();

} // namespace orlune
