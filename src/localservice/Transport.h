#pragma once

// The bytes of one accepted connection, plain or through TLS, as one stream type for Beast. Owned
// by its connection and only used on the service's I/O thread. Operations fail with the error codes
// of the socket; closing twice is harmless.

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/beast/websocket/teardown.hpp>

#include <optional>

namespace orlune::localservice {

class Transport {
  public:
    using Socket = boost::asio::ip::tcp::socket;
    using executor_type = Socket::executor_type;

    /// Without a context the connection is plain.
    Transport(Socket socket, boost::asio::ssl::context* context) : socket_(std::move(socket)) {
        if (context != nullptr) {
            tls_.emplace(socket_, *context);
        }
    }
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    executor_type get_executor() { return socket_.get_executor(); }
    Socket& socket() { return socket_; }
    bool isEncrypted() const { return tls_.has_value(); }

    template <class Token>
    auto async_handshake(Token&& token) {
        return tls_->async_handshake(boost::asio::ssl::stream_base::server,
                                     std::forward<Token>(token));
    }

    template <class Buffers, class Token>
    auto async_read_some(const Buffers& buffers, Token&& token) {
        const auto initiate = [this](auto handler, const Buffers& target) {
            if (tls_) {
                tls_->async_read_some(target, std::move(handler));
            } else {
                socket_.async_read_some(target, std::move(handler));
            }
        };
        return boost::asio::async_initiate<Token, void(boost::system::error_code, std::size_t)>(
            initiate, token, buffers);
    }

    template <class Buffers, class Token>
    auto async_write_some(const Buffers& buffers, Token&& token) {
        const auto initiate = [this](auto handler, const Buffers& source) {
            if (tls_) {
                tls_->async_write_some(source, std::move(handler));
            } else {
                socket_.async_write_some(source, std::move(handler));
            }
        };
        return boost::asio::async_initiate<Token, void(boost::system::error_code, std::size_t)>(
            initiate, token, buffers);
    }

    void close() {
        boost::system::error_code ignored;
        socket_.close(ignored);
    }

    /// Ends the connection so that the client gets a reset (RST) instead of an end of stream.
    void reset() {
        boost::system::error_code ignored;
        const boost::asio::socket_base::linger atOnce(/*enable=*/true, /*timeout=*/0);
        socket_.set_option(atOnce, ignored);
        socket_.close(ignored);
    }

    /// Called by Beast when the closing handshake is complete.
    template <class Handler>
    friend void async_teardown(boost::beast::role_type role, Transport& transport,
                               Handler&& handler) {
        if (transport.tls_) {
            transport.tls_->async_shutdown(std::forward<Handler>(handler));
        } else {
            boost::beast::websocket::async_teardown(role, transport.socket_,
                                                    std::forward<Handler>(handler));
        }
    }

    /// Called by Beast when one of its own time limits expires.
    friend void beast_close_socket(Transport& transport) { transport.close(); }

  private:
    Socket socket_;
    std::optional<boost::asio::ssl::stream<Socket&>> tls_;
};

} // namespace orlune::localservice
