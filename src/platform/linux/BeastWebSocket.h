// WebSocket connections over the network: wss:// to anywhere, with the certificate's chain and host
// name always verified, and ws:// to this computer. All work happens on the session's executor,
// each connection on a strand of its own; it must run, and outlive every task. A task that is
// dropped is cancelled as if with `goingAway`. Failures are the `WebSocketError` of `send` and
// `receive`.
#pragma once

#include "platform/WebSocket.h"
#include "platform/linux/ProxySettings.h"

#include <boost/asio/ssl/context.hpp>

#include <memory>

namespace orlune {

class BeastWebSocketSession final : public WebSocketSession {
  public:
    /// Reads the system's trust store (SSL_CERT_FILE and SSL_CERT_DIR apply) once, here.
    BeastWebSocketSession(Executor executor, ProxySettings proxies);

    std::shared_ptr<WebSocketTask> webSocketTask(WebSocketRequest request) override;

  private:
    const Executor executor_;
    const ProxySettings proxies_;
    const std::shared_ptr<boost::asio::ssl::context> trust_;
};

} // namespace orlune
