// WebSocket connections in memory: a session that hands out tasks whose peer is played by hand.
// Whoever plays it owns the session; the tasks it made are kept in it. What waits is resumed in a
// later turn of its own executor. Safe from any thread, but for the events, which are everybody's.
#pragma once

#include "platform/WebSocket.h"
#include "platform/concurrency/Continuation.h"
#include "platform/memory/MemoryEvents.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace orlune {

class MemoryWebSocketTask final : public WebSocketTask,
                                  public std::enable_shared_from_this<MemoryWebSocketTask> {
  public:
    MemoryWebSocketTask(WebSocketRequest request, MemoryEvents events, std::string name);

    void resume() override;
    Awaitable<void> send(WebSocketMessage message) override;
    Awaitable<WebSocketMessage> receive() override;
    void cancel(WebSocketCloseCode code) override;

    /// What the peer sends. Waits in order until it is received.
    void deliver(WebSocketMessage message);
    void deliverText(std::string text);
    /// The connection breaks for the receiver, behind what was delivered; sending stays as it is.
    void failReceiving(std::string text);
    /// From now on sending fails, also what is being held.
    void failSending(std::string text);
    /// The connection breaks with the n-th operation from now, a send or a receive, counted from 1.
    void failAtOperation(int number);
    /// From now on `send` waits, as behind a slow connection, until it is released.
    void holdSending();
    void releaseSending();

    /// Unwinds whatever still waits here; what waits may own this task.
    void release();

    const WebSocketRequest& request() const { return request_; }
    /// What `send` was given while it worked, in order, held messages included.
    std::vector<WebSocketMessage> sent() const;
    /// Every code `cancel` was called with; only the first one means anything.
    std::vector<WebSocketCloseCode> closeCodes() const;
    bool isResumed() const;

  private:
    void record(const std::string& event);
    void acceptSend(WebSocketMessage message, const Continuation<std::monostate>& sent);
    void acceptReceive(const Continuation<WebSocketMessage>& receiver);
    void failHeld(const std::string& text);

    const WebSocketRequest request_;
    const MemoryEvents events_;
    const std::string name_;

    mutable std::mutex mutex_;
    bool resumed_ = false;
    bool holding_ = false;
    bool breaksNow();

    int operationsUntilFailure_ = 0; ///< 0: none fails
    std::optional<std::string> sendError_;
    std::optional<std::string> receiveError_;
    std::vector<WebSocketMessage> sent_;
    std::vector<Continuation<std::monostate>> held_;
    std::deque<WebSocketMessage> incoming_;
    std::optional<Continuation<WebSocketMessage>> receiver_;
    std::vector<WebSocketCloseCode> closeCodes_;
};

class MemoryWebSocketSession final : public WebSocketSession {
  public:
    /// Events read "socket 1 resume", "socket 1 send binary 2" (the number of bytes), "socket 1
    /// send text …" and "socket 1 close 1000".
    explicit MemoryWebSocketSession(MemoryEvents events = makeMemoryEvents())
        : events_(std::move(events)) {}
    ~MemoryWebSocketSession() override;
    MemoryWebSocketSession(const MemoryWebSocketSession&) = delete;
    MemoryWebSocketSession& operator=(const MemoryWebSocketSession&) = delete;

    std::shared_ptr<WebSocketTask> webSocketTask(WebSocketRequest request) override;

    /// Every task that was made, in order.
    std::vector<std::shared_ptr<MemoryWebSocketTask>> tasks() const;
    /// The newest; null when none was made.
    std::shared_ptr<MemoryWebSocketTask> task() const;
    const std::vector<std::string>& events() const { return *events_; }

  private:
    const MemoryEvents events_;
    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<MemoryWebSocketTask>> tasks_;
};

} // namespace orlune
