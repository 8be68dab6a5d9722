#pragma once

// A script for the service: its answers and the faults it simulates, read from JSON
// (docs/local-service.md). A value; reading one is safe on any thread. An invalid script throws
// ScriptError with a text for the user.

#include "localservice/Handshake.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace orlune::localservice {

class ScriptError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Script {
    using Duration = std::chrono::milliseconds;

    /// A refusal in place of a stream.
    struct Refuse {
        Refusal refusal;
        std::optional<std::string> body; ///< instead of the service's own JSON
        bool chunked = false;
        std::vector<std::pair<std::string, std::string>> headers; ///< in addition
    };
    enum class Opening {
        accept,
        silent, ///< the connection stays open, the request is never answered
        drop,   ///< the connection ends when the request has arrived
        reset,  ///< the same with a TCP reset
    };

    /// Bytes to send, already framed.
    struct Write {
        std::string bytes;
        std::size_t pieceSize = 0; ///< bytes in each TCP write; 0: all in one
    };
    struct WaitForAudio {
        double seconds = 0; ///< of audio, from the beginning of the stream
    };
    struct WaitForText {
        std::string type; ///< of a text message, or "*"
    };
    struct WaitForClose {};
    struct Wait {
        Duration duration{0};
    };
    struct Close {
        std::uint16_t code = 1000;
        std::string reason;
    };
    struct Drop {
        bool reset = false;
    };
    struct Stall {
        bool stalled = true; ///< nothing is read from the socket
    };
    using Step =
        std::variant<Write, WaitForAudio, WaitForText, WaitForClose, Wait, Close, Drop, Stall>;

    Opening opening = Opening::accept;
    Duration openingDelay{0};
    std::optional<int> receiveBuffer; ///< bytes of the kernel's buffer, for readers that stall
    std::optional<Refuse> refuse;
    /// After the last step the connection stays open until the client ends it.
    std::vector<Step> steps;

    static Script parse(std::string_view text);
    static Script load(const std::filesystem::path& file);
};

} // namespace orlune::localservice
