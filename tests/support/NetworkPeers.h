// The other side of a connection, on separate threads: a peer that serves one connection after the
// other with the test's function, and a proxy that can cut a connection anywhere.
#pragma once

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <limits>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <utility>

namespace orlune::test {

using boost::asio::ip::tcp;

inline void resetConnection(tcp::socket& socket) {
    boost::system::error_code ignored;
    socket.set_option(boost::asio::socket_base::linger(true, 0), ignored);
    socket.close(ignored);
}

/// Returns when the other side has ended the connection; reads nothing.
inline void waitForEnd(tcp::socket& socket) {
    pollfd end{socket.native_handle(), POLLRDHUP, 0};
    ::poll(&end, 1, -1);
}

class Peer {
  public:
    /// `serve` runs on the peer's thread with blocking sockets; an exception ends the connection.
    explicit Peer(std::function<void(tcp::socket&)> serve)
        : serve_(std::move(serve)), thread_([this] { run(); }) {}
    ~Peer() {
        stopping_ = true;
        ::shutdown(acceptor_.native_handle(), SHUT_RDWR);
        if (const int open = current_; open >= 0) {
            ::shutdown(open, SHUT_RDWR);
        }
        thread_.join();
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    std::uint16_t port() const { return port_; }

  private:
    void run() {
        while (!stopping_) {
            tcp::socket socket(context_);
            try {
                acceptor_.accept(socket);
                current_ = socket.native_handle();
                if (!stopping_) {
                    serve_(socket);
                }
            } catch (const std::exception&) {
                // the client went away, which is allowed
            }
            current_ = -1;
        }
    }

    boost::asio::io_context context_;
    tcp::acceptor acceptor_{context_, {boost::asio::ip::address_v4::loopback(), 0}};
    const std::uint16_t port_ = acceptor_.local_endpoint().port();
    std::atomic<bool> stopping_ = false;
    std::atomic<int> current_ = -1;
    std::function<void(tcp::socket&)> serve_;
    std::thread thread_;
};

/// Forwards connections to a port of this machine, whatever host they request.
class Proxy {
  public:
    Proxy(std::uint16_t upstream, std::string answer)
        : upstream_(upstream), answer_(std::move(answer)),
          peer_([this](tcp::socket& socket) { carry(socket); }) {}

    std::uint16_t port() const { return peer_.port(); }
    /// The next connections are reset after this many bytes in either direction.
    void cutAfter(std::size_t bytes) { left_ = bytes; }
    bool hasCut() const { return left_ == 0; }
    std::string lastRequest() const {
        const std::lock_guard lock(mutex_);
        return request_;
    }

  private:
    void carry(tcp::socket& client) {
        std::string request;
        boost::asio::read_until(client, boost::asio::dynamic_buffer(request), "\r\n\r\n");
        {
            const std::lock_guard lock(mutex_);
            request_ = request;
        }
        boost::asio::write(client, boost::asio::buffer(answer_));
        if (answer_.find(" 200 ") == std::string::npos) {
            return;
        }
        tcp::socket server(client.get_executor());
        server.connect({boost::asio::ip::address_v4::loopback(), upstream_});
        while (left_ > 0) {
            std::array<pollfd, 2> both{
                {{client.native_handle(), POLLIN, 0}, {server.native_handle(), POLLIN, 0}}};
            ::poll(both.data(), both.size(), -1);
            const bool fromClient = both[0].revents != 0;
            tcp::socket& from = fromClient ? client : server;
            std::array<char, 4096> bytes;
            const auto most = std::min(bytes.size(), left_.load());
            const auto count = from.read_some(boost::asio::buffer(bytes.data(), most));
            boost::asio::write(fromClient ? server : client,
                               boost::asio::buffer(bytes.data(), count));
            left_ -= count;
        }
        resetConnection(client);
        resetConnection(server);
    }

    const std::uint16_t upstream_;
    const std::string answer_;
    std::atomic<std::size_t> left_ = std::numeric_limits<std::size_t>::max();
    mutable std::mutex mutex_;
    std::string request_;
    Peer peer_;
};

} // namespace orlune::test
