// The time of a packet from the audio thread to the service: yielded into the packet stream as by
// the microphone's tap, through the send task and the client, until a peer on this machine has read
// it. The lower bound for comparison is a bare blocking WebSocket that writes from the thread that
// has the packet.

#include "core/AudioPacketStream.h"
#include "platform/concurrency/Task.h"
#include "platform/linux/runtime/BackgroundThread.h"
#include "platform/linux/runtime/SteadyClock.h"
#include "platform/network/BeastWebSocket.h"
#include "services/DeepgramService.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

namespace {

using namespace orlune;
namespace asio = boost::asio;
namespace websocket = boost::beast::websocket;
using asio::ip::tcp;
using Instant = std::chrono::steady_clock::time_point;

constexpr std::size_t packetSize = 384; // 12 ms of audio
constexpr int packets = 3000;
constexpr auto pace = std::chrono::milliseconds(4);

/// Reads packets that start with the time of their creation.
class Listener {
  public:
    Listener() : thread_([this] { listen(); }) {}

    std::string port() const { return std::to_string(port_); }
    std::vector<double> microseconds() {
        thread_.join();
        return std::move(microseconds_);
    }

  private:
    void listen() {
        websocket::stream<tcp::socket> stream(acceptor_.accept());
        stream.next_layer().set_option(tcp::no_delay(true));
        stream.accept();
        boost::beast::flat_buffer buffer;
        while (microseconds_.size() < packets) {
            stream.read(buffer);
            const auto now = std::chrono::steady_clock::now();
            Instant made;
            std::memcpy(static_cast<void*>(&made), buffer.data().data(), sizeof made);
            microseconds_.push_back(std::chrono::duration<double, std::micro>(now - made).count());
            buffer.clear();
        }
    }

    asio::io_context context_;
    tcp::acceptor acceptor_{context_, {asio::ip::address_v4::loopback(), 0}};
    const std::uint16_t port_ = acceptor_.local_endpoint().port();
    std::vector<double> microseconds_;
    std::thread thread_;
};

/// Creates packets at the pace of a microphone.
void speak(const std::function<void(std::string)>& yield) {
    auto next = std::chrono::steady_clock::now();
    for (int count = 0; count < packets; ++count) {
        next += pace;
        std::this_thread::sleep_until(next);
        std::string packet(packetSize, '\0');
        const auto made = std::chrono::steady_clock::now();
        std::memcpy(packet.data(), &made, sizeof made);
        yield(std::move(packet));
    }
}

double report(const char* name, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2];
    const double late = times[times.size() * 99 / 100];
    std::printf("%-28s median %7.1f us   99th percentile %7.1f us   worst %7.1f us\n", name, median,
                late, times.back());
    return median;
}

std::vector<double> throughTheClient() {
    Listener listener;
    BackgroundThread thread;
    SteadyClock clock(thread.context());
    BeastWebSocketSession session(thread.executor(), ProxySettings());
    const auto client = std::make_shared<DeepgramService>(session, clock, thread.executor(),
                                                          "ws://127.0.0.1:" + listener.port());
    const AudioPacketStream audio;
    Task::start(thread.executor(), [client, stream = audio.stream]() -> Awaitable<void> {
        auto starting = client->start("key", 16000, [](const std::string&) {});
        co_await std::move(starting);
        while (true) {
            auto waiting = stream.next();
            auto packet = co_await std::move(waiting);
            if (!packet) {
                co_return;
            }
            auto sending = client->send(std::move(*packet));
            co_await std::move(sending);
        }
    });
    std::thread microphone([&] {
        speak([&](std::string packet) { audio.continuation.yield(std::move(packet)); });
        audio.continuation.finish();
    });
    microphone.join();
    return listener.microseconds();
}

std::vector<double> throughABareSocket() {
    Listener listener;
    asio::io_context context;
    websocket::stream<tcp::socket> stream(context);
    stream.next_layer().connect(
        {asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(std::stoi(listener.port()))});
    stream.next_layer().set_option(tcp::no_delay(true));
    stream.handshake("127.0.0.1", "/");
    stream.binary(true);
    std::thread microphone(
        [&] { speak([&](const std::string& packet) { stream.write(asio::buffer(packet)); }); });
    microphone.join();
    return listener.microseconds();
}

} // namespace

int main() {
    std::printf("%d packets of %zu bytes, one each %lld ms\n", packets, packetSize,
                static_cast<long long>(pace.count()));
    const double bare = report("bare blocking WebSocket", throughABareSocket());
    const double client = report("packet stream to client", throughTheClient());
    std::printf("%-28s %.2f\n", "ratio of the medians", client / bare);
    return 0;
}
