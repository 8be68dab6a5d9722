// WebSocket connections in memory: a session that hands out tasks, with the test as their peer. The
// test owns the session, which keeps the tasks. Waiting operations are resumed in a later turn of
// their own executor. Safe from any thread, except the events, which the facilities share.
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

    /// A message from the peer. Messages are queued in order until they are received.
    void deliver(WebSocketMessage message);
    void deliverText(std::string text);
    /// The connection breaks for the receiver, after the queued messages; sending still works.
    void failReceiving(std::string text);
    /// From now on sending fails, including messages that are held.
    void failSending(std::string text);
    /// The connection breaks at the n-th operation from now, a send or a receive, counted from 1.
    void failAtOperation(int number);
    /// From now on `send` waits until it is released, as with a slow connection.
    void holdSending();
    void releaseSending();

    /// Unwinds all waiting operations, which may own this task.
    void release();

    const WebSocketRequest& request() const { return request_; }
    /// The messages that `send` accepted, in order, including those that are held.
    std::vector<WebSocketMessage> sent() const;
    /// The codes of all calls of `cancel`; only the first one takes effect.
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

    /// All tasks, in the order in which they were made.
    std::vector<std::shared_ptr<MemoryWebSocketTask>> tasks() const;
    /// The newest task; null when there is none.
    std::shared_ptr<MemoryWebSocketTask> task() const;
    const std::vector<std::string>& events() const { return *events_; }

  private:
    const MemoryEvents events_;
    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<MemoryWebSocketTask>> tasks_;
};

} // namespace orlune
