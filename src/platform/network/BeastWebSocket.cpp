#include "platform/network/BeastWebSocket.h"

#include "platform/network/BeastConnection.h"

#include <utility>

namespace orlune {

namespace {

/// The caller's handle. Destroying it closes the connection, which takes its own time to do so.
class BeastWebSocketTask final : public WebSocketTask {
  public:
    explicit BeastWebSocketTask(std::shared_ptr<BeastConnection> connection)
        : connection_(std::move(connection)) {}
    ~BeastWebSocketTask() override { connection_->cancel(WebSocketCloseCode::goingAway); }
    BeastWebSocketTask(const BeastWebSocketTask&) = delete;
    BeastWebSocketTask& operator=(const BeastWebSocketTask&) = delete;

    void resume() override { connection_->resume(); }
    Awaitable<void> send(WebSocketMessage message) override {
        return connection_->send(std::move(message));
    }
    Awaitable<WebSocketMessage> receive() override { return connection_->receive(); }
    void cancel(WebSocketCloseCode code) override { connection_->cancel(code); }

  private:
    const std::shared_ptr<BeastConnection> connection_;
};

} // namespace

BeastWebSocketSession::BeastWebSocketSession(Executor executor, ProxySettings proxies)
    : executor_(std::move(executor)), proxies_(std::move(proxies)),
      openConnections_(std::make_shared<OpenConnections>()) {}

std::shared_ptr<WebSocketTask> BeastWebSocketSession::webSocketTask(WebSocketRequest request) {
    std::call_once(trustMade_, [this] { trust_ = makeTrust(); });
    auto connection = std::make_shared<BeastConnection>(executor_, trust_, proxies_,
                                                        std::move(request), openConnections_);
    openConnections_->add(connection);
    return std::make_shared<BeastWebSocketTask>(std::move(connection));
}

bool BeastWebSocketSession::closeAll(std::chrono::milliseconds limit) {
    return openConnections_->close(limit);
}

} // namespace orlune
