// A WebSocket client connection. Operations may be called from any thread; coroutines resume on
// their own executor. A refused or failed connection is reported as the error of `send` and
// `receive`, with a readable text; no error ever contains a request header.
#pragma once

#include "platform/concurrency/Awaitable.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace orlune {

struct WebSocketMessage {
    enum class Kind { text, binary };

    Kind kind = Kind::binary;
    std::string bytes;
};

struct WebSocketRequest {
    struct Header {
        std::string name;
        std::string value;
    };

    /// Where the service says why it refuses a handshake. Empty names are looked for nowhere.
    struct RefusalReason {
        std::string header; ///< a header of the answer
        std::string member; ///< a string in the answer's body, which is a JSON object
    };

    std::string url; ///< wss://, or ws:// to a loopback address
    std::vector<Header> headers;
    std::chrono::seconds timeout{60}; ///< for resolving, connecting, TLS and the handshake together
    RefusalReason refusalReason{};
};

enum class WebSocketCloseCode : std::uint16_t { normalClosure = 1000, goingAway = 1001 };

/// Any failure of a connection: name resolution, TLS, a refused handshake (with its HTTP status and
/// the service's own reason), a close by the peer, a lost connection.
class WebSocketError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class WebSocketTask {
  public:
    virtual ~WebSocketTask() = default;

    /// Starts connecting and returns at once.
    virtual void resume() = 0;

    /// Waits for the handshake and for all messages sent before, then until the message has been
    /// handed to the connection. Throws `WebSocketError`.
    virtual Awaitable<void> send(WebSocketMessage message) = 0;

    /// The next message, in order of arrival. One caller at a time. Throws `WebSocketError`.
    virtual Awaitable<WebSocketMessage> receive() = 0;

    /// Closes with a code and without a reason, once; returns at once. Waiting and later operations
    /// fail. A peer that does not answer the close is dropped after a time limit.
    virtual void cancel(WebSocketCloseCode code) = 0;
};

class WebSocketSession {
  public:
    virtual ~WebSocketSession() = default;

    /// A connection that has not been started. An invalid request (a malformed URL, plain ws:// to
    /// another machine) fails like a connection that could not be made.
    virtual std::shared_ptr<WebSocketTask> webSocketTask(WebSocketRequest request) = 0;
};

} // namespace orlune
