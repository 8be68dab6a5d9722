// The two kinds of transport: Beast's WebSocket over a TCP socket, plain or under TLS.

#include "platform/network/BeastTransport.h"
#include "platform/network/PlainLine.h"
#include "platform/network/RefusalText.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/ssl/error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <boost/beast/websocket/ssl.hpp>
#include <boost/beast/websocket/stream.hpp>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <type_traits>
#include <utility>

namespace orlune {

namespace asio = boost::asio;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;

namespace {

constexpr std::size_t messageLimit = std::size_t{16} * 1024 * 1024;
/// A read buffer that a large message has grown beyond this size is not kept.
constexpr std::size_t bufferKept = std::size_t{64} * 1024;

using PlainStream = websocket::stream<BeastTransport::Socket, /*deflateSupported=*/false>;
using SecureStream = websocket::stream<boost::beast::ssl_stream<BeastTransport::Socket>,
                                       /*deflateSupported=*/false>;

std::string closeText(const websocket::close_reason& reason) {
    std::string text = "The connection was closed by the service";
    if (reason.code != websocket::close_code::none) {
        text += " (" + std::to_string(reason.code);
        if (!reason.reason.empty()) {
            text += ": " + plainLine({reason.reason.data(), reason.reason.size()});
        }
        text += ")";
    }
    return text;
}

std::string lossText(const error_code& error) {
    if (error == websocket::error::message_too_big) {
        return "The service sent a message that is too large";
    }
    if (error == asio::error::eof || error == asio::ssl::error::stream_truncated) {
        return "The connection was lost";
    }
    return "The connection was lost: " + error.message();
}

template <typename Stream>
class StreamTransport final : public BeastTransport {
  public:
    template <typename... Arguments>
    StreamTransport(const Executor& strand, WebSocketAddress address, Arguments&&... arguments)
        : BeastTransport(strand, std::move(address)),
          stream_(strand, std::forward<Arguments>(arguments)...) {
        // The connection limits the time: Beast's own limits cover only the handshake, and an idle
        // connection is a pause in speaking.
        stream_.set_option(websocket::stream_base::timeout{websocket::stream_base::none(),
                                                           websocket::stream_base::none(), false});
        stream_.read_message_max(messageLimit);
        stream_.auto_fragment(false);
    }

    Awaitable<void> write(const WebSocketMessage& message) override {
        stream_.text(message.kind == WebSocketMessage::Kind::text);
        error_code error;
        const auto buffer = asio::buffer(message.bytes);
        auto writing =
            stream_.async_write(buffer, asio::redirect_error(asio::use_awaitable, error));
        co_await std::move(writing);
        throwIfLost(error);
    }

    Awaitable<WebSocketMessage> read() override {
        error_code error;
        auto reading =
            stream_.async_read(buffer_, asio::redirect_error(asio::use_awaitable, error));
        co_await std::move(reading);
        if (error == websocket::error::closed) {
            throw WebSocketError(closeText(stream_.reason()));
        }
        throwIfLost(error);
        WebSocketMessage message;
        message.kind =
            stream_.got_text() ? WebSocketMessage::Kind::text : WebSocketMessage::Kind::binary;
        message.bytes = boost::beast::buffers_to_string(buffer_.data());
        buffer_.clear();
        if (buffer_.capacity() > bufferKept) {
            buffer_.shrink_to_fit();
        }
        co_return message;
    }

    Awaitable<void> close(WebSocketCloseCode code) override {
        const websocket::close_reason reason(static_cast<websocket::close_code>(code));
        error_code ignored; // the connection ends either way
        auto closing =
            stream_.async_close(reason, asio::redirect_error(asio::use_awaitable, ignored));
        co_await std::move(closing);
    }

  protected:
    Socket& socket() override { return boost::beast::get_lowest_layer(stream_); }

    Awaitable<void> secure() override {
        if constexpr (std::is_same_v<Stream, SecureStream>) {
            nameThePeer();
            error_code error;
            auto shaking = stream_.next_layer().async_handshake(
                asio::ssl::stream_base::client, asio::redirect_error(asio::use_awaitable, error));
            co_await std::move(shaking);
            requireNotDropped();
            if (error) {
                throw WebSocketError("Couldn't establish a secure connection to " + address().host
                                     + ": " + handshakeFault(error));
            }
        }
        co_return;
    }

    Awaitable<void> upgrade(const WebSocketRequest& request) override {
        stream_.set_option(
            websocket::stream_base::decorator([&request](websocket::request_type& upgrade) {
                upgrade.set(http::field::user_agent, "Orlune/" ORLUNE_VERSION);
                for (const auto& header : request.headers) {
                    upgrade.set(header.name, header.value);
                }
            }));
        stream_.control_callback([this](websocket::frame_type kind, auto) {
            if (kind == websocket::frame_type::close && onPeerClose) {
                onPeerClose(closeText(stream_.reason()));
            }
        });
        websocket::response_type answer;
        const std::string host = address().hostHeader();
        error_code error;
        auto upgrading = stream_.async_handshake(answer, host, address().target,
                                                 asio::redirect_error(asio::use_awaitable, error));
        co_await std::move(upgrading);
        stream_.set_option(websocket::stream_base::decorator([](websocket::request_type&) {}));
        requireNotDropped();
        if (error == websocket::error::upgrade_declined) {
            const auto errorHeader = answer[request.refusalReason.header];
            throw WebSocketError(refusalText(
                answer.result_int(),
                std::string_view(answer.reason().data(), answer.reason().size()),
                std::string_view(errorHeader.data(), errorHeader.size()), answer.body(), request));
        }
        if (error == http::error::end_of_stream) {
            error = asio::error::eof;
        }
        throwIfLost(error);
    }

  private:
    void throwIfLost(const error_code& error) const {
        if (error) {
            requireNotDropped();
            throw WebSocketError(lossText(error));
        }
    }

    /// Sets the name that the certificate must match, and the name requested from the peer.
    void nameThePeer() {
        SSL* const session = stream_.next_layer().native_handle();
        std::string host = address().host;
        if (address().hasAddressForHost()) {
            X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(session), host.c_str());
            return;
        }
        if (host.ends_with('.')) {
            host.pop_back(); // certificates name hosts without the root's dot
        }
        SSL_set_hostflags(session, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        if (SSL_set1_host(session, host.c_str()) != 1
            || SSL_set_tlsext_host_name(session, host.c_str()) != 1) {
            throw WebSocketError("The address of the speech service names no valid host");
        }
    }

    std::string handshakeFault(const error_code& error) {
        const long verdict = SSL_get_verify_result(stream_.next_layer().native_handle());
        if (verdict != X509_V_OK) {
            return std::string("certificate verify failed: ")
                   + X509_verify_cert_error_string(verdict);
        }
        if (error == asio::error::eof || error == asio::ssl::error::stream_truncated) {
            return "the connection was lost";
        }
        if (error.category() == asio::error::get_ssl_category()) {
            const char* reason = ERR_reason_error_string(static_cast<unsigned long>(error.value()));
            if (reason) {
                return reason;
            }
        }
        return error.message();
    }

    Stream stream_;
    boost::beast::flat_buffer buffer_;
};

} // namespace

std::shared_ptr<BeastTransport>
BeastTransport::make(const Executor& strand, asio::ssl::context& trust, WebSocketAddress address) {
    if (address.isSecure) {
        return std::make_shared<StreamTransport<SecureStream>>(strand, std::move(address), trust);
    }
    return std::make_shared<StreamTransport<PlainStream>>(strand, std::move(address));
}

std::shared_ptr<asio::ssl::context> makeTrust() {
    auto trust = std::make_shared<asio::ssl::context>(asio::ssl::context::tls_client);
    SSL_CTX_set_min_proto_version(trust->native_handle(), TLS1_2_VERSION);
    trust->set_verify_mode(asio::ssl::verify_peer);
    error_code ignored; // without a trust store every certificate is refused
    trust->set_default_verify_paths(ignored);
    return trust;
}

} // namespace orlune
