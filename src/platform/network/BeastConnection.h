// The life of one WebSocket connection: connecting within its time, the queue of what is to be
// sent, the queue of what has arrived, and the end. Kept alive by its own coroutines until the TCP
// connection is gone; public operations may be called from any thread and take effect, in the order
// of the calls, on the connection's strand.
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
    /// When its wait is cancelled before its turn has come, the message is not sent.
    Awaitable<void> send(WebSocketMessage message);
    /// When its wait is cancelled just as a message arrives, that message may be lost with it.
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
    /// The one way into `ended`: everything that waits fails, now and from now on.
    void end(const std::string& text);
    void stop(WebSocketCloseCode code);
    void dropAfter(std::chrono::steady_clock::duration limit, bool whileConnecting);
    void wipeRequest();
    /// Unwinds what still waits when the executor ends before the connection does. A waiting
    /// coroutine may own this connection, which would keep both for ever.
    void release();

    template <typename Work>
    void spawn(Work work);

    const Executor strand_;
    const std::shared_ptr<boost::asio::ssl::context> trust_;
    const ProxySettings proxies_;
    const std::shared_ptr<OpenConnections> openConnections_;
    WebSocketRequest request_;

    // On the strand alone.
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
