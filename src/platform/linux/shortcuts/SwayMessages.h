// sway's messages: "i3-ipc", a length and a type in the machine's byte order, and JSON. Pure
// values, usable on any thread; incoming data is not trusted.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orlune::sway {

enum class MessageType : std::uint32_t {
    runCommand = 0,
    subscribe = 2,
    getConfig = 9,
    // Events have the highest bit set.
    workspaceEvent = 0x80000000U,
    bindingEvent = 0x80000005U,
    shutdownEvent = 0x80000006U,
};

/// More than any answer to our requests.
inline constexpr std::size_t largestPayloadBytes = 16'000'000;

struct Message {
    MessageType type;
    std::string payload;
};

std::string encode(MessageType type, std::string_view payload);

/// Assembles messages from the bytes of a socket.
class MessageReader {
  public:
    void append(std::string_view bytes) { bytes_ += bytes; }
    /// The next whole message; none until more bytes arrive, and never again after invalid bytes.
    std::optional<Message> next();
    bool isBroken() const { return isBroken_; }

  private:
    std::string bytes_;
    bool isBroken_ = false;
};

/// The command of the binding that was run; none for other events.
std::optional<std::string> commandOfBinding(std::string_view eventJson);
/// Whether the configuration was reloaded, which drops bindings that were made over the socket.
bool isReload(std::string_view eventJson);
/// Why the answer to a command says that it failed; none when it succeeded.
std::optional<std::string> failureOfCommand(std::string_view answerJson);
/// The text of the configuration file from the answer to `getConfig`; empty when it has none.
std::string configurationText(std::string_view answerJson);

} // namespace orlune::sway
