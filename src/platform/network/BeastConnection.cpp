#include "platform/network/BeastConnection.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <openssl/crypto.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <utility>

namespace orlune {

namespace asio = boost::asio;
using namespace std::chrono_literals;

namespace {

/// How long a peer may take to answer a close before the TCP connection is dropped.
constexpr auto closeLimit = 2s;
/// When this much waits for `receive`, reading pauses: the size of the largest message.
constexpr std::size_t incomingLimit = std::size_t{16} * 1024 * 1024;

std::exception_ptr makeError(const std::string& text) {
    return std::make_exception_ptr(WebSocketError(text));
}

Awaitable<void> withoutValue(Awaitable<std::monostate> operation) {
    co_await std::move(operation);
}

bool isHeaderName(std::string_view name) {
    constexpr std::string_view symbols = "!#$%&'*+-.^_`|~";
    return !name.empty() && std::all_of(name.begin(), name.end(), [&](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
               || (character >= '0' && character <= '9')
               || symbols.find(character) != std::string_view::npos;
    });
}

/// A line break in a value would start another header.
bool isHeaderValue(std::string_view value) {
    return std::all_of(value.begin(), value.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte == '\t' || (byte >= 0x20 && byte != 0x7F);
    });
}

void requireSendable(const WebSocketRequest& request) {
    for (const auto& header : request.headers) {
        if (!isHeaderName(header.name) || !isHeaderValue(header.value)) {
            throw WebSocketError("The request can't be sent: a header holds characters that aren't "
                                 "allowed there");
        }
    }
}

} // namespace

BeastConnection::BeastConnection(const Executor& executor,
                                 std::shared_ptr<asio::ssl::context> trust, ProxySettings proxies,
                                 WebSocketRequest request,
                                 std::shared_ptr<OpenConnections> openConnections)
    : strand_(asio::make_strand(executor)), trust_(std::move(trust)), proxies_(std::move(proxies)),
      openConnections_(std::move(openConnections)), request_(std::move(request)), limit_(strand_),
      room_(strand_) {}

BeastConnection::~BeastConnection() {
    wipeRequest();
}

void BeastConnection::wipeRequest() {
    for (auto& header : request_.headers) {
        OPENSSL_cleanse(header.value.data(), header.value.size());
    }
    request_.headers.clear();
}

void BeastConnection::release() {
    const auto receiver = std::exchange(receiver_, std::nullopt);
    const auto written = std::exchange(beingWritten_, std::nullopt);
    const auto outgoing = std::exchange(outgoing_, {});
}

template <typename Work>
void BeastConnection::spawn(Work work) {
    // The coroutines turn their errors into the connection's end. Any other error is a broken
    // assumption, such as exhausted memory.
    asio::co_spawn(
        strand_, std::move(work),
        [self = shared_from_this(), open = openConnections_->hold()](std::exception_ptr error) {
            if (error) {
                std::fputs("orlune: an error escaped a connection\n", stderr);
                self->end("The connection was lost");
                if (self->transport_) {
                    self->transport_->drop();
                }
            }
        });
}

void BeastConnection::resume() {
    asio::post(strand_, [self = shared_from_this()] { self->start(); });
}

void BeastConnection::cancel(WebSocketCloseCode code) {
    asio::post(strand_, [self = shared_from_this(), code] { self->stop(code); });
}

// Waiting `send` and `receive` operations hold no reference to the connection, since they may be
// unwound on another thread, after the connection's own executor has gone.

Awaitable<void> BeastConnection::send(WebSocketMessage message) {
    return withoutValue(withContinuation<std::monostate>(
        [self = shared_from_this(), message = std::move(message)](auto written) mutable {
            const auto& strand = self->strand_;
            asio::post(strand,
                       [self = std::move(self), message = std::move(message), written]() mutable {
                           self->enqueue(std::move(message), std::move(written));
                       });
        }));
}

Awaitable<WebSocketMessage> BeastConnection::receive() {
    return withContinuation<WebSocketMessage>([self = shared_from_this()](auto receiver) mutable {
        const auto& strand = self->strand_;
        asio::post(strand, [self = std::move(self), receiver] { self->take(receiver); });
    });
}

void BeastConnection::start() {
    if (state_ != State::idle) {
        return;
    }
    state_ = State::connecting;
    dropAfter(request_.timeout, /*whileConnecting=*/true);
    spawn([self = shared_from_this()] { return self->connect(); });
}

Awaitable<void> BeastConnection::connect() {
    struct Unwinding {
        BeastConnection& connection;
        ~Unwinding() { connection.release(); }
    };
    const Unwinding unwinding{*this};
    std::optional<std::string> failure;
    try {
        requireSendable(request_);
        transport_ = BeastTransport::make(strand_, *trust_, WebSocketAddress::parse(request_.url));
        transport_->onPeerClose = [weakSelf = weak_from_this()](const std::string& text) {
            if (const auto self = weakSelf.lock(); self && self->state_ == State::open) {
                self->end(text);
                self->dropAfter(closeLimit, /*whileConnecting=*/false);
            }
        };
        auto connecting = transport_->connect(proxies_, request_);
        co_await std::move(connecting);
    } catch (const WebSocketError& error) {
        failure = error.what();
    }
    wipeRequest();
    if (state_ == State::connecting && !failure) {
        state_ = State::open;
        limit_.cancel();
        startWriting();
        auto reading = readAll();
        co_await std::move(reading);
        co_return;
    }
    if (failure) {
        end(*failure);
    }
    limit_.cancel();
    if (transport_) {
        transport_->drop();
    }
}

Awaitable<void> BeastConnection::readAll() {
    std::optional<std::string> failure;
    while (state_ == State::open && !failure) {
        if (incomingBytes_ >= incomingLimit) {
            boost::system::error_code ended;
            room_.expires_at(asio::steady_timer::time_point::max());
            auto room = room_.async_wait(asio::redirect_error(asio::use_awaitable, ended));
            co_await std::move(room);
            continue;
        }
        WebSocketMessage message;
        try {
            auto reading = transport_->read();
            message = co_await std::move(reading);
        } catch (const WebSocketError& error) {
            failure = error.what();
            break;
        }
        if (state_ != State::open) {
            break;
        }
        if (receiver_ && !receiver_->isResumed()) {
            std::exchange(receiver_, std::nullopt)->resume(std::move(message));
        } else {
            incomingBytes_ += message.bytes.size();
            incoming_.push_back(std::move(message));
        }
    }
    if (failure) {
        end(*failure);
        limit_.cancel();
        transport_->drop();
    }
}

void BeastConnection::enqueue(WebSocketMessage message, Continuation<std::monostate> written) {
    if (state_ == State::ended) {
        written.fail(makeError(failure_));
        return;
    }
    outgoing_.push_back({std::move(message), std::move(written)});
    startWriting();
}

void BeastConnection::startWriting() {
    if (state_ == State::open && !beingWritten_ && !outgoing_.empty()) {
        beingWritten_ = outgoing_.front().written;
        spawn([self = shared_from_this()] { return self->writeQueued(); });
    }
}

Awaitable<void> BeastConnection::writeQueued() {
    while (state_ == State::open && !outgoing_.empty()) {
        const Outgoing next = std::move(outgoing_.front());
        outgoing_.pop_front();
        if (next.written.isResumed()) {
            continue; // its sender has gone
        }
        beingWritten_ = next.written;
        std::optional<std::string> failure;
        try {
            auto writing = transport_->write(next.message);
            co_await std::move(writing);
        } catch (const WebSocketError& error) {
            failure = error.what();
        }
        if (failure) {
            end(*failure);
            transport_->drop();
        } else {
            next.written.resume();
        }
    }
    beingWritten_.reset();
}

void BeastConnection::take(Continuation<WebSocketMessage> receiver) {
    if (receiver.isResumed()) {
        return;
    }
    if (!incoming_.empty()) {
        incomingBytes_ -= incoming_.front().bytes.size();
        receiver.resume(std::move(incoming_.front()));
        incoming_.pop_front();
        room_.cancel();
    } else if (state_ == State::ended) {
        receiver.fail(makeError(failure_));
    } else {
        receiver_ = std::move(receiver);
    }
}

void BeastConnection::end(const std::string& text) {
    if (state_ == State::ended) {
        return;
    }
    state_ = State::ended;
    failure_ = text;
    if (beingWritten_) {
        beingWritten_->fail(makeError(failure_));
    }
    for (const auto& waiting : std::exchange(outgoing_, {})) {
        waiting.written.fail(makeError(failure_));
    }
    if (receiver_) {
        std::exchange(receiver_, std::nullopt)->fail(makeError(failure_));
    }
    room_.cancel();
}

void BeastConnection::stop(WebSocketCloseCode code) {
    const State before = state_;
    end("The connection was cancelled");
    incoming_.clear();
    incomingBytes_ = 0;
    if (before == State::connecting && transport_) {
        transport_->drop();
    } else if (before == State::open) {
        dropAfter(closeLimit, /*whileConnecting=*/false);
        spawn([self = shared_from_this(), code] { return self->close(code); });
    }
}

Awaitable<void> BeastConnection::close(WebSocketCloseCode code) {
    auto closing = transport_->close(code);
    co_await std::move(closing);
    limit_.cancel();
    transport_->drop();
}

void BeastConnection::dropAfter(std::chrono::steady_clock::duration limit, bool whileConnecting) {
    limit_.expires_after(limit);
    limit_.async_wait([weakSelf = weak_from_this(), whileConnecting](auto error) {
        const auto self = weakSelf.lock();
        if (error || !self) {
            return;
        }
        if (whileConnecting) {
            if (self->state_ != State::connecting) {
                return;
            }
            self->end("The connection timed out");
        }
        if (self->transport_) {
            self->transport_->reset();
        }
    });
}

} // namespace orlune
