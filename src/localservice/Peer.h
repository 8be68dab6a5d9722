#pragma once

// One client: its connection and its observation. Shared by the coroutines that read from it and
// write to it, all on the I/O thread. When the connection is gone, reads return nothing and writes
// return false; nothing throws.

#include "localservice/Handshake.h"
#include "localservice/ServiceContext.h"
#include "localservice/Transport.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/stream.hpp>

namespace orlune::localservice {

class Peer : public std::enable_shared_from_this<Peer> {
  public:
    struct Incoming {
        bool isText = false;
        std::string payload;
    };

    Peer(ServiceContext& context, boost::asio::ip::tcp::socket socket);
    ~Peer();

    /// Performs the TLS handshake, if the service has a certificate.
    boost::asio::awaitable<bool> encrypt();
    /// The request that should open a stream; a malformed one is answered with 400.
    boost::asio::awaitable<std::optional<HandshakeRequest>> readRequest();
    boost::asio::awaitable<void> refuse(HandshakeRefusal response);
    /// Reads and discards data until the client ends the connection.
    boost::asio::awaitable<void> waitUntilGone();
    boost::asio::awaitable<bool> accept(const HandshakeRequest& request);

    boost::asio::awaitable<std::optional<Incoming>> read();
    boost::asio::awaitable<bool> send(const std::string& text);
    /// Writes bytes outside the protocol. No other write may be in progress.
    boost::asio::awaitable<bool> writeRaw(std::string_view bytes);
    /// The closing handshake, with its own time limit.
    boost::asio::awaitable<void> close(std::uint16_t code, std::string_view reason);
    /// Ends the connection without a closing handshake, by an end of stream or a reset.
    void drop(bool reset);

    ServiceContext& context() { return context_; }
    Transport& transport() { return transport_; }
    const std::string& requestID() const { return requestID_; }
    void record(const ObservationLog::Change& change);
    void log(const std::string& text);
    /// Cuts the connection after `limit`, unless `endLimit` is called first.
    void beginLimit(std::chrono::milliseconds limit);
    void endLimit() { limit_.cancel(); }

  private:
    void remember(Observation::Kind kind, std::string_view payload);
    void rememberClose();

    ServiceContext& context_;
    Transport transport_;
    boost::beast::websocket::stream<Transport&> stream_;
    boost::asio::steady_timer limit_;
    boost::beast::flat_buffer buffer_;
    std::string requestID_;
    std::string name_; // for the log
    std::size_t number_ = 0;
    std::optional<std::uint16_t> closeCode_; ///< of the client's close
    std::string end_ = "cut off";
};

} // namespace orlune::localservice
