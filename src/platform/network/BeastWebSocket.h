// WebSocket connections over the network: wss:// to anywhere, with the certificate's chain and host
// name always verified, and ws:// to this computer. All work runs on the session's executor, with
// one strand per connection; the executor must run, and outlive every task. A task that is dropped
// is cancelled as if with `goingAway`. Failures are the `WebSocketError` of `send` and `receive`.
#pragma once

#include "platform/WebSocket.h"
#include "platform/network/OpenConnections.h"
#include "platform/network/ProxySettings.h"

#include <boost/asio/ssl/context.hpp>

#include <memory>
#include <mutex>

namespace orlune {

class BeastWebSocketSession final : public WebSocketSession {
  public:
    /// The system's trust store (SSL_CERT_FILE and SSL_CERT_DIR apply) is read once, by the first
    /// connection: initialising TLS takes 20 ms and 3 MB, which an idle program in the tray saves.
    BeastWebSocketSession(Executor executor, ProxySettings proxies);

    std::shared_ptr<WebSocketTask> webSocketTask(WebSocketRequest request) override;

    /// Closes every open connection with `goingAway` and waits until the last one is gone, because
    /// a program that exits earlier breaks off closes that are under way. False when some are left
    /// after `limit`. Blocks; must not be called on the session's executor.
    bool closeAll(std::chrono::milliseconds limit);

  private:
    const Executor executor_;
    const ProxySettings proxies_;
    const std::shared_ptr<OpenConnections> openConnections_;
    std::once_flag trustMade_;
    std::shared_ptr<boost::asio::ssl::context> trust_; ///< made by the first connection
};

} // namespace orlune
