// One WebSocket over one TCP connection, plain or TLS, without queues: at most one read, one write
// and one close at a time. Owned by its connection; everything runs on the strand given. Failures
// are `WebSocketError` with a text for a person.
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
    using Headers = std::vector<WebSocketRequest::Header>;
    using Socket = boost::asio::ip::tcp::socket;

    static std::shared_ptr<BeastTransport>
    make(const Executor& strand, boost::asio::ssl::context& trust, WebSocketAddress address);
    virtual ~BeastTransport() = default;

    /// Resolves, connects (through the proxy, where there is one), and speaks TLS; nothing is said
    /// to the service itself. Has no time limit of its own: `drop()` ends it.
    Awaitable<void> reach(const ProxySettings& proxies);
    /// Reaches the service and speaks the opening handshake. `drop()` ends it as well.
    Awaitable<void> connect(const ProxySettings& proxies, const Headers& headers);
    /// One message, whole; returns when the system has taken its last byte.
    virtual Awaitable<void> write(const WebSocketMessage& message) = 0;
    virtual Awaitable<WebSocketMessage> read() = 0;
    /// The closing handshake, behind a write that is under way, and the end of the TCP connection.
    /// Waits for the peer for as long as it takes: `drop()` ends it.
    virtual Awaitable<void> close(WebSocketCloseCode code) = 0;

    /// Called once when the peer's close frame is read; what it says comes as a text for a person.
    /// `read()` itself ends later, when the peer has closed the TCP connection as well.
    std::function<void(const std::string& text)> onPeerClose;

    /// Ends the TCP connection at once, whatever is under way; that fails in a later turn.
    void drop();
    /// The same towards a peer that no longer takes part: what the system has not delivered is
    /// thrown away with the connection, instead of being kept for a peer that does not read.
    void reset();

  protected:
    BeastTransport(const Executor& strand, WebSocketAddress address);

    virtual Socket& socket() = 0;
    virtual Awaitable<void> secure() = 0;
    virtual Awaitable<void> upgrade(const Headers& headers) = 0;

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
    boost::asio::steady_timer timer_; ///< limits an attempt, or is the end of a lookup
    unsigned attempt_ = 0;
    bool dropped_ = false;
};

/// The TLS settings every connection shares: the system's trust store, TLS 1.2 or later, the peer's
/// certificate always verified.
std::shared_ptr<boost::asio::ssl::context> makeTrust();

} // namespace orlune
