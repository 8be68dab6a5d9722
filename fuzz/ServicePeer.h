// A peer on the loopback interface that answers each connection with the bytes of one input, and
// the client's own transport that reads them. One thread; no state is kept between inputs.
#pragma once

#include "fuzz/Fuzzing.h"
#include "platform/WebSocket.h"
#include "platform/network/BeastTransport.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orlune::fuzz {

class ServicePeer {
  public:
    using tcp = boost::asio::ip::tcp;

    std::uint16_t port() const { return acceptor_.local_endpoint().port(); }

    /// Runs `talk` with a transport to `address` while the peer answers its request with `bytes`
    /// and ends its side of the connection. Returns the text of the client's failure; none when
    /// `talk` succeeded. Aborts when the client still waits after the peer's end.
    std::optional<std::string>
    failure(const WebSocketAddress& address, std::string_view bytes,
            const std::function<Awaitable<void>(BeastTransport&)>& talk) {
        auto accepted = std::make_shared<tcp::socket>(context_);
        boost::asio::co_spawn(context_, answer(accepted, std::string(bytes)),
                              boost::asio::detached);
        std::optional<std::string> text;
        bool hasEnded = false;
        const auto transport =
            BeastTransport::make(boost::asio::make_strand(context_), *trust_, address);
        boost::asio::co_spawn(context_, talk(*transport), [&](const std::exception_ptr& thrown) {
            hasEnded = true;
            try {
                if (thrown) {
                    std::rethrow_exception(thrown);
                }
            } catch (const WebSocketError& error) {
                text = error.what();
            }
            // By a reset, which leaves no connection behind in the kernel.
            transport->reset();
        });
        context_.restart();
        context_.run_for(std::chrono::seconds(20));
        expect(hasEnded);
        return text;
    }

  private:
    Awaitable<void> answer(std::shared_ptr<tcp::socket> socket, std::string bytes) {
        auto accepting = acceptor_.async_accept(*socket, boost::asio::use_awaitable);
        co_await std::move(accepting);
        std::string request;
        boost::system::error_code error;
        auto reading = boost::asio::async_read_until(
            *socket, boost::asio::dynamic_buffer(request), "\r\n\r\n",
            boost::asio::redirect_error(boost::asio::use_awaitable, error));
        co_await std::move(reading);
        auto writing = boost::asio::async_write(
            *socket, boost::asio::buffer(bytes),
            boost::asio::redirect_error(boost::asio::use_awaitable, error));
        co_await std::move(writing);
        socket->shutdown(tcp::socket::shutdown_send, error);
        // Reads what else the client sends until it is gone: closing with unread bytes would
        // destroy answers that it has not read yet.
        std::string rest(4096, '\0');
        while (!error) {
            auto draining = socket->async_read_some(
                boost::asio::buffer(rest),
                boost::asio::redirect_error(boost::asio::use_awaitable, error));
            co_await std::move(draining);
        }
    }

    boost::asio::io_context context_{1};
    tcp::acceptor acceptor_{context_, {boost::asio::ip::address_v4::loopback(), 0}};
    const std::shared_ptr<boost::asio::ssl::context> trust_ = makeTrust();
};

} // namespace orlune::fuzz
