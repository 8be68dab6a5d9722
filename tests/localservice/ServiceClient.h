// A client of the service for tests. Every operation has a deadline, so that a silent service can
// be detected.
#pragma once

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/stream.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orlune::test {

using namespace std::chrono_literals;

inline const std::string listenTarget =
    "/v1/"
    "listen?model=nova-3&language=en-US&encoding=linear16&sample_rate=16000&channels=1&interim_"
    "results=true"
    "&smart_format=true&punctuate=true&endpointing=300&vad_events=true";

class ServiceClient {
  public:
    using Limit = std::chrono::milliseconds;
    static constexpr Limit usualLimit = 20s;

    explicit ServiceClient(std::uint16_t port) : stream_(io_) {
        const boost::asio::ip::tcp::endpoint endpoint(boost::asio::ip::address_v4::loopback(),
                                                      port);
        stream_.next_layer().connect(endpoint);
        stream_.next_layer().set_option(boost::asio::ip::tcp::no_delay(true));
        stream_.read_message_max(std::size_t{32} << 20U);
        stream_.control_callback(
            [this](boost::beast::websocket::frame_type kind, boost::beast::string_view) {
                pings_ += kind == boost::beast::websocket::frame_type::ping ? 1 : 0;
            });
    }

    /// The status of the answer; 0 when there was none.
    unsigned open(const std::string& key = "any-key", Limit limit = usualLimit) {
        namespace websocket = boost::beast::websocket;
        stream_.set_option(
            websocket::stream_base::decorator([key](websocket::request_type& request) {
                request.set(boost::beast::http::field::authorization, "Token " + key);
            }));
        const auto start = [this](auto done) {
            stream_.async_handshake(answer_, "127.0.0.1", listenTarget, std::move(done));
        };
        run(start, limit);
        return error_ && error_ != websocket::error::upgrade_declined ? 0 : answer_.result_int();
    }

    bool sendText(const std::string& text) {
        return sendMessage(boost::asio::buffer(text), /*isText=*/true, usualLimit);
    }
    bool closeStream() { return sendText(R"({"type":"CloseStream"})"); }
    bool sendAudio(std::span<const std::int16_t> samples, Limit limit = usualLimit) {
        return sendMessage(boost::asio::buffer(samples.data(), samples.size_bytes()),
                           /*isText=*/false, limit);
    }
    /// Sends silent audio.
    bool sendSilence(double seconds, Limit limit = usualLimit) {
        const std::vector<std::int16_t> silence(static_cast<std::size_t>(seconds * 16000));
        return sendAudio(silence, limit);
    }

    /// The next message; none when the stream has ended or on timeout (`error()`).
    std::optional<std::string> receive(Limit limit = usualLimit) {
        buffer_.clear();
        run([this](auto done) { stream_.async_read(buffer_, std::move(done)); }, limit);
        return error_ ? std::nullopt
                      : std::optional(boost::beast::buffers_to_string(buffer_.cdata()));
    }
    std::vector<std::string> receiveAll() {
        std::vector<std::string> messages;
        while (auto message = receive()) {
            messages.push_back(*std::move(message));
        }
        return messages;
    }
    std::vector<boost::json::value> receiveAllJson() {
        std::vector<boost::json::value> values;
        for (const auto& message : receiveAll()) {
            values.push_back(boost::json::parse(message));
        }
        return values;
    }
    void close(std::uint16_t code) {
        const boost::beast::websocket::close_reason reason(
            static_cast<boost::beast::websocket::close_code>(code));
        run([&](auto done) { stream_.async_close(reason, std::move(done)); }, usualLimit);
    }

    /// Writes a request unchanged and returns the status of the answer.
    unsigned request(const std::string& text) {
        boost::asio::write(stream_.next_layer(), boost::asio::buffer(text));
        std::string answer;
        const auto start = [&](auto done) {
            boost::asio::async_read_until(stream_.next_layer(), boost::asio::dynamic_buffer(answer),
                                          "\r\n", std::move(done));
        };
        run(start, usualLimit);
        return answer.size() < 12 ? 0 : static_cast<unsigned>(std::stoul(answer.substr(9, 3)));
    }

    const boost::beast::websocket::response_type& answer() const { return answer_; }
    boost::system::error_code error() const { return error_; }
    bool timedOut() const { return error_ == boost::asio::error::timed_out; }
    std::uint16_t closeCode() const { return stream_.reason().code; }
    std::string closeReason() const {
        return std::string(stream_.reason().reason.data(), stream_.reason().reason.size());
    }
    bool gotText() const { return stream_.got_text(); }
    int pings() const { return pings_; }

  private:
    bool sendMessage(boost::asio::const_buffer payload, bool isText, Limit limit) {
        stream_.text(isText);
        run([&](auto done) { stream_.async_write(payload, std::move(done)); }, limit);
        return !error_;
    }

    template <class Start>
    void run(const Start& start, Limit limit) {
        bool finished = false;
        start([&](boost::system::error_code error, auto...) {
            error_ = error;
            finished = true;
        });
        io_.restart();
        io_.run_for(limit);
        if (!finished) {
            stream_.next_layer().close();
            io_.restart();
            io_.run();
            error_ = boost::asio::error::timed_out;
        }
    }

    boost::asio::io_context io_;
    boost::beast::websocket::stream<boost::asio::ip::tcp::socket> stream_;
    boost::beast::websocket::response_type answer_;
    boost::beast::flat_buffer buffer_;
    boost::system::error_code error_;
    int pings_ = 0;
};

/// The transcripts of all finals, joined by spaces, followed by the last interim.
inline std::string finalsOf(const std::vector<boost::json::value>& messages) {
    std::string text;
    for (const auto& message : messages) {
        const auto& object = message.as_object();
        if (object.at("type") != "Results" || object.at("is_final") != true) {
            continue;
        }
        const auto& transcript =
            object.at("channel").at("alternatives").at(0).at("transcript").as_string();
        text += (text.empty() || transcript.empty() ? "" : " ") + std::string(transcript);
    }
    return text;
}

} // namespace orlune::test
