#pragma once

// Builds WebSocket frames byte by byte, so that a script can also send what no correct server
// would. Free functions on values, safe on any thread; they cannot fail.

#include <cstdint>
#include <string>
#include <string_view>

namespace orlune::localservice {

enum class FrameKind : std::uint8_t {
    continuation = 0x0,
    text = 0x1,
    binary = 0x2,
    close = 0x8,
    ping = 0x9,
    pong = 0xA
};

struct FrameStyle {
    bool finished = true; ///< the last frame of its message
    bool masked = false;  ///< only clients may mask
};

std::string frame(FrameKind kind, std::string_view payload, FrameStyle style);

struct MessageStyle {
    std::size_t fragments = 1; ///< the message is split into this many frames of about equal size
    bool pingBetween = false;  ///< a ping between any two fragments
    bool masked = false;
};

std::string message(FrameKind kind, std::string_view payload, MessageStyle style);

} // namespace orlune::localservice
