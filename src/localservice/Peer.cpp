#include "localservice/Peer.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/uuid/uuid_generators.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <array>

namespace orlune::localservice {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;
using boost::system::error_code;

// Longer than any real client takes; limits the life of a connection that sends nothing.
constexpr std::chrono::seconds handshakeLimit{30};
constexpr std::chrono::seconds closeLimit{5};
constexpr std::size_t longestMessage = std::size_t{16} << 20U;

/// True for an invalid message, false for a client that went away.
bool isMalformed(const error_code& failure) {
    using beast::http::error;
    return failure.category() == make_error_code(error::bad_method).category()
           && failure != error::end_of_stream && failure != error::partial_message;
}

} // namespace

Peer::Peer(ServiceContext& context, asio::ip::tcp::socket socket)
    : context_(context),
      transport_(std::move(socket), context.encryption ? &*context.encryption : nullptr),
      stream_(transport_), limit_(transport_.get_executor()),
      requestID_(boost::uuids::to_string(boost::uuids::random_generator()())),
      name_(requestID_.substr(0, 8)) {
    error_code ignored;
    transport_.socket().set_option(asio::ip::tcp::no_delay(true), ignored);
    if (context_.options.observe) {
        number_ = context_.observations.add();
    }
    // Beast's own limits would interfere with the scripted faults.
    websocket::stream_base::timeout none{websocket::stream_base::none(),
                                         websocket::stream_base::none(), false};
    stream_.set_option(none);
    stream_.read_message_max(longestMessage);
    stream_.control_callback([this](websocket::frame_type kind, beast::string_view payload) {
        if (kind == websocket::frame_type::close) {
            rememberClose();
        } else {
            remember(kind == websocket::frame_type::ping ? Observation::Kind::ping
                                                         : Observation::Kind::pong,
                     payload);
        }
    });
    log("connected");
}

Peer::~Peer() {
    record([this](Observation& observation) {
        observation.ended = true;
        observation.end = end_;
    });
    log(end_);
}

asio::awaitable<bool> Peer::encrypt() {
    beginLimit(handshakeLimit);
    if (!transport_.isEncrypted()) {
        co_return true;
    }
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await transport_.async_handshake(token);
    if (error) {
        end_ = "TLS handshake failed: " + error.message();
    }
    co_return !error;
}

asio::awaitable<std::optional<HandshakeRequest>> Peer::readRequest() {
    beast::http::request_parser<beast::http::empty_body> parser;
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await beast::http::async_read(transport_, buffer_, parser, token);
    buffer_.clear();
    if (isMalformed(error)) {
        const Refusal refusal{
            .status = 400, .code = "Bad Request", .message = "The request is not HTTP."};
        auto response = refusalResponse(refusal, requestID_);
        co_await refuse(std::move(response));
        co_return std::nullopt;
    }
    if (error) {
        end_ = "gone before the request";
        co_return std::nullopt;
    }
    auto request = parser.release();
    record([&](Observation& observation) {
        observation.method = request.method_string();
        observation.target = request.target();
        for (const auto& field : request) {
            if (field.name() != beast::http::field::authorization) {
                observation.headers.emplace_back(field.name_string(), field.value());
            }
        }
    });
    co_return request;
}

asio::awaitable<void> Peer::refuse(HandshakeRefusal response) {
    const auto status = response.result_int();
    end_ = "refused with " + std::to_string(status);
    record([&](Observation& observation) { observation.status = status; });
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await beast::http::async_write(transport_, response, token);
    // The client may still be writing; closing at once could discard the answer.
    drop(/*reset=*/false);
    co_await waitUntilGone();
}

asio::awaitable<void> Peer::waitUntilGone() {
    std::array<char, 4096> ignoredBytes{};
    const auto buffer = asio::buffer(ignoredBytes);
    error_code error;
    while (!error) {
        auto token = asio::redirect_error(asio::use_awaitable, error);
        co_await transport_.socket().async_read_some(buffer, token);
    }
}

asio::awaitable<bool> Peer::accept(const HandshakeRequest& request) {
    const auto decorate = [id = requestID_](websocket::response_type& response) {
        response.set("dg-request-id", id);
    };
    stream_.set_option(websocket::stream_base::decorator(decorate));
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await stream_.async_accept(request, token);
    endLimit();
    if (error) {
        end_ = "upgrade failed: " + error.message();
        co_return false;
    }
    record([](Observation& observation) { observation.status = 101; });
    log("stream " + requestID_);
    co_return true;
}

asio::awaitable<std::optional<Peer::Incoming>> Peer::read() {
    buffer_.clear();
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await stream_.async_read(buffer_, token);
    if (error) {
        if (!closeCode_) {
            end_ = error.message();
        }
        co_return std::nullopt;
    }
    Incoming incoming{.isText = stream_.got_text(),
                      .payload = beast::buffers_to_string(buffer_.cdata())};
    remember(incoming.isText ? Observation::Kind::text : Observation::Kind::binary,
             incoming.payload);
    co_return incoming;
}

asio::awaitable<bool> Peer::send(const std::string& text) {
    stream_.text(true);
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await stream_.async_write(asio::buffer(text), token);
    co_return !error;
}

asio::awaitable<bool> Peer::writeRaw(std::string_view bytes) {
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await asio::async_write(transport_, asio::buffer(bytes), token);
    co_return !error;
}

asio::awaitable<void> Peer::close(std::uint16_t code, std::string_view reason) {
    const websocket::close_reason closeReason(static_cast<websocket::close_code>(code), reason);
    beginLimit(closeLimit);
    error_code error;
    auto token = asio::redirect_error(asio::use_awaitable, error);
    co_await stream_.async_close(closeReason, token);
    if (!error) {
        rememberClose();
    }
    endLimit();
}

void Peer::drop(bool reset) {
    if (reset) {
        transport_.reset();
    } else {
        error_code ignored;
        transport_.socket().shutdown(asio::socket_base::shutdown_send, ignored);
    }
}

void Peer::record(const ObservationLog::Change& change) {
    if (context_.options.observe) {
        context_.observations.change(number_, change);
    }
}

void Peer::log(const std::string& text) {
    context_.log("connection " + name_ + ": " + text);
}

void Peer::beginLimit(std::chrono::milliseconds limit) {
    limit_.expires_after(limit);
    limit_.async_wait([weak = weak_from_this()](error_code cancelled) {
        if (const auto self = weak.lock(); self && !cancelled) {
            self->transport_.close();
        }
    });
}

void Peer::remember(Observation::Kind kind, std::string_view payload) {
    const bool isAudio = kind == Observation::Kind::binary;
    record([&](Observation& observation) {
        observation.received.push_back({.kind = kind,
                                        .size = payload.size(),
                                        .text = isAudio ? std::string() : std::string(payload)});
        if (isAudio) {
            observation.audioBytes += payload.size();
            if (context_.options.keepAudio) {
                const auto bytes = std::as_bytes(std::span(payload));
                observation.audio.insert(observation.audio.end(), bytes.begin(), bytes.end());
            }
        }
    });
}

void Peer::rememberClose() {
    if (closeCode_) {
        return;
    }
    const auto& reason = stream_.reason();
    closeCode_ = reason.code == 0 ? std::uint16_t{1005} : reason.code;
    end_ = "closed with " + std::to_string(*closeCode_);
    record([&](Observation& observation) {
        observation.closeCode = closeCode_;
        const std::string_view text(reason.reason.data(), reason.reason.size());
        observation.received.push_back(
            {.kind = Observation::Kind::close, .size = text.size(), .text = std::string(text)});
    });
}

} // namespace orlune::localservice
