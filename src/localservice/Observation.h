#pragma once

// What the service received from its clients, for tests. `ObservationLog` is owned by the service
// and shared with its connections; any thread may call it. The value of the Authorization header is
// never stored.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orlune::localservice {

/// One connection.
struct Observation {
    enum class Kind { binary, text, ping, pong, close };
    struct Received {
        Kind kind = Kind::binary;
        std::size_t size = 0; ///< bytes of the payload
        std::string text;     ///< of text messages, pings and pongs; the reason of a close
    };

    std::string method;
    std::string target;
    std::vector<std::pair<std::string, std::string>> headers; ///< without Authorization
    std::string authorizationScheme;
    bool authorized = false; ///< a key was sent, and it was the required one where one is required
    unsigned status = 0;     ///< of the answer to the handshake; 0 while there is none
    std::vector<Received> received; ///< in order of arrival
    std::size_t audioBytes = 0;
    std::vector<std::byte> audio;           ///< only with `keepAudio`
    std::optional<std::uint16_t> closeCode; ///< of the client's close; 1005 when it named none
    bool ended = false;                     ///< the connection is gone
    std::string end;                        ///< how it ended, in words

    std::size_t count(Kind kind) const;
    bool hasText(std::string_view text) const;
};

class ObservationLog {
  public:
    using Change = std::function<void(Observation&)>;

    /// Adds a connection; its number identifies it from here on.
    std::size_t add();
    void change(std::size_t number, const Change& change);
    std::vector<Observation> all() const;
    /// Waits until the condition holds for all connections, at most for `limit`; returns whether it
    /// held.
    bool waitUntil(const std::function<bool(const std::vector<Observation>&)>& condition,
                   std::chrono::milliseconds limit) const;

  private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<Observation> observations_;
};

} // namespace orlune::localservice
