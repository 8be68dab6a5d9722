// The life of one WebSocket connection: connecting within a time limit, the queue of outgoing
// messages, the queue of incoming messages, and the end. Its own coroutines keep it alive until the
// TCP connection is gone. Public operations may be called from any thread and take effect on the
// connection's strand, in the order of the calls.
#pragma once

#include "platform/WebSocket.h"
#include "platform/concurrency/Continuation.h"
#include "platform/network/BeastTransport.h"
#include "platform/network/OpenConnections.h"

#include <boost/asio/steady_timer.hpp>

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace orlune {

class BeastConnection : public std::enable_shared_from_this<BeastConnection> {
  public:
    BeastConnection(const Executor& executor, std::shared_ptr<boost::asio::ssl::context> trust,
                    ProxySettings proxies, WebSocketRequest request,
                    std::shared_ptr<OpenConnections> openConnections);
    ~BeastConnection();
    BeastConnection(const BeastConnection&) = delete;
    BeastConnection& operator=(const BeastConnection&) = delete;

    void resume();
    /// When the wait is cancelled before the message's turn, the message is not sent.
    Awaitable<void> send(WebSocketMessage message);
    /// When the wait is cancelled just as a message arrives, that message may be lost.
    Awaitable<WebSocketMessage> receive();
    void cancel(WebSocketCloseCode code);

  private:
    enum class State { idle, connecting, open, ended };

    struct Outgoing {
        WebSocketMessage message;
        Continuation<std::monostate> written;
    };

    void start();
    Awaitable<void> connect();
    Awaitable<void> readAll();
    Awaitable<void> writeQueued();
    Awaitable<void> close(WebSocketCloseCode code);

    void enqueue(WebSocketMessage message, Continuation<std::monostate> written);
    void take(Continuation<WebSocketMessage> receiver);
    void startWriting();
    /// The only way into `ended`: all waiting and later operations fail.
    void end(const std::string& text);
    void stop(WebSocketCloseCode code);
    void dropAfter(std::chrono::steady_clock::duration limit, bool whileConnecting);
    void wipeRequest();
    /// Unwinds waiting operations when the executor ends before the connection does. A waiting
    /// coroutine may own this connection, and each would keep the other alive for ever.
    void release();

    template <typename Work>
    void spawn(Work work);

    const Executor strand_;
    const std::shared_ptr<boost::asio::ssl::context> trust_;
    const ProxySettings proxies_;
    const std::shared_ptr<OpenConnections> openConnections_;
    WebSocketRequest request_;

    // Only used on the strand.
    State state_ = State::idle;
    std::string failure_;
    std::shared_ptr<BeastTransport> transport_;
    boost::asio::steady_timer limit_;
    std::deque<Outgoing> outgoing_;
    std::optional<Continuation<std::monostate>> beingWritten_;
    std::deque<WebSocketMessage> incoming_;
    std::size_t incomingBytes_ = 0;
    std::optional<Continuation<WebSocketMessage>> receiver_;
    boost::asio::steady_timer room_; ///< cancelled when `incoming_` may have room again
};

} // namespace orlune
