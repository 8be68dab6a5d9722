#include "localservice/Frames.h"

#include <algorithm>
#include <array>

namespace orlune::localservice {
namespace {

constexpr std::array<unsigned char, 4> maskingKey = {0x37, 0xFA, 0x21, 0x3D};

void appendBigEndian(std::string& bytes, std::uint64_t number, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
        bytes += static_cast<char>((number >> shift) & 0xFFU);
    }
}

} // namespace

std::string frame(FrameKind kind, std::string_view payload, FrameStyle style) {
    std::string bytes;
    bytes += static_cast<char>((style.finished ? 0x80U : 0U) | static_cast<unsigned>(kind));
    const unsigned mask = style.masked ? 0x80U : 0U;
    if (payload.size() < 126) {
        bytes += static_cast<char>(mask | static_cast<unsigned>(payload.size()));
    } else if (payload.size() <= 0xFFFF) {
        bytes += static_cast<char>(mask | 126U);
        appendBigEndian(bytes, payload.size(), 2);
    } else {
        bytes += static_cast<char>(mask | 127U);
        appendBigEndian(bytes, payload.size(), 8);
    }
    if (!style.masked) {
        bytes += payload;
        return bytes;
    }
    bytes.append(maskingKey.begin(), maskingKey.end());
    for (std::size_t index = 0; index < payload.size(); ++index) {
        bytes +=
            static_cast<char>(static_cast<unsigned char>(payload[index]) ^ maskingKey[index % 4]);
    }
    return bytes;
}

std::string message(FrameKind kind, std::string_view payload, MessageStyle style) {
    const auto fragments = std::max<std::size_t>(1, style.fragments);
    std::string bytes;
    for (std::size_t index = 0; index < fragments; ++index) {
        const auto begin = payload.size() * index / fragments;
        const auto end = payload.size() * (index + 1) / fragments;
        if (index > 0 && style.pingBetween) {
            bytes += frame(FrameKind::ping, "between", {.masked = style.masked});
        }
        bytes +=
            frame(index == 0 ? kind : FrameKind::continuation, payload.substr(begin, end - begin),
                  {.finished = index + 1 == fragments, .masked = style.masked});
    }
    return bytes;
}

} // namespace orlune::localservice
